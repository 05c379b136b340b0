// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/reading_process.h"

#include "host/files/descriptor.h"
#include "host/files/host_error.h"
#include "host/files/unfinished_file.h"
#include "host/run/interruption.h"
#include "tests/support/child_answers.h"
#include "tests/support/file_content.h"
#include "tests/support/sanitizer.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using reading = int (*)();

/** The code that a reading ends with, or what is said of its end, with the kind of error. */
QString outcome_of(const reading_limits &limits, const std::function<int()> &read)
{
    try {
        const int code = run_in_reading_process(limits, read);
        if (is_reading_process())
            ::_exit(code);
        return QString::number(code);
    } catch (const host_error &error) {
        if (is_reading_process())
            ::_exit(3);
        return (error.kind() == error_kind::incomplete    ? u"incomplete: "_s
                : error.kind() == error_kind::interrupted ? u"interrupted: "_s
                                                          : u"io: "_s)
               + error.message();
    }
}

reading_limits limits_of(qint64 seconds)
{
    reading_limits limits;
    limits.memory = 4096;
    limits.timeout = seconds;
    return limits;
}

/** In code that lets none out. */
void call_in_vain(const std::function<void()> &work) noexcept
{
    work();
}

int error_of_writing(const QString &path)
{
    const descriptor file(::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    return file.is_open() ? 0 : errno;
}

} // namespace

/** The process that reads a case: how its end is told, and what it may do. */
class test_reading_process : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void ends_data();
    void ends();
    void time_that_is_up();
    void interrupted_data();
    void interrupted();
    void output_that_nobody_reads();
    void who_is_who();
    void nothing_is_left_open();
    void waiting_takes_no_time_of_the_processor();
    void places_that_are_written_data();
    void places_that_are_written();
    void no_process_can_be_made();

private:
    QString path(const QString &name) const
    {
        return folder->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void test_reading_process::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
}

void test_reading_process::ends_data()
{
    QTest::addColumn<reading>("read");
    QTest::addColumn<QString>("outcome");

    const QString no_memory =
        u"incomplete: out of memory: reading the case needs more than the 4096 MiB of --memory-limit"_s;
    // clang-format off
    QTest::newRow("done")       << reading([] { return 0; })   << u"0"_s;
    QTest::newRow("code")       << reading([] { return 4; })   << u"4"_s;
    QTest::newRow("130")        << reading([] { return 130; }) << u"130"_s;
    QTest::newRow("the last")   << reading([] { return 255; }) << u"255"_s;
    QTest::newRow("host_error") << reading([]() -> int { throw host_error(error_kind::io, u"x"_s); }) << u"3"_s;
    QTest::newRow("crash")      << reading([] { return ::raise(SIGSEGV); }) << u"incomplete: the process that read the case crashed with SIGSEGV"_s;
    QTest::newRow("killed")     << reading([] { return ::raise(SIGKILL); }) << u"incomplete: the process that read the case crashed with SIGKILL"_s;
    QTest::newRow("no core")    << reading([] { rlimit limit = {}; ::getrlimit(RLIMIT_CORE, &limit); return int(limit.rlim_cur + limit.rlim_max); }) << u"0"_s;
    if (is_sanitized) // it needs all addresses
        return;
    QTest::newRow("limit")      << reading([] { rlimit limit = {}; ::getrlimit(RLIMIT_AS, &limit); return int(limit.rlim_cur >> 32) + int(limit.rlim_max >> 32); }) << u"2"_s;
    QTest::newRow("no memory")  << reading([]() -> int { throw std::bad_alloc(); }) << no_memory;
    QTest::newRow("all memory") << reading([] { return int(QByteArray(qsizetype(1) << 33, 'a').size() >> 33); }) << no_memory;
    QTest::newRow("its code")   << reading([] { return 254; }) << no_memory;
    QTest::newRow("no memory where nothing is thrown") << reading([] { call_in_vain([] { throw std::bad_alloc(); }); return 0; }) << no_memory;
    QTest::newRow("another where nothing is thrown")   << reading([] { call_in_vain([] { throw std::runtime_error(""); }); return 0; })
        << u"incomplete: the process that read the case crashed with SIGABRT"_s;
    // clang-format on
}

void test_reading_process::ends()
{
    QFETCH(const reading, read);
    QTEST(outcome_of(limits_of(0),
                     [read] {
                         for (const int signal : {SIGSEGV, SIGABRT})
                             std::signal(signal, SIG_DFL); // no handler of the test's or a sanitizer's
                         return read();
                     }),
          "outcome");
}

/** It has the time to remove what is not finished, also where somebody stopped it. */
void test_reading_process::time_that_is_up()
{
    const QByteArray file = QFile::encodeName(path(u"a.new"_s));
    write_file(path(u"a.new"_s), "content");
    reading_limits limits = limits_of(1);
    limits.writable = {folder->path()};
    QElapsedTimer time;
    time.start();
    QCOMPARE(outcome_of(limits,
                        [&] {
                            const unfinished_file unfinished(file);
                            ::raise(SIGSTOP);
                            for (;;)
                                ::pause();
                            return 0;
                        }),
             u"incomplete: reading the case took longer than the 1 s of --timeout"_s);
    QVERIFY(time.elapsed() >= 1000);
    QCOMPARE(tree_of(folder->path()), QStringList());
}

void test_reading_process::interrupted_data()
{
    QTest::addColumn<bool>("is_deaf");
    QTest::addColumn<QStringList>("left");

    QTest::newRow("once") << false << QStringList();
    QTest::newRow("twice") << true << QStringList{u"a.new"_s};
}

