// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/source/evidence_source.h"
#include "tests/support/file_content.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString other_devices = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;

/** What find_source() says of the path, without the path of the test's folder. */
QString refusal_of(const QString &folder, const QString &path)
{
    const ordinary_user user;
    try {
        find_source(folder + path, nullptr, {u"devices"_s, u"paired_devices"_s});
    } catch (const host_error &error) {
        return error.message().remove(folder);
    }
    return {};
}

} // namespace

class test_evidence_source : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void closed_folders_data();
    void closed_folders();
    void zero_bytes_in_a_log();
};

void test_evidence_source::closed_folders_data()
{
    QTest::addColumn<QString>("file"); ///< of the source below "/s"
    QTest::addColumn<QString>("closed");
    QTest::addColumn<QString>("refusal");

    const QString unreadable = u"the source cannot be read: "_s;
    // clang-format off
    QTest::newRow("open")              << other_devices << QString() << QString();
    QTest::newRow("Library/Bluetooth") << other_devices << u"/s/Library/Bluetooth"_s << unreadable + u"/s/Library/Bluetooth: permission denied"_s;
    QTest::newRow("Library")           << other_devices << u"/s/Library"_s << unreadable + u"/s/Library: permission denied"_s;
    QTest::newRow("the source")        << other_devices << u"/s"_s << unreadable + u"/s: permission denied"_s;
    QTest::newRow("above the source")  << u"a/"_s + other_devices << u"/s"_s << unreadable + u"/s: permission denied"_s;
    QTest::newRow("Windows")           << u"Windows/System32/x"_s << u"/s/Windows"_s << unreadable + u"/s/Windows: permission denied"_s;
    // clang-format on
}

void test_evidence_source::closed_folders()
{
    QFETCH(QString, file);
    QFETCH(QString, closed);
    QFETCH(QString, refusal);
    const QTemporaryDir folder;
    QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0755), 0);
    write_file(folder.path() + u"/s/"_s + file, "x");
    if (!closed.isEmpty())
        QCOMPARE(::chmod(QFile::encodeName(folder.path() + closed).constData(), 0), 0);
    const QString said = refusal_of(folder.path(), file.startsWith("a/"_L1) ? u"/s/a"_s : u"/s"_s);
    if (!closed.isEmpty())
        QCOMPARE(::chmod(QFile::encodeName(folder.path() + closed).constData(), 0755), 0);
    QCOMPARE(said, refusal);
}

void test_evidence_source::zero_bytes_in_a_log()
{
    const QTemporaryDir folder;
    QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0755), 0);
    const QByteArray line = "May 17 12:11:05 phone x(y)[1] <Notice>: z\n";
    write_file(folder.path() + u"/log"_s, line + QByteArray(3, '\0') + line);
    QCOMPARE(refusal_of(folder.path(), u"/log"_s), QString());
}

BLUETOOTH_LOGS_TEST(test_evidence_source, QCoreApplication)

#include "test_evidence_source.moc"
