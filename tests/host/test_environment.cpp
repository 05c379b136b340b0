// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_environment.h"
#include "tests/host/host_program.h"
#include "tests/host/private_mount.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

/** Whatever surrounds the program, it works, or it says what is wrong. */
class test_environment : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void variable_changes_nothing_data();
    void variable_changes_nothing();
    void worker_gets_what_it_needs();
    void missing_variable_changes_nothing_data();
    void missing_variable_changes_nothing();
    void temporary_folder_is_not_needed_data();
    void temporary_folder_is_not_needed();
    void help_works_without_a_display();
    void nothing_is_made_outside_the_case();
    void closed_streams_data();
    void closed_streams();
    void deleted_working_folder();
    void path_that_cannot_be_meant_data();
    void path_that_cannot_be_meant();
    void path_that_is_no_utf_8_data();
    void path_that_is_no_utf_8();
    void working_folder_that_is_no_utf_8();

private:
    void extracts(const host_program &host, const QStringList &command = {});

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

/** The sample gives what it always gives, and nothing else is said. */
void test_environment::extracts(const host_program &host, const QStringList &command)
{
    const host_result result = host.run_through(command, extract_sample);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(host_program::without_manifest(result.output),
             u"Source  macOS: "_s + host.path(u"sample/macos"_s) + u"\nResult  "_s
                 + host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)
                 + u"\n        devices             1,000 rows\n        paired_devices         20 rows\n"
                   "Source1  done  1,000 devices, 20 paired_devices, 12 host devices\n"_s);
}

void test_environment::variable_changes_nothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    // clang-format off
    QTest::newRow("platform")         << u"QT_QPA_PLATFORM"_s       << u"wayland"_s;
    QTest::newRow("no platform")      << u"QT_QPA_PLATFORM"_s       << u"nonsense"_s;
    QTest::newRow("theme")            << u"QT_QPA_PLATFORMTHEME"_s  << u"gtk3"_s;
    QTest::newRow("style")            << u"QT_STYLE_OVERRIDE"_s     << u"nonsense"_s;
    QTest::newRow("no logging")       << u"QT_LOGGING_RULES"_s      << u"*=false"_s;
    QTest::newRow("all logging")      << u"QT_LOGGING_RULES"_s      << u"*=true"_s;
    QTest::newRow("logging debugged") << u"QT_LOGGING_DEBUG"_s      << u"1"_s;
    QTest::newRow("fatal warnings")   << u"QT_FATAL_WARNINGS"_s     << u"1"_s;
    QTest::newRow("fatal criticals")  << u"QT_FATAL_CRITICALS"_s    << u"1"_s;
    QTest::newRow("plug-ins debugged") << u"QT_DEBUG_PLUGINS"_s     << u"1"_s;
    QTest::newRow("message pattern")  << u"QT_MESSAGE_PATTERN"_s    << u"%{time} nonsense"_s;
    QTest::newRow("scale")            << u"QT_SCALE_FACTOR"_s       << u"nonsense"_s;
    QTest::newRow("home")             << u"HOME"_s                  << u"/nonexistent"_s;
    QTest::newRow("runtime folder")   << u"XDG_RUNTIME_DIR"_s       << u"/nonexistent"_s;
    QTest::newRow("locale")           << u"LC_ALL"_s                << u"nonsense"_s;
    QTest::newRow("C locale")         << u"LC_ALL"_s                << u"C"_s;
    QTest::newRow("language")         << u"LANGUAGE"_s              << u"de:fr"_s;
    QTest::newRow("display")          << u"DISPLAY"_s               << u":77"_s;
    QTest::newRow("time zone")        << u"TZ"_s                    << u"nonsense/nowhere"_s;
    QTest::newRow("code of OpenSSL's") << u"OPENSSL_CONF"_s         << u"/nonexistent/openssl.cnf"_s;
    QTest::newRow("code of iconv's")  << u"GCONV_PATH"_s            << u"/nonexistent"_s;
    QTest::newRow("libraries")        << u"LD_LIBRARY_PATH"_s       << u"/nonexistent"_s;
    QTest::newRow("Qt's plug-ins")    << u"QT_PLUGIN_PATH"_s        << u"/nonexistent"_s;
    QTest::newRow("SQLite's folder")  << u"SQLITE_TMPDIR"_s         << u"/nonexistent"_s;
    // clang-format on
}

