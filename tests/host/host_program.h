// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_HOST_PROGRAM_H
#define TESTS_HOST_HOST_PROGRAM_H

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/** What a run of the program left behind. */
struct host_result
{
    int exit_code = -1; ///< -1: it did not end by itself
    QString output;
    QString errors;
};

/** The built program, run with a temporary folder as working directory and without a display. */
class host_program
{
public:
    host_program();

    host_result run(const QStringList &arguments) const;

    /**
     * The same with arguments as a shell reads them. @p before are commands of the shell's that come before it, and
     * @p runner, if any, ends with a blank and runs the program.
     */
    host_result run_in_shell(const QString &arguments, const QString &before = {}, const QString &runner = {}) const;

    /** Another command runs the program: "sh -c '…' sh", with the program's file and @p arguments behind. */
    host_result run_through(const QStringList &command, const QStringList &arguments) const;

    /**
     * Extracts with the plug-in double that waits at @p moment ("extraction", "end", …), lets @p meanwhile act there,
     * and lets it go on.
     */
    host_result run_meanwhile(const QStringList &arguments, const QString &moment,
                              const std::function<void()> &meanwhile) const;

    /** The environment of later runs. */
    void set_variable(const QString &name, const QString &value);

    /** CASE/Source1/source.json of the case "case"; empty if there is none. */
    QJsonObject source_record() const;

    /**
     * Writes a sample into "sample" below the working directory, and removes the write-ahead logs of its databases:
     * most tests are about what happens without a warning. Ends the test program on failure.
     */
    void write_sample() const;

    /** Starts the program and leaves it running. */
    void start(QProcess &process, const QStringList &arguments) const;
    static host_result finish(QProcess &process);

    /** The processes that the program made, and that still run; of systems with /proc. */
    static QList<qint64> children_of(const QProcess &process);

    /** What "extract" printed, without its last line, which is the manifest's hash. Ends the test program without. */
    static QString without_manifest(const QString &output);

    /** A path below the working directory. */
    QString path(const QString &relative) const;

    static QString program_file();
    static QString waiting_plugin_file();

    /** The plug-in with a fault, which the variable BLUETOOTH_LOGS_FAULTY_PLUGIN names: tests/host/faulty_plugin.cpp.
     */
    static QString faulty_plugin_file();
    /** A library whose create_object is no function. */
    static QString data_symbol_plugin_file();

private:
    void prepare(QProcess &process) const;
    void start(QProcess &process, const QStringList &arguments, const QStringList &command) const;

    QTemporaryDir directory;
    QMap<QString, QString> variables; ///< of the program's environment, besides those of this process
};

#endif