/** A process of its own sends the signals: the reading may send none, and asks for each. */
void test_reading_process::interrupted()
{
    QFETCH(const bool, is_deaf);
    QFETCH(const QStringList, left);
    const QByteArray file = QFile::encodeName(path(u"a.new"_s));
    write_file(path(u"a.new"_s), "content");
    int ends[2] = {};
    QCOMPARE(::pipe(ends), 0);
    const interruption until_the_other_comes;
    const pid_t parent = ::getpid();
    const pid_t sender = ::fork();
    if (sender == 0) {
        ::close(ends[1]);
        char byte = 0;
        while (::read(ends[0], &byte, 1) == 1)
            ::kill(parent, SIGINT);
        ::_exit(0);
    }
    reading_limits limits = limits_of(0);
    limits.writable = {folder->path()};
    const QString outcome = outcome_of(limits, [&] {
        const unfinished_file unfinished(file);
        if (is_deaf)
            std::signal(SIGTERM, SIG_IGN);
        while (::write(ends[1], "", 1) == 1)
            ::usleep(300000);
        return 0;
    });
    ::close(ends[0]);
    ::close(ends[1]);
    ::waitpid(sender, nullptr, 0);
    QCOMPARE(outcome, u"interrupted: interrupted"_s);
    QCOMPARE(tree_of(folder->path()), left);
}

/** As if there were no child: who called sees the signal. */
void test_reading_process::output_that_nobody_reads()
{
    const child_answers given(1, [](int *answer) {
        std::signal(SIGPIPE, SIG_IGN);
        outcome_of(limits_of(0), [] {
            std::signal(SIGPIPE, SIG_DFL);
            return ::raise(SIGPIPE);
        });
        *answer = 1;
    });
    QCOMPARE(given.signal(), SIGPIPE);
    QCOMPARE(given[0], 0);
}

void test_reading_process::who_is_who()
{
    QVERIFY(!is_reading_process());
    const pid_t parent = ::getpid();
    QCOMPARE(outcome_of(limits_of(0),
                        [parent] {
                            return (is_reading_process() ? 1 : 0) + (::getppid() == parent ? 2 : 0)
                                   + (::getpid() != parent ? 4 : 0);
                        }),
             u"7"_s);
    QVERIFY(!is_reading_process());
}

void test_reading_process::nothing_is_left_open()
{
    const QDir open_files(u"/proc/self/fd"_s);
    if (!open_files.exists())
        QSKIP("the system shows no open files");
    const QStringList before = open_files.entryList(QDir::Files | QDir::System);
    QCOMPARE(outcome_of(limits_of(0), [] { return 0; }), u"0"_s);
    QCOMPARE(open_files.entryList(QDir::Files | QDir::System), before);
}

void test_reading_process::waiting_takes_no_time_of_the_processor()
{
    const std::clock_t before = std::clock();
    QCOMPARE(outcome_of(limits_of(0), [] { return ::usleep(400000); }), u"0"_s);
    QVERIFY(std::clock() - before < CLOCKS_PER_SEC / 5);
}

void test_reading_process::places_that_are_written_data()
{
    QTest::addColumn<QString>("writable");
    QTest::addColumn<QString>("possible");

    // clang-format off
    QTest::newRow("none")               << u""_s          << u""_s;
    QTest::newRow("a folder")           << u"a"_s         << u"a/new a/b/new"_s;
    QTest::newRow("a folder in it")     << u"a/b"_s       << u"a/b/new"_s;
    QTest::newRow("two")                << u"a/b c"_s     << u"a/b/new c/new"_s;
    QTest::newRow("one that is made")   << u"a/none"_s    << u"a/new a/b/new"_s;
    QTest::newRow("several are made")   << u"c/d/e/f"_s   << u"c/new"_s;
    // clang-format on
}

void test_reading_process::places_that_are_written()
{
    QFETCH(const QString, writable);
    const QStringList files{u"new"_s, u"a/new"_s, u"a/b/new"_s, u"c/new"_s};
    QVERIFY(QDir().mkpath(path(u"a/b"_s)) && QDir().mkpath(path(u"c"_s)));
    write_file(path(u"read"_s), "content");
    reading_limits limits = limits_of(0);
    for (const QString &name : writable.split(u' ', Qt::SkipEmptyParts))
        limits.writable.append(path(name));
    const QString code = outcome_of(limits, [&] {
        int bits = content_of(path(u"read"_s)) == "content" ? 128 : 0;
        for (qsizetype number = 0; number < files.size(); ++number)
            bits |= error_of_writing(path(files.at(number))) == 0 ? 1 << number : 0;
        return bits;
    });
    const int bits = code.toInt();
    QVERIFY(bits & 128);
    if (bits == 128 + 15)
        QSKIP("this system holds no process in its place");
    QStringList found;
    for (qsizetype number = 0; number < files.size(); ++number) {
        if (bits & (1 << number))
            found.append(files.at(number));
    }
    QTEST(found.join(u' '), "possible");
}

void test_reading_process::no_process_can_be_made()
{
    const child_answers given(1, [](int *answer) {
        rlimit limit = {};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 3;
        ::setrlimit(RLIMIT_NOFILE, &limit);
        *answer = outcome_of(limits_of(0), [] { return 0; }) == "io: no pipe can be made: too many open files"_L1;
    });
    QCOMPARE(given[0], 1);
}

BLUETOOTH_LOGS_TEST(test_reading_process, QCoreApplication)
#include "test_reading_process.moc"