void test_environment::variable_changes_nothing()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    host_program host;
    host.write_sample();
    host.set_variable(name, value);
    extracts(host);
}

void test_environment::worker_gets_what_it_needs()
{
    const QByteArrayList kept_out{"LD_PRELOAD", "LD_LIBRARY_PATH", "LD_AUDIT", "QT_PLUGIN_PATH", "QT_DEBUG_PLUGINS",
                                  "GCONV_PATH", "OPENSSL_CONF",    "HOME",     "PATH",           "LANG"};
    for (const QByteArray &name : kept_out)
        qputenv(name.constData(), "/nonexistent");
    qputenv("TZ", "UTC");
    QByteArrayList names;
    for (const QByteArray &variable : worker_environment())
        names.append(variable.left(variable.indexOf('=')));
    for (const QByteArray &name : kept_out) {
        qunsetenv(name.constData());
        QVERIFY2(!names.contains(name), name.constData());
    }
    QVERIFY(names.contains("TZ"));
    QCOMPARE(names.count("QT_LOGGING_RULES"), 1);
}

void test_environment::missing_variable_changes_nothing_data()
{
    QTest::addColumn<QStringList>("command");

    QTest::newRow("no home") << QStringList{u"env"_s, u"-u"_s, u"HOME"_s};
    QTest::newRow("no path") << QStringList{u"env"_s, u"-u"_s, u"PATH"_s};
    QTest::newRow("no environment") << QStringList{u"env"_s, u"-i"_s};
}

void test_environment::missing_variable_changes_nothing()
{
    QFETCH(QStringList, command);
    const host_program host;
    host.write_sample();
    extracts(host, command);
}

void test_environment::temporary_folder_is_not_needed_data()
{
    QTest::addColumn<QString>("state");

    for (const char *state : {"missing", "a file", "read-only", "full"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void test_environment::temporary_folder_is_not_needed()
{
    QFETCH(QString, state);
    host_program host;
    host.write_sample();
    const QString folder = host.path(u"temporary"_s);
    const private_mount disk(host.path(u"disk"_s), 64);
    host.set_variable(u"TMPDIR"_s, state == "full"_L1 ? host.path(u"disk"_s) : folder);
    if (state == "a file"_L1) {
        QVERIFY(QFile(folder).open(QIODevice::WriteOnly));
    } else if (state == "read-only"_L1) {
        QVERIFY(QDir().mkpath(folder) && QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    } else if (state == "full"_L1) {
        if (!disk.is_there())
            QSKIP("no file system can be mounted here");
        QFile filling(host.path(u"disk/filling"_s));
        QVERIFY(filling.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filling.write(QByteArray(4096, 'x')) > 0) {
        }
    }
    extracts(host);
}

void test_environment::help_works_without_a_display()
{
    host_program host;
    host.set_variable(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    for (const QString &option : {u"--help"_s, u"--version"_s}) {
        const host_result result = host.run({option});
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.errors, QString());
    }
}

void test_environment::nothing_is_made_outside_the_case()
{
    host_program host;
    host.write_sample();
    QStringList folders;
    for (const QString &name :
         {u"TMPDIR"_s, u"XDG_RUNTIME_DIR"_s, u"XDG_CACHE_HOME"_s, u"XDG_CONFIG_HOME"_s, u"HOME"_s}) {
        folders.append(host.path(u"outside/"_s + name));
        QVERIFY(QDir().mkpath(folders.last()));
        QCOMPARE(::chmod(QFile::encodeName(folders.last()).constData(), 0700), 0);
        host.set_variable(name, folders.last());
    }
    QCOMPARE(host.run({u"--version"_s}).exit_code, 0);
    extracts(host);
    QCOMPARE(host.run({u"show"_s, u"case"_s}).exit_code, 0);
    for (const QString &folder : std::as_const(folders))
        QVERIFY2(QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), qPrintable(folder));
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({u"case"_s, u"outside"_s, u"sample"_s}));
}

void test_environment::closed_streams_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<int>("exit_code"); // 1: the summary cannot be written

    // clang-format off
    QTest::newRow("input")             << u"<&-"_s           << 0;
    QTest::newRow("errors")            << u"2>&-"_s          << 0;
    QTest::newRow("output")            << u">&-"_s           << 1;
    QTest::newRow("input and errors")  << u"<&- 2>&-"_s      << 0;
    QTest::newRow("all")               << u"<&- >&- 2>&-"_s  << 1;
    QTest::newRow("full output")       << u">/dev/full"_s    << 1;
    // clang-format on
}

void test_environment::closed_streams()
{
    QFETCH(QString, redirection);
    QFETCH(int, exit_code);
    const host_program host;
    host.write_sample();
    const host_result result = host.run_through({u"sh"_s, u"-c"_s, u"exec \"$@\" "_s + redirection, u"sh"_s},
                                                extract_sample);
    QCOMPARE(result.exit_code, exit_code);
    if (exit_code == 1 && redirection != "<&- >&- 2>&-"_L1)
        QCOMPARE(result.errors, u"error: standard output cannot be written\n"_s);
    // The run itself is whole, whatever could be said of it.
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"done"_s);
}

