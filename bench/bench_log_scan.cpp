// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// bench_log_scan MEGABYTES
// Times the step that reads seen devices on a synthetic log of that size against grep on the same file, by turns, and
// tells the peak memory of this process. The log and the result database stand in the temporary folder for that time.

#include "common/sqlite_connection.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 5;
constexpr qint64 lines_per_match = 100'000;

constexpr const char *messages[] = {
    "bluetoothd(CoreUtils)[159] <Notice>: stats interval 5000 ms, queued 3, dropped ",
    "kernel()[0] <Notice>: wlan0: join state changed from 3 to 4, reason ",
    "SpringBoard(FrontBoard)[62] <Notice>: scene did update its settings: com.example.app, visibility ",
    "locationd[70] <Error>: client is not authorized, code ",
    "sharingd(Sharing)[81] <Debug>: BLE device lost: SFDevice ID 1A2B, RSSI -",
};
constexpr char match[] = "sharingd(CoreBluetooth)[81] <Notice>: BLE device found: SFDevice ID 1A2B, IDS 1, RSSI -60, "
                         "Nm 'Desk\\M-b\\M^@\\M^Ys Phone', Md 'Model1,1', AID ";

/** The same bytes for the same size. Returns how many lines match. */
qint64 write_log(const QString &path, qint64 bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));

    QRandomGenerator random(1);
    qint64 matches = 0;
    for (qint64 line = 1; file.pos() < bytes; ++line) {
        const bool is_match = line % lines_per_match == 1;
        matches += is_match;
        file.write("May 17 12:11:05 phone-name ");
        file.write(is_match ? match : messages[random.bounded(int(std::size(messages)))]);
        file.write(QByteArray::number(random.bounded(1'000'000)) + '\n');
    }
    return matches;
}

/** A result table as a host has it that added the columns of the step. */
void create_table(const QString &path)
{
    QSqlDatabase database = open_sqlite_connection(u"bench_log_scan"_s, path);
    const QString statement =
        u"CREATE TABLE devices(bookmark INTEGER, device_name TEXT, model TEXT, sf_device_id TEXT, "
        "date TEXT, os_scheme_display TEXT, source_count_name TEXT)"_s;
    if (!QSqlQuery(database).exec(statement))
        qFatal("cannot create %s", qPrintable(path));
    database.close();
}

/** Seconds that the work takes, which must find @p matches lines. */
template<typename Work>
double timed(qint64 matches, Work work)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 found = work();
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    if (found != matches)
        qFatal("found %lld of %lld matching lines", found, matches);
    return seconds;
}

qint64 run_grep(const QString &path)
{
    QProcess grep;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C"_s);
    grep.setProcessEnvironment(environment);
    grep.start(u"grep"_s, {u"-cF"_s, u"BLE device found:"_s, path});
    grep.waitForFinished(-1);
    return grep.readAllStandardOutput().trimmed().toLongLong();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/** The most memory that this process ever held, as the kernel tells it; "?" where it does not. */
QString peak_memory()
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return u"?"_s;
    const QByteArray status = file.readAll();
    const QByteArray name = "VmHWM:";
    const qsizetype start = status.indexOf(name) + name.size();
    return QString::fromLatin1(status.mid(start, status.indexOf('\n', start) - start).simplified());
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const qint64 megabytes = argc == 2 ? QByteArray(argv[1]).toLongLong() : 0;
    if (megabytes <= 0)
        qFatal("usage: bench_log_scan MEGABYTES");

    const QTemporaryDir dir;
    const QString log = dir.filePath(u"system.log"_s);
    const qint64 matches = write_log(log, megabytes * 1'000'000);
    create_table(dir.filePath(u"results.sqlite"_s));

    bluetooth_logs_ios_uid extractor;
    extractor.ios_uid_set_destination_location({}, {}, dir.filePath(u"results.sqlite"_s));
    extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"devices"_s});
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_log_file_path = log;
    extractor.ios_uid_set_source_info(source);
    qint64 records = 0;
    QObject::connect(&extractor, &bluetooth_logs_ios_uid::signal_extracted_records_of_plugin_ios_uid, &extractor,
                     [&records](qint64 count) { records = count; });

    std::vector<double> step_seconds;
    std::vector<double> grep_seconds;
    run_grep(log); // warms the cache
    for (int round = 0; round < rounds; ++round) {
        extractor.ios_uid_set_record_count(0);
        step_seconds.push_back(timed(matches, [&] {
            extractor.ios_uid_extract_artifacts();
            return records;
        }));
        grep_seconds.push_back(timed(matches, [&] { return run_grep(log); }));
    }

    const double step = median(step_seconds);
    const double grep = median(grep_seconds);
    QTextStream(stdout) << megabytes << " MB, " << matches << " rows: step " << step << " s, grep " << grep
                        << " s, ratio " << step / grep << ", peak memory " << peak_memory() << '\n';
}
