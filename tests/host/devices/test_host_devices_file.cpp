// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/host_devices_file.h"
#include "host/devices/registry_devices.h"
#include "host/files/sha256.h"
#include "tests/support/file_content.h"
#include "tests/support/hive_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString preferences_file = u"Library/Preferences/com.apple.Bluetooth.plist"_s;
const QString mobile_file = u"Library/Bluetooth/Library/Preferences/com.apple.MobileBluetooth.devices.plist"_s;
const QString hive_file = u"Windows/System32/config/SYSTEM"_s;

QByteArray list_of(const QByteArray &members)
{
    return R"(<?xml version="1.0"?><plist version="1.0"><dict>)" + members + "</dict></plist>";
}

/** Working copies, and what is known of the files that they are of. */
struct made_copies
{
    evidence_file &add(const QString &path, const QByteArray &content)
    {
        write_file(copies.filePath(path), content);
        evidence_file file;
        file.path = path;
        file.state = evidence_file::presence::present;
        file.copy_sha256 = sha256::of(content);
        evidence.files.append(file);
        return evidence.files.last();
    }

    host_device_findings write() const
    {
        return write_host_devices(evidence, copies.path(), 7, output());
    }

    QString output() const
    {
        return copies.filePath(u"host_devices.jsonl"_s);
    }

    /** "source, list, address, file" of each line. */
    QStringList lines() const
    {
        QStringList texts;
        for (const QByteArray &line : content_of(output()).split('\n')) {
            const QJsonObject json = QJsonDocument::fromJson(line).object();
            if (!json.isEmpty())
                texts.append(QString::number(json.value("source"_L1).toInt()) + u' ' + json.value("list"_L1).toString()
                             + u' ' + json.value("address"_L1).toString() + u' '
                             + json.value("locator"_L1)[u"file"_s].toString());
        }
        return texts;
    }

    QTemporaryDir copies;
    evidence_state evidence;
};

const QByteArray one_preference = list_of("<key>DeviceCache</key><dict><key>b4-c2-6a-7f-d3-7a</key><dict/></dict>");
const QByteArray one_mobile = list_of("<key>6C:4A:85:0D:91:E2</key><dict/>");

using change_of_copies = void (*)(made_copies &made);

} // namespace

Q_DECLARE_METATYPE(change_of_copies)

/** Which files are lists of devices, and what is said of those that are not read. */
class test_host_devices_file : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void no_list();
    void lists();
    void lists_that_are_not_read_data();
    void lists_that_are_not_read();
    void notes_of_a_hive();
};

void test_host_devices_file::no_list()
{
    made_copies made;
    made.add(u"Library/Preferences/com.apple.Bluetooth.plist.old"_s, one_preference);
    made.add(preferences_file, one_preference).copy_sha256.clear(); // it was not copied
    const host_device_findings findings = made.write();
    QVERIFY(!findings.count);
    QCOMPARE(findings.problems + findings.notes, QStringList());
    QVERIFY(!QFile::exists(made.output()));
}

/** In the order of the kinds of lists, whatever that of the evidence is. */
void test_host_devices_file::lists()
{
    made_copies made;
    made.add(mobile_file, one_mobile);
    made.add(preferences_file, one_preference);
    const host_device_findings findings = made.write();
    QCOMPARE(findings.problems + findings.notes, QStringList());
    QCOMPARE(findings.count.value_or(-1), 2);
    QCOMPARE(made.lines(), QStringList({u"7 preferences b4-c2-6a-7f-d3-7a "_s + preferences_file,
                                        u"7 mobile_devices 6C:4A:85:0D:91:E2 "_s + mobile_file}));

    made_copies empty;
    empty.add(preferences_file, list_of({}));
    QCOMPARE(empty.write().count.value_or(-1), 0);
    QCOMPARE(content_of(empty.output()), QByteArray());
}

void test_host_devices_file::lists_that_are_not_read_data()
{
    using change_of_copies = void (*)(made_copies & made);
    QTest::addColumn<void (*)(made_copies &)>("change");
    QTest::addColumn<QString>("problem");

    const auto row = [](const char *name, change_of_copies change, const QString &problem) {
        QTest::newRow(name) << change << problem;
    };
    // clang-format off
    row("no copy", [](made_copies &made) { QFile::remove(made.copies.filePath(preferences_file)); }, u"its working copy cannot be read: no such file or directory"_s);
    row("another copy", [](made_copies &made) { write_file(made.copies.filePath(preferences_file), one_mobile); }, u"its working copy is not what was copied from the evidence"_s);
    row("too large", [](made_copies &made) { QFile::resize(made.copies.filePath(preferences_file), (64 << 20) + 1); }, u"it has more than 64 MiB, too much for such a list"_s);
    // clang-format on
}

void test_host_devices_file::lists_that_are_not_read()
{
    QFETCH(const change_of_copies, change);
    QFETCH(const QString, problem);
    made_copies made;
    made.add(preferences_file, one_preference);
    made.add(mobile_file, one_mobile);
    change(made);
    const host_device_findings findings = made.write();
    QCOMPARE(findings.problems, QStringList{u"the devices of "_s + preferences_file + u": "_s + problem});
    QCOMPARE(findings.count.value_or(-1), 1);
    QCOMPARE(made.lines().size(), 1);
}

void test_host_devices_file::notes_of_a_hive()
{
    if (!can_read_registry())
        QSKIP("built without hivex");
    const hive_key hive{"root", {}, {{"Select", {hive_number_value("Current", 1)}}}};
    const QString note = hive_file
                         + u": the hive is dirty, its two sequence numbers are 5 and 4: the newest changes may be in "
                           "its transaction logs, which are not applied"_s;
    made_copies alone;
    alone.add(hive_file, hive_bytes(hive, 5, 4));
    alone.add(hive_file + u".LOG1"_s, "x").state = evidence_file::presence::absent;
    QCOMPARE(alone.write().notes, QStringList{note});
    QCOMPARE(alone.write().count.value_or(-1), 0);

    made_copies with_logs;
    with_logs.add(hive_file, hive_bytes(hive, 5, 4));
    with_logs.add(hive_file + u".LOG1"_s, "x");
    with_logs.add(hive_file + u".LOG2"_s, "x").state = evidence_file::presence::unreadable;
    QCOMPARE(with_logs.write().notes, QStringList{note + u" (SYSTEM.LOG1, SYSTEM.LOG2)"_s});
}

BLUETOOTH_LOGS_TEST(test_host_devices_file, QCoreApplication)

#include "test_host_devices_file.moc"
