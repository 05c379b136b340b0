// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// bench_case sources NUMBER      a case of so many realistic macOS sources, with one job and with two, against the
//                                plug-in alone over the same sources in one process
// bench_case log MEGABYTES       an iOS log, against hashing it twice and the plug-in alone
// bench_case memory NUMBER...    peak memory of the program, without its workers, for so many tiny sources
// All that is written stands in the temporary folder meanwhile.

#include "bench/measure.h"
#include "common/sqlite_connection.h"
#include "plugin/bluetooth_logs.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int more_devices = 56; // than the thousand of the sample: as many as a laptop had that was looked at
constexpr int milliseconds_between_looks = 2; // at the memory of a process, which is gone with it

void require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

/** Runs a program, which must end well. */
void run_program(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            qPrintable(arguments.join(u' ')));
}

void run_host(const QStringList &arguments)
{
    run_program(QStringLiteral(BLUETOOTH_LOGS_HOST_FILE), arguments);
}

/** Runs the program. Gives its peak memory in bytes, without its workers'. */
qint64 peak_memory_of_host(const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral(BLUETOOTH_LOGS_HOST_FILE), arguments);
    require(process.waitForStarted(-1), "starting");
    const QString number = QString::number(process.processId());
    qint64 peak = 0;
    do
        peak = qMax(peak, process_memory("VmHWM:", number));
    while (!process.waitForFinished(milliseconds_between_looks) && process.state() != QProcess::NotRunning);
    require(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, qPrintable(arguments.join(u' ')));
    return peak;
}

/** Seconds by the clock, and of the processor: those of this process and of all that it started and saw end. */
struct seconds
{
    double wall = 0;
    double cpu = 0;
};

