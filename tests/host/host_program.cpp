// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"

#include "tests/support/file_content.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int time_limit = 120000; // milliseconds; sanitizers and a busy machine take their time

const QStringList sample_logs{
    u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal"_s,
    u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db-wal"_s,
};

QProcessEnvironment environment_without_display(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QLatin1StringView name :
         {"DISPLAY"_L1, "WAYLAND_DISPLAY"_L1, "QT_QPA_PLATFORM"_L1, "XDG_RUNTIME_DIR"_L1})
        environment.remove(name);
    environment.insert(u"BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER"_s, folder);
    return environment;
}

} // namespace

host_program::host_program()
{
    // Without links, so that the program's absolute paths can be compared.
    if (!directory.isValid() || QDir(directory.path()).canonicalPath() != directory.path())
        qFatal("no plain temporary folder");
}

host_result host_program::run(const QStringList &arguments) const
{
    QProcess process;
    start(process, arguments);
    return finish(process);
}

host_result host_program::run_in_shell(const QString &arguments, const QString &before, const QString &runner) const
{
    QProcess process;
    prepare(process);
    process.start(u"/bin/sh"_s, {u"-c"_s, before + u'\n' + runner + u'\'' + program_file() + u"' "_s + arguments});
    return finish(process);
}

void host_program::write_sample() const
{
    const host_result result = run({u"sample"_s, u"sample"_s});
    if (result.exit_code != 0)
        qFatal("no sample: %s", qPrintable(result.errors));
    for (const QString &log : sample_logs) {
        if (!QFile::remove(path(log)))
            qFatal("the sample has no %s", qPrintable(log));
    }
}

host_result host_program::run_through(const QStringList &command, const QStringList &arguments) const
{
    QProcess process;
    start(process, arguments, command);
    return finish(process);
}

host_result host_program::run_meanwhile(const QStringList &arguments, const QString &moment,
                                        const std::function<void()> &meanwhile) const
{
    QFile::remove(path(u"started"_s));
    QFile::remove(path(u"go"_s));
    QProcess process;
    // The double writes and looks into the folder of the test, which a confined one could not.
    start(process, arguments + QStringList{u"--no-confinement"_s, u"--plugin"_s, faulty_plugin_file()},
          {u"/usr/bin/env"_s, u"BLUETOOTH_LOGS_FAULTY_PLUGIN="_s + moment + u" wait"_s});
    const QString started = path(u"started"_s);
    const auto waits_or_ended = [&] { return QFile::exists(started) || process.state() == QProcess::NotRunning; };
    if (QTest::qWaitFor(waits_or_ended, time_limit) && QFile::exists(started))
        meanwhile();
    QFile go(path(u"go"_s));
    if (!go.open(QIODevice::WriteOnly))
        qFatal("the waiting plug-in cannot be told to go on");
    return finish(process);
}

void host_program::set_variable(const QString &name, const QString &value)
{
    variables.insert(name, value);
}

QJsonObject host_program::source_record() const
{
    QFile record(path(u"case/Source1/source.json"_s));
    return record.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(record.readAll()).object() : QJsonObject();
}

void host_program::start(QProcess &process, const QStringList &arguments) const
{
    start(process, arguments, {});
}

void host_program::start(QProcess &process, const QStringList &arguments, const QStringList &command) const
{
    prepare(process);
    QStringList words = command + QStringList{program_file()} + arguments;
    if (words.contains(waiting_plugin_file())) // see below
        words.append(u"--no-confinement"_s);
    process.start(words.first(), words.sliced(1));
}

void host_program::prepare(QProcess &process) const
{
    process.setWorkingDirectory(directory.path());
    QProcessEnvironment environment = environment_without_display(directory.path());
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert(variable.key(), variable.value());
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
}

host_result host_program::finish(QProcess &process)
{
    host_result result;
    if (process.waitForFinished(time_limit) && process.exitStatus() == QProcess::NormalExit)
        result.exit_code = process.exitCode();
    process.kill();
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    return result;
}

QList<qint64> host_program::children_of(const QProcess &process)
{
    const QString number = QString::number(process.processId());
    QList<qint64> children;
    for (const QByteArray &child :
         content_of(u"/proc/"_s + number + u"/task/"_s + number + u"/children"_s).simplified().split(' '))
        children.append(child.toLongLong());
    return children;
}

QString host_program::without_manifest(const QString &output)
{
    static const QRegularExpression last_line(u"Manifest  SHA-256 [0-9a-f]{64}\n$"_s);
    if (!output.contains(last_line))
        qFatal("no manifest: %s", qPrintable(output));
    QString rest = output;
    return rest.remove(last_line);
}

QString host_program::path(const QString &relative) const
{
    return directory.filePath(relative);
}

QString host_program::program_file()
{
    return QStringLiteral(BLUETOOTH_LOGS_HOST_FILE);
}

QString host_program::waiting_plugin_file()
{
    return QStringLiteral(BLUETOOTH_LOGS_WAITING_PLUGIN_FILE);
}

QString host_program::faulty_plugin_file()
{
    return QStringLiteral(BLUETOOTH_LOGS_FAULTY_PLUGIN_FILE);
}

QString host_program::data_symbol_plugin_file()
{
    return QStringLiteral(BLUETOOTH_LOGS_DATA_SYMBOL_PLUGIN_FILE);
}
