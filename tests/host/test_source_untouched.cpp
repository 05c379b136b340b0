// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

/** Evidence must be after a run what it was before it, down to the times of access. */
class test_source_untouched : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void state_stays_data();
    void state_stays();
    void system_calls_only_read_data();
    void system_calls_only_read();

private:
    static void add_sources();
};

namespace {

QByteArray hash_of(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result().toHex();
}

QString time_text(const struct timespec &time)
{
    return QString::number(qint64(time.tv_sec)) + u'.' + QString::number(qint64(time.tv_nsec));
}

/** The folder and everything below it. */
QStringList paths_from(const QString &folder)
{
    QStringList paths{folder};
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths.append(entries.next());
    paths.sort();
    return paths;
}

/** All that the file system tells of the paths, without listing a folder or opening a file. */
QStringList states(const QStringList &paths)
{
    QStringList result;
    for (const QString &path : paths) {
        struct stat status = {};
        ::stat(QFile::encodeName(path).constData(), &status);
#ifdef Q_OS_DARWIN
        const QStringList times{time_text(status.st_atimespec), time_text(status.st_mtimespec),
                                time_text(status.st_ctimespec)};
#else
        const QStringList times{time_text(status.st_atim), time_text(status.st_mtim), time_text(status.st_ctim)};
#endif
        result.append(path + u' ' + QString::number(status.st_ino) + u' ' + QString::number(status.st_size) + u' '
                      + QString::number(status.st_mode, 8) + u' ' + times.join(u' '));
    }
    return result;
}

QMap<QString, QByteArray> hashes(const QString &folder)
{
    QMap<QString, QByteArray> result;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        result.insert(path, hash_of(path));
    }
    return result;
}

/** Access times in the past, so that a system that keeps them lazily would renew them. */
void age_access_times(const QStringList &paths)
{
    for (const QString &path : paths) {
        const struct timespec times[2] = {{.tv_sec = 1000000000, .tv_nsec = 0}, {.tv_sec = 1100000000, .tv_nsec = 0}};
        if (::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) != 0)
            qFatal("the times of %s cannot be set", qPrintable(path));
    }
}

/** The call cannot change a file, whatever its arguments are. */
bool only_reads(const QString &call)
{
    static const QSet<QString> calls{
        u"stat"_s,       u"lstat"_s,     u"fstat"_s,      u"newfstatat"_s, u"fstatat64"_s,         u"statx"_s,
        u"access"_s,     u"faccessat"_s, u"faccessat2"_s, u"readlink"_s,   u"readlinkat"_s,        u"read"_s,
        u"pread64"_s,    u"readv"_s,     u"lseek"_s,      u"close"_s,      u"getdents64"_s,        u"fcntl"_s,
        u"fstatfs"_s,    u"statfs"_s,    u"fadvise64"_s,  u"execve"_s,     u"landlock_add_rule"_s, u"getxattr"_s,
        u"flistxattr"_s, u"fgetxattr"_s,
    };
    return calls.contains(call);
}

/** An opening for reading alone. */
bool opens_for_reading(const QString &call, const QString &line)
{
    static const QRegularExpression writing(u"O_(WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)"_s);
    return (call == "open"_L1 || call == "openat"_L1) && line.contains(u"O_RDONLY"_s) && !line.contains(writing);
}

/** The reading end of a copy is the first descriptor. */
bool copies_from(const QString &line, const QString &folder)
{
    static const QRegularExpression copying(u"\\b(copy_file_range)\\("_s);
    const qsizetype at = line.indexOf(folder);
    return line.contains(copying) && line.indexOf(folder, line.indexOf(u',')) == -1 && at != -1;
}

} // namespace

void test_source_untouched::add_sources()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("folder");

    // clang-format off
    QTest::newRow("macOS")   << u"sample/macos"_s          << u"sample/macos"_s;
    QTest::newRow("iOS")     << u"sample/ios/system.log"_s << u"sample/ios"_s;
    QTest::newRow("Windows") << u"sample/windows"_s        << u"sample/windows"_s;
    // clang-format on
}

void test_source_untouched::state_stays_data()
{
    add_sources();
}

void test_source_untouched::state_stays()
{
    QFETCH(QString, source);
    QFETCH(QString, folder);
    const host_program host;
    host.write_sample();
    const QString path = host.path(folder);
    const QMap<QString, QByteArray> hashes_before = hashes(path);
    const QStringList paths = paths_from(path);
    age_access_times(paths);
    const QStringList states_before = states(paths);

    host.run({u"extract"_s, u"-i"_s, source, u"-o"_s, u"case"_s});
    QVERIFY(QFile::exists(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)));
    QCOMPARE(states(paths), states_before);
    QCOMPARE(paths_from(path), paths);
    QCOMPARE(hashes(path), hashes_before);
}

void test_source_untouched::system_calls_only_read_data()
{
    add_sources();
}

void test_source_untouched::system_calls_only_read()
{
    QFETCH(QString, source);
    QFETCH(QString, folder);
    const QString strace = QStandardPaths::findExecutable(u"strace"_s);
    if (strace.isEmpty())
        QSKIP("strace is not installed");
    const host_program host;
    host.write_sample();

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // the leak check does not work under a tracer
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(host.path(QString()));
    process.start(strace, {u"-ff"_s, u"-y"_s, u"-s"_s, u"0"_s, u"-o"_s, u"trace"_s, u"-e"_s, u"trace=%file,%desc"_s,
                           host_program::program_file(), u"extract"_s, u"-i"_s, source, u"-o"_s, u"case"_s});
    const host_result result = host_program::finish(process);
    if (result.errors.contains(u"ptrace"_s))
        QSKIP("tracing is not permitted here");
    QVERIFY2(QFile::exists(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)),
             qPrintable(result.errors));

    // A file for each thread, so that no call is cut in two by another thread's.
    QStringList lines;
    const QStringList traces = QDir(host.path(QString())).entryList({u"trace.*"_s});
    for (const QString &name : traces) {
        QFile trace(host.path(name));
        QVERIFY(trace.open(QIODevice::ReadOnly));
        lines += QString::fromUtf8(trace.readAll()).split(u'\n');
    }
    static const QRegularExpression call_name(u"^(\\w+)"_s);
    int opens = 0;
    for (const QString &line : lines) {
        if (!line.contains(host.path(folder)))
            continue;
        const QString call = call_name.match(line).captured(1);
        QVERIFY2(only_reads(call) || opens_for_reading(call, line) || copies_from(line, host.path(folder)),
                 qPrintable(line));
        opens += opens_for_reading(call, line) ? 1 : 0;
    }
    QVERIFY2(opens > 0, "the trace shows no open of the source");
}

BLUETOOTH_LOGS_TEST(test_source_untouched, QCoreApplication)

#include "test_source_untouched.moc"
