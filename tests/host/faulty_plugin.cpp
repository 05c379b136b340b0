// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/bluetooth_logs.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int three_minutes = 180000; // milliseconds

QString signal_file(QLatin1StringView name)
{
    return qEnvironmentVariable("BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER") + u'/' + name;
}

void hang()
{
    for (;;)
        ::pause();
}

void crash()
{
    std::signal(SIGSEGV, SIG_DFL); // sanitizers put a handler there
    std::raise(SIGSEGV);
}

/** As a destination's disk or an allocator that gives up would do it. */
void want_memory()
{
    throw std::bad_alloc();
}

void take_all_memory()
{
    std::vector<std::unique_ptr<char[]>> blocks;
    for (;;)
        blocks.push_back(std::make_unique<char[]>(1 << 24));
}

/**
 * Creates the file "started" in the folder $BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER and goes on when the file "go" is
 * there, or the test that waits for it is gone.
 */
void wait()
{
    QFile started(signal_file("started"_L1));
    if (!started.open(QIODevice::WriteOnly))
        qFatal("the folder of the waiting plug-in is missing");
    const QDeadlineTimer longest(three_minutes);
    while (!QFile::exists(signal_file("go"_L1)) && !longest.hasExpired() && QFile::exists(signal_file("started"_L1)))
        QThread::msleep(5);
}

/** A process that outlives its parent and holds its pipes. */
void leave_a_child()
{
    if (::fork() == 0) {
        ::sleep(5);
        ::_exit(0);
    }
}

void print()
{
    std::printf("{\"event\":\"inspected\"}\n");
    std::fflush(stdout);
    std::fprintf(stderr, "from the plug-in\n");
}

struct fault
{
    QLatin1StringView name;
    void (*happen)();
};

// clang-format off
constexpr fault faults[] = {
    {"exit"_L1,        [] { std::exit(0); }},
    {"abort"_L1,       [] { std::abort(); }},
    {"terminate"_L1,   [] { std::terminate(); }},
    {"throw"_L1,       [] { throw std::runtime_error("a fault"); }},
    {"crash"_L1,       crash},
    {"hang"_L1,        hang},
    {"want-memory"_L1, want_memory},
    {"take-memory"_L1, take_all_memory},
    {"wait"_L1,        wait},
    {"fork"_L1,        leave_a_child},
    {"print"_L1,       print},
};
// clang-format on

/**
 * The environment variable BLUETOOTH_LOGS_FAULTY_PLUGIN names a moment and what happens there: "extraction crash". With
 * BLUETOOTH_LOGS_FAULTY_PLUGIN_AT_LAST there it crashes in the end too.
 */
bool is_faulty(QLatin1StringView moment)
{
    return qEnvironmentVariable("BLUETOOTH_LOGS_FAULTY_PLUGIN").section(u' ', 0, 0) == moment;
}

void reach(QLatin1StringView moment)
{
    const QString name = qEnvironmentVariable("BLUETOOTH_LOGS_FAULTY_PLUGIN").section(u' ', 1, 1);
    for (const fault &known : faults) {
        if (is_faulty(moment) && name == known.name)
            known.happen();
    }
}

/** The plug-in, but for its fault. */
class faulty_plugin : public bluetooth_logs
{
public:
    void pub_extract_artifacts() override
    {
        reach("extraction"_L1);
        if (!is_faulty("skipped"_L1))
            bluetooth_logs::pub_extract_artifacts();
        reach("end"_L1);
    }

    QString pub_get_artifact_name() override
    {
        return is_faulty("name"_L1) ? u"Wi-Fi Logs"_s : bluetooth_logs::pub_get_artifact_name();
    }

    void pub_remove_temporary_asthetics() override
    {
        bluetooth_logs::pub_remove_temporary_asthetics();
        reach("removal"_L1);
        if (qEnvironmentVariableIsSet("BLUETOOTH_LOGS_FAULTY_PLUGIN_AT_LAST"))
            crash();
    }
};

[[maybe_unused]] const bool is_loaded = (reach("loading"_L1), true);

} // namespace

bluetooth_logs *create_object()
{
    reach("creation"_L1);
    return is_faulty("null"_L1) ? nullptr : new faulty_plugin;
}
