// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/child_process.h"

#include "host/files/host_error.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString shell = u"/bin/sh"_s;

/** What a child did, in one text: its output and its error output line by line, then its end. */
QString account_of_child(
    child_process &child, qint64 seconds = 60, const std::function<int()> &cancellations = [] { return 0; })
{
    QStringList account;
    const child_end end =
        child.wait([&account](const QByteArray &line) { account.append(u"out "_s + QString::fromUtf8(line)); },
                   [&account](const QByteArray &line) { account.append(u"err "_s + QString::fromUtf8(line)); }, seconds,
                   cancellations);
    account.append(end.signal ? end.signal_name() : QString::number(end.exit_code));
    if (end.is_timed_out)
        account.append(u"timed out"_s);
    return account.join(u", "_s);
}

QString account_of(
    const QString &script, qint64 seconds = 60, const std::function<int()> &cancellations = [] { return 0; },
    const QByteArray &input = {})
{
    child_process child(shell, {u"-c"_s, script}, {"NAME=value", "PATH=/usr/bin:/bin"});
    child.write(input);
    return account_of_child(child, seconds, cancellations);
}

} // namespace

/** A child process that talks in lines. */
class test_child_process : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void account_data();
    void account();
    void input_reaches_the_child();
    void cancellations_become_signals_data();
    void cancellations_become_signals();
    void time_that_is_up_ends_the_group();
    void nothing_of_its_group_stays();
    void program_that_is_not_there();
    void copy_of_this_process();
    void signals_of_a_child();
    void signals_without_a_name();
};

void test_child_process::account_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("account");

    // clang-format off
    QTest::newRow("silent")             << u":"_s                            << u"0"_s;
    QTest::newRow("code")               << u"exit 42"_s                      << u"42"_s;
    QTest::newRow("lines")              << u"echo a; echo b"_s               << u"out a, out b, 0"_s;
    QTest::newRow("line without an end") << u"printf 'a\\nb'"_s            << u"out a, out b, 0"_s;
    QTest::newRow("empty lines")        << u"printf '\\n\\n'"_s          << u"out , out , 0"_s;
    QTest::newRow("errors")             << u"echo e >&2; exit 1"_s           << u"err e, 1"_s;
    QTest::newRow("output, closed")     << u"exec >&- 2>&-; exit 3"_s        << u"3"_s;
    QTest::newRow("waits without output") << u"exec >&-; read -r line; exit 5"_s << u"5"_s;
    QTest::newRow("killed")             << u"kill -SEGV $$"_s                << u"SIGSEGV"_s;
    QTest::newRow("output, then killed") << u"printf last; kill -KILL $$"_s  << u"out last, SIGKILL"_s;
    QTest::newRow("environment")        << u"echo $NAME; env | grep -c HOME"_s << u"out value, out 0, 1"_s;
    QTest::newRow("group of its own")   << u"read -r _ _ _ _ group _ </proc/self/stat; [ \"$group\" = $$ ] && echo yes"_s << u"out yes, 0"_s;
    // clang-format on
}

void test_child_process::account()
{
    QFETCH(const QString, script);
    QFETCH(const QString, account);
    QCOMPARE(account_of(script), account);
}

void test_child_process::input_reaches_the_child()
{
    QCOMPARE(account_of(
                 u"read -r a; read -r b; echo $b $a"_s, 60, [] { return 0; }, "1\n2\n"),
             u"out 2 1, 0"_s);
}

void test_child_process::cancellations_become_signals_data()
{
    QTest::addColumn<int>("cancellations");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("account");

    // clang-format off
    QTest::newRow("one")                << 1 << u"exec sleep 60"_s                            << u"SIGINT"_s;
    QTest::newRow("one, to a stopped child") << 1 << u"kill -STOP $$; exec sleep 60"_s        << u"SIGINT"_s;
    QTest::newRow("two")                << 2 << u"trap '' INT; exec sleep 60"_s               << u"SIGKILL"_s;
    // clang-format on
}

void test_child_process::cancellations_become_signals()
{
    QFETCH(const int, cancellations);
    QFETCH(const QString, script);
    QFETCH(const QString, account);
    QCOMPARE(account_of(script, 60, [cancellations] { return cancellations; }), account);
}

void test_child_process::time_that_is_up_ends_the_group()
{
    QElapsedTimer time;
    time.start();
    QCOMPARE(account_of(u"sleep 60 & sleep 60"_s, 1), u"SIGKILL, timed out"_s);
    QVERIFY(time.elapsed() < 30000);
}

/** A process that the child leaves behind holds its pipes open, and is not waited for. */
void test_child_process::nothing_of_its_group_stays()
{
    QElapsedTimer time;
    time.start();
    QString account = account_of(u"sleep 60 & echo $!; exit 7"_s);
    QVERIFY(time.elapsed() < 30000);
    QVERIFY(account.startsWith("out "_L1) && account.endsWith(", 7"_L1));
    const pid_t left = pid_t(account.sliced(4).chopped(3).toLongLong());
    QVERIFY(left > 1);
    QTRY_VERIFY(::kill(left, 0) == -1);
}

void test_child_process::program_that_is_not_there()
{
    try {
        const child_process child(u"/nowhere/program"_s, {}, {});
        QFAIL("it was started");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::io);
        QVERIFY2(error.message().startsWith("/nowhere/program cannot be started: "_L1), qPrintable(error.message()));
    }
}

void test_child_process::copy_of_this_process()
{
    std::signal(SIGUSR1, SIG_IGN);
    const auto work = [] {
        char line[16] = {};
        std::printf("%s", std::fgets(line, sizeof line, stdin) ? line : "nothing\n");
        std::printf("%s\n", std::getenv("NAME"));
        std::printf("%s\n", std::getenv("PATH") ? "more" : "no more");
        std::printf("%s\n", ::getpgrp() == ::getpid() ? "a group" : "no group");
        std::fflush(stdout);
        return std::signal(SIGUSR1, SIG_DFL) == SIG_DFL ? 7 : 1;
    };
    child_process child(work, {"NAME=value"});
    child.write("hello\n");
    QCOMPARE(account_of_child(child), u"out hello, out value, out no more, out a group, 7"_s);
    std::signal(SIGUSR1, SIG_DFL);

    child_process crashed([] { return ::raise(SIGSEGV); }, {});
    QCOMPARE(account_of_child(crashed), u"SIGSEGV"_s);
}

/** What this process ignores and holds back is no child's. */
void test_child_process::signals_of_a_child()
{
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGUSR2);
    std::signal(SIGUSR1, SIG_IGN);
    ::pthread_sigmask(SIG_BLOCK, &held, nullptr);
    const QString account = account_of(u"trap 'echo one' USR1; trap 'echo two' USR2; kill -USR1 $$; kill -USR2 $$"_s);
    ::pthread_sigmask(SIG_UNBLOCK, &held, nullptr);
    std::signal(SIGUSR1, SIG_DFL);
    QCOMPARE(account, u"out one, out two, 0"_s);
}

void test_child_process::signals_without_a_name()
{
    child_end end;
    end.signal = 9;
    QCOMPARE(end.signal_name(), u"SIGKILL"_s);
    end.signal = 63;
    QCOMPARE(end.signal_name(), u"signal 63"_s);
}

BLUETOOTH_LOGS_TEST(test_child_process, QCoreApplication)
#include "test_child_process.moc"