double cpu_seconds(int who)
{
    rusage used = {};
    ::getrusage(who, &used);
    return double(used.ru_utime.tv_sec + used.ru_stime.tv_sec)
           + double(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

template<typename Work>
seconds timed(Work work)
{
    const double before = cpu_seconds(RUSAGE_SELF) + cpu_seconds(RUSAGE_CHILDREN);
    const double wall = seconds_of(work);
    return {wall, cpu_seconds(RUSAGE_SELF) + cpu_seconds(RUSAGE_CHILDREN) - before};
}

QString milliseconds(seconds time, double parts)
{
    return QString::number(time.wall / parts * 1000, 'f', 1) + u" ms ("_s
           + QString::number(time.cpu / parts * 1000, 'f', 1) + u" of the processor)"_s;
}

QString ratio(seconds time, seconds base)
{
    return QString::number(time.wall / base.wall, 'f', 2) + u" ("_s + QString::number(time.cpu / base.cpu, 'f', 2)
           + u" of the processor)"_s;
}

seconds sum(seconds one, seconds other)
{
    return {one.wall + other.wall, one.cpu + other.cpu};
}

/** A source as the plug-in gets it. */
struct plain_source
{
    QString kind;
    QString root;
    QString log_file;
};

/** The plug-in's own work on one source, driven as the program drives it. */
void run_plugin(const plain_source &source, const QString &result_folder)
{
    require(QDir().mkpath(result_folder), "making a folder");
    QFile log(result_folder + u"/plugin.log"_s);
    require(log.open(QIODevice::WriteOnly), "making the log");
    log.close();

    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general;
    general.debug_mode_status = true;
    general.debug_print_in_file = true;
    general.debug_file_path = log.fileName();
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = source.root;
    info.os_scheme_internal = source.kind;
    info.os_scheme_display = source.kind;
    info.source_log_file_path = source.log_file;

    bluetooth_logs plugin;
    plugin.pub_set_essentials();
    plugin.pub_set_general_info(general);
    plugin.pub_set_source_info(info);
    plugin.pub_set_engine_type(0);
    plugin.pub_set_source_count(1);
    plugin.pub_set_result_directory(result_folder);
    plugin.pub_set_essential_for_kaldo_desk_extraction({u"devices"_s, u"paired_devices"_s}, {});
    plugin.pub_create_db_tables();
    plugin.pub_find_source_file();
    plugin.pub_extract_artifacts();
    plugin.pub_remove_temporary_asthetics();
}

void copy_files(const QString &from, const QString &to, const QStringList &files)
{
    for (const QString &file : files) {
        const QString target = to + u'/' + file;
        require(QDir().mkpath(QFileInfo(target).path()) && QFile::copy(from + u'/' + file, target), "copying");
    }
}

void write_list(const QString &file, int sources)
{
    QJsonArray entries;
    for (int number = 1; number <= sources; ++number)
        entries.append(QJsonObject{{u"path"_s, QString::number(number)}});
    QFile list(file);
    require(list.open(QIODevice::WriteOnly), "writing the list");
    list.write(QJsonDocument(QJsonObject{{u"sources"_s, entries}}).toJson());
}

/** Folders 1, 2, … with 1,056 other devices and 20 paired ones each, and a list of them. */
void make_realistic_sources(const QString &folder, int sources)
{
    const QString sample = folder + u"/sample"_s;
    run_host({u"sample"_s, sample});
    const QString other = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
    {
        QSqlDatabase database = open_sqlite_connection(u"benchmark"_s, sample + u"/macos/"_s + other);
        require(database.transaction(), "opening");
        QSqlQuery query(database);
        require(execute_with_values(query, u"INSERT INTO OtherDevices SELECT * FROM OtherDevices LIMIT ?"_s,
                                    {QString::number(more_devices)}),
                "inserting");
        require(database.commit(), "commit");
        query.finish();
        database.close();
    }
    for (int number = 1; number <= sources; ++number)
        copy_files(sample + u"/macos"_s, folder + u'/' + QString::number(number),
                   {other, u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s,
                    u"Library/Preferences/com.apple.Bluetooth.plist"_s});
    write_list(folder + u"/list.json"_s, sources);
}

void bench_sources(int sources)
{
    const QTemporaryDir place;
    const QString folder = place.path();
    make_realistic_sources(folder, sources);
    const QString list = folder + u"/list.json"_s;
    const auto plugin = [&folder](int number, const QString &results) {
        run_plugin({u"macOS"_s, folder + u'/' + QString::number(number) + u'/', {}},
                   folder + u'/' + results + QString::number(number));
    };
    plugin(1, u"warm"_s);
    run_host({u"--version"_s});

    const seconds alone = timed([&] {
        for (int number = 1; number <= sources; ++number)
            plugin(number, u"alone/"_s);
    });
    const seconds one_job = timed([&] {
        run_host({u"extract"_s, u"--sources"_s, list, u"-o"_s, folder + u"/one"_s, u"--jobs"_s, u"1"_s});
    });
    const seconds two_jobs = timed([&] {
        run_host({u"extract"_s, u"--sources"_s, list, u"-o"_s, folder + u"/two"_s, u"--jobs"_s, u"2"_s});
    });
    out() << sources << " sources, each: plug-in alone " << milliseconds(alone, sources) << ", one job "
          << milliseconds(one_job, sources) << ", "
          << milliseconds({one_job.wall - alone.wall, one_job.cpu - alone.cpu}, sources) << " more, two jobs "
          << milliseconds(two_jobs, sources) << ", " << one_job.wall / two_jobs.wall << " times as fast as one\n";

    const seconds versions = timed([] {
        run_host({u"--version"_s});
        run_host({u"--version"_s});
    });
    const seconds plugin_once = timed([&] { plugin(1, u"once"_s); });
    const seconds extract_once = timed([&] {
        run_host({u"extract"_s, u"-i"_s, folder + u"/1"_s, u"-o"_s, folder + u"/single"_s});
    });
    out() << "one source: extract " << milliseconds(extract_once, 1) << ", --version twice "
          << milliseconds(versions, 1) << ", plug-in alone " << milliseconds(plugin_once, 1) << ", ratio "
          << ratio(extract_once, sum(versions, plugin_once)) << '\n';
}

void write_log(const QString &path, qint64 bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "writing the log");
    for (qint64 line = 0; file.pos() < bytes; ++line) {
        file.write("May 17 12:11:05 phone-name ");
        file.write(line % 100'000 == 1
                       ? "sharingd(CoreBluetooth)[81] <Notice>: BLE device found: SFDevice ID 1A2B, IDS 1, "
                         "RSSI -60, Nm 'Desk\\M-b\\M^@\\M^Ys Phone', Md 'Model1,1', AID "
                       : "bluetoothd(CoreUtils)[159] <Notice>: stats interval 5000 ms, queued 3, dropped ");
        file.write(QByteArray::number(line) + '\n');
    }
}

void bench_log(qint64 megabytes)
{
    const QTemporaryDir place;
    const QString log = place.path() + u"/system.log"_s;
    write_log(log, megabytes * 1'000'000);
    const QStringList digest{u"dgst"_s, u"-sha256"_s, log};
    run_program(u"openssl"_s, digest); // warms the cache

    const seconds scan = timed([&] {
        run_plugin({u"iOS_UID"_s, place.path() + u'/', log}, place.path() + u"/alone"_s);
    });
    const seconds hashes = timed([&] {
        run_program(u"openssl"_s, digest);
        run_program(u"openssl"_s, digest);
    });
    const seconds extract = timed([&] {
        run_host({u"extract"_s, u"-i"_s, log, u"-t"_s, u"iOS_UID"_s, u"-o"_s, place.path() + u"/case"_s});
    });
    out() << megabytes << " MB log: extract " << milliseconds(extract, 1) << ", openssl dgst twice "
          << milliseconds(hashes, 1) << ", plug-in alone " << milliseconds(scan, 1) << ", ratio "
          << ratio(extract, sum(hashes, scan)) << '\n';
}

void bench_memory(int sources)
{
    const QTemporaryDir place;
    const QString folder = place.path();
    for (int number = 1; number <= sources; ++number)
        require(QDir().mkpath(folder + u'/' + QString::number(number) + u"/Windows/System32"_s), "making a source");
    write_list(folder + u"/list.json"_s, sources);
    const QString cases = folder + u"/case"_s;
    const qint64 extract = peak_memory_of_host(
        {u"extract"_s, u"--sources"_s, folder + u"/list.json"_s, u"-o"_s, cases});
    const qint64 collect = peak_memory_of_host({u"collect"_s, cases});
    out() << sources << " tiny sources: peak memory of extract " << extract / 1024 << " KiB, of collect "
          << collect / 1024 << " KiB\n"
          << Qt::flush;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    for (const QString &number : arguments.mid(2)) {
        if (arguments[1] == "sources"_L1)
            bench_sources(number.toInt());
        else if (arguments[1] == "log"_L1)
            bench_log(number.toLongLong());
        else if (arguments[1] == "memory"_L1)
            bench_memory(number.toInt());
        else
            qFatal("usage: bench_case sources|log|memory NUMBER...");
    }
    return 0;
}
