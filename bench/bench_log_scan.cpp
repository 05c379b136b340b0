// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// bench_log_scan MEGABYTES
// Times the extraction of found devices from a synthetic log of that size against reading the file, and against grep
// and ripgrep where they are installed, by turns. Ratios are formed round by round. Prints their medians and the peak
// memory of this process. The log and the result database stand in the temporary folder for that time.

#include "bench/measure.h"
#include "common/sqlite_connection.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

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

/** A program that the extraction is compared to. */
struct rival
{
    QString program;
    QStringList arguments;
    bool counts_matches = true;
    std::vector<double> seconds = {};
    std::vector<double> ratios = {};
};

void require_matches(qint64 found, qint64 matches)
{
    if (found != matches)
        qFatal("found %lld of %lld matching lines", found, matches);
}

void run(const rival &rival, qint64 matches)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C"_s);
    process.setProcessEnvironment(environment);
    process.start(rival.program, rival.arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(rival.program));
    if (rival.counts_matches)
        require_matches(process.readAllStandardOutput().trimmed().toLongLong(), matches);
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

    const QString marker = u"BLE device found:"_s;
    std::vector<rival> rivals = {
        {u"dd"_s, {u"if="_s + log, u"of=/dev/null"_s, u"bs=64k"_s}, false},
        {u"rg"_s, {u"-cF"_s, u"--no-mmap"_s, marker, log}},
        {u"grep"_s, {u"-cF"_s, marker, log}},
    };
    std::erase_if(rivals, [](const rival &rival) { return QStandardPaths::findExecutable(rival.program).isEmpty(); });

    std::vector<double> extraction_seconds;
    for (int round = 0; round < rounds; ++round) { // the file is in the page cache: it was just written
        extractor.ios_uid_set_record_count(0);
        extraction_seconds.push_back(seconds_of([&extractor] { extractor.ios_uid_extract_artifacts(); }));
        require_matches(records, matches);
        for (rival &rival : rivals) {
            rival.seconds.push_back(seconds_of([&] { run(rival, matches); }));
            rival.ratios.push_back(extraction_seconds.back() / rival.seconds.back());
        }
    }

    QTextStream out(stdout);
    out << megabytes << " MB, " << matches << " rows: extraction " << median(extraction_seconds) << " s";
    for (const rival &rival : rivals)
        out << ", " << rival.program << ' ' << median(rival.seconds) << " s, ratio " << median(rival.ratios);
    out << ", peak memory " << process_memory("VmHWM:") / 1024 << " kB\n";
}