void test_environment::deleted_working_folder()
{
    const host_program host;
    host.write_sample();
    const QStringList gone{u"sh"_s, u"-c"_s, u"mkdir gone && cd gone && rmdir ../gone && exec \"$@\""_s, u"sh"_s};
    const host_result relative = host.run_through(gone, extract_sample);
    QCOMPARE(relative.exit_code, 2);
    QCOMPARE(relative.errors, u"error: --input is a relative path, sample/macos, and the working folder is gone: give "
                              "an absolute path\n"_s);
    const host_result absolute = host.run_through(gone, {u"extract"_s, u"-i"_s, host.path(u"sample/macos"_s), u"-o"_s,
                                                         host.path(u"case"_s)});
    QCOMPARE(absolute.errors, QString());
    QCOMPARE(absolute.exit_code, 0);
}

void test_environment::path_that_cannot_be_meant_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("no case")    << QStringList{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u""_s} << u"--output is an empty path"_s;
    QTest::newRow("no source")  << QStringList{u"extract"_s, u"-i"_s, u""_s, u"-o"_s, u"case"_s}         << u"--input is an empty path"_s;
    QTest::newRow("no plug-in") << QStringList{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--plugin"_s, u""_s} << u"--plugin is an empty path"_s;
    QTest::newRow("no sample")  << QStringList{u"sample"_s, u""_s}                                       << u"DIR is an empty path"_s;
    QTest::newRow("no shown")   << QStringList{u"show"_s, u""_s}                                         << u"CASE is an empty path"_s;
    // clang-format on
}

void test_environment::path_that_cannot_be_meant()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const host_program host;
    host.write_sample();
    const host_result result = host.run(arguments);
    QCOMPARE(result.exit_code, 2);
    QVERIFY2(result.errors.startsWith(u"error: "_s + message), qPrintable(result.errors));
    QCOMPARE(result.errors.count(u'\n'), 1);
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"sample"_s});
}

void test_environment::path_that_is_no_utf_8_data()
{
    QTest::addColumn<QString>("arguments"); // of a shell, \377 stands for the byte

    QTest::newRow("source") << u"extract -i \"$odd\" -o case"_s;
    QTest::newRow("case") << u"extract -i sample/macos -o \"$odd\""_s;
    QTest::newRow("sample") << u"sample \"$odd\""_s;
    QTest::newRow("shown") << u"show \"$odd\""_s;
}

void test_environment::path_that_is_no_utf_8()
{
    QFETCH(QString, arguments);
    const host_program host;
    host.write_sample();
    const host_result result = host.run_through({u"sh"_s, u"-c"_s,
                                                 u"odd=$(printf 'a\\377'); exec \"$1\" "_s + arguments, u"sh"_s},
                                                {});
    QCOMPARE(result.exit_code, 2);
    QVERIFY2(result.errors.contains(u"UTF-8"_s), qPrintable(result.errors));
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"sample"_s});
}

void test_environment::working_folder_that_is_no_utf_8()
{
    const host_program host;
    host.write_sample();
    const QString script = u"odd=$(printf 'a\\377'); mkdir \"$odd\" && cp -r sample \"$odd\" && cd \"$odd\" && \"$@\"; "
                           "code=$?; test -e case && exit 99; cd ..; rm -r \"$odd\"; exit $code"_s;
    const host_result result = host.run_through({u"sh"_s, u"-c"_s, script, u"sh"_s}, extract_sample);
    QCOMPARE(result.exit_code, 2);
    QVERIFY2(result.errors.contains(u"the path of the working folder is no UTF-8: give an absolute path"_s),
             qPrintable(result.errors));
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"sample"_s});
}

BLUETOOTH_LOGS_TEST(test_environment, QCoreApplication)

#include "test_environment.moc"
