// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/bluetooth_logs.h"

#include <QFile>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

QString signal_file(QLatin1StringView name)
{
    return qEnvironmentVariable("BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER") + u'/' + name;
}

/**
 * The plug-in, but for its extraction: that creates the file "started" in the folder
 * $BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER and begins only when the file "go" is there or it was cancelled. With a file
 * "stubborn" there it takes no cancellation.
 */
class waiting_plugin : public bluetooth_logs
{
public:
    void pub_extract_artifacts() override
    {
        QFile started(signal_file("started"_L1));
        if (!started.open(QIODevice::WriteOnly))
            qFatal("the folder of the waiting plug-in is missing");
        const bool is_stubborn = QFile::exists(signal_file("stubborn"_L1));
        while (!QFile::exists(signal_file("go"_L1)) && (is_stubborn || was_cancelled == 0))
            QThread::msleep(5);
        bluetooth_logs::pub_extract_artifacts();
    }

    void pub_cancel_extraction() override
    {
        was_cancelled = 1;
        bluetooth_logs::pub_cancel_extraction();
    }

private:
    volatile std::sig_atomic_t was_cancelled = 0;
};

} // namespace

bluetooth_logs *create_object()
{
    return new waiting_plugin;
}
