// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonObject>
#include <QMap>
#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

using attempts = QMap<QString, QString>;

/** What the plug-in double wrote: the attempt, and "done" or the number of the error. */
attempts attempts_in(const QString &file)
{
    attempts found;
    for (const QString &line : QString::fromUtf8(content_of(file)).split(u'\n', Qt::SkipEmptyParts))
        found.insert(line.section(u": "_s, 0, 0), line.section(u": "_s, 1));
    return found;
}

QString number(int error)
{
    return QString::number(error);
}

} // namespace

/** Whoever's code runs in the process of the plug-in: it can do its work, and nothing else. */
class test_confinement : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void plugin_that_tries_everything();
    void results_are_the_same();
    void without_it_everything_can_be_done();

private:
    /** Runs the plug-in double into the case "case" and gives its attempts; fills confinement. */
    attempts try_everything(const QStringList &more);
    QByteArray extracted(const QString &input, const QString &name, const QStringList &more) const;

    host_program host;
    QJsonObject confinement;
};

void test_confinement::initTestCase()
{
    host.write_sample();
    QFile secret(host.path(u"secret"_s));
    QVERIFY(secret.open(QIODevice::WriteOnly));
}

attempts test_confinement::try_everything(const QStringList &more)
{
    const QString file = host.path(u"case/Source1/attempts.txt"_s);
    QFile::remove(file);
    host.run(QStringList{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--force"_s, u"--plugin"_s,
                         QStringLiteral(ESCAPING_PLUGIN_FILE)}
             + more);
    confinement = host.source_record().value("confinement"_L1).toObject();
    return attempts_in(file);
}

void test_confinement::plugin_that_tries_everything()
{
    const QString database = host.path(
        u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s);
    const QByteArray evidence = content_of(database);
    write_file(host.path(u"case/Source2/of another program"_s), QByteArray()); // so that the folder stays
    attempts found = try_everything({});
    QCOMPARE(content_of(database), evidence);

    // clang-format off
    const attempts allowed{{u"own file"_s, u"done"_s}, {u"own folder"_s, u"done"_s}, {u"signal itself"_s, u"done"_s},
                           {u"read evidence"_s, u"done"_s}, {u"threads"_s, u"2"_s}};
    const QStringList kept_by_landlock{u"write evidence"_s, u"write by a thread"_s, u"remove evidence"_s,
        u"rename evidence"_s, u"take evidence"_s, u"add to evidence"_s, u"manifest"_s, u"another source"_s, u"the case"_s,
        u"/tmp"_s, u"read elsewhere"_s, u"parent's memory file"_s, u"parent's environment"_s};
    const QStringList kept_by_seccomp{u"truncate evidence"_s, u"evidence's mode"_s, u"open evidence's mode"_s,
        u"evidence's owner"_s, u"evidence's times"_s, u"open evidence's times"_s, u"evidence's attributes"_s,
        u"evidence's flags"_s, u"write by a link"_s, u"internet"_s, u"local socket"_s, u"pair of sockets"_s, u"/bin/sh"_s,
        u"exec"_s, u"fork"_s, u"trace the parent"_s, u"parent's memory"_s, u"signal the parent"_s, u"signal its group"_s,
        u"core"_s, u"ring of calls"_s, u"unmount"_s};
    // clang-format on
    attempts expected = allowed;
    for (const QString &name : kept_by_landlock)
        expected.insert(name, number(EACCES));
    for (const QString &name : kept_by_seccomp)
        expected.insert(name, number(EPERM));
    expected.insert(u"new kind of fork"_s, number(ENOSYS));

    const auto leave_out = [&](const QStringList &names) {
        for (const QString &name : names) {
            found.remove(name);
            expected.remove(name);
        }
    };
    if (confinement.value("landlock"_L1).isNull()) // a kernel without it
        leave_out(kept_by_landlock);
    if (!confinement.value("seccomp"_L1).toBool())
        leave_out(kept_by_seccomp + QStringList{u"new kind of fork"_s});
    QCOMPARE(found, expected);
    if (confinement.value("landlock"_L1).isNull() || !confinement.value("seccomp"_L1).toBool())
        QSKIP("this kernel has only a part of it");
}

void test_confinement::without_it_everything_can_be_done()
{
    write_file(host.path(u"case/Source2/of another program"_s), QByteArray()); // so that the folder stays
    const attempts found = try_everything({u"--no-confinement"_s});
    for (const QString &name :
         {u"write evidence"_s, u"open evidence's times"_s, u"manifest"_s, u"another source"_s, u"/tmp"_s,
          u"read elsewhere"_s, u"local socket"_s, u"/bin/sh"_s, u"fork"_s, u"signal the parent"_s})
        QCOMPARE(found.value(name), u"done"_s);
    QCOMPARE(confinement, (QJsonObject{{u"landlock"_s, QJsonValue()}, {u"seccomp"_s, false}}));
}

QByteArray test_confinement::extracted(const QString &input, const QString &name, const QStringList &more) const
{
    const host_result result = host.run(QStringList{u"extract"_s, u"-i"_s, u"sample/"_s + input, u"-o"_s, name} + more);
    return QByteArray::number(result.exit_code)
           + content_of(host.path(name + u"/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
}

void test_confinement::results_are_the_same()
{
    for (const QString &input : {u"macos"_s, u"ios/system.log"_s}) {
        const QByteArray confined = extracted(input, u"confined-"_s + input, {});
        QVERIFY(confined.size() > 4096);
        QVERIFY(confined == extracted(input, u"free-"_s + input, {u"--no-confinement"_s}));
    }
}

BLUETOOTH_LOGS_TEST(test_confinement, QCoreApplication)
#include "test_confinement.moc"
