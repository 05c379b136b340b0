// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Linked with the sources that stand in for libarchive and The Sleuth Kit in a build without them.

#include "host/container/disk_image.h"
#include "host/files/host_error.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/** What a build without the libraries says of containers that need them. */
class test_left_out_libraries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void no_library_has_a_name();
    void container_is_refused_by_what_is_missing_data();
    void container_is_refused_by_what_is_missing();
};

void test_left_out_libraries::no_library_has_a_name()
{
    QCOMPARE(archive_library(), QString());
    QCOMPARE(image_library(), QString());
}

void test_left_out_libraries::container_is_refused_by_what_is_missing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    const QString no_archives = u"this build reads no archives, it was made without libarchive: "_s;
    const QString no_images = u"this build reads no images, it was made without The Sleuth Kit (libtsk): "_s;
    // clang-format off
    QTest::newRow("zip")            << "PK\x03\x04"_ba                          << no_archives;
    QTest::newRow("tar")            << QByteArray(257, 'a') + "ustar"_ba        << no_archives;
    QTest::newRow("compressed log") << "\x1f\x8b\x08"_ba                        << no_archives;
    QTest::newRow("raw image")      << QByteArray(32, '\0') + "NXSB"_ba         << no_images;
    QTest::newRow("E01")            << "EVF\x09\x0d\x0a\xff"_ba                 << no_images;
    // clang-format on
}

void test_left_out_libraries::container_is_refused_by_what_is_missing()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, message);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"container"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    QVERIFY(is_container(file.fileName(), nullptr)); // it is known, and not taken for a log
    for (const source_kind *kind : {static_cast<const source_kind *>(nullptr), &ios_uid_kind}) {
        opening how;
        how.kind = kind;
        try {
            open_container(file.fileName(), how);
            QFAIL("it was opened");
        } catch (const host_error &error) {
            QCOMPARE(error.message(), message + file.fileName());
            QCOMPARE(int(error.kind()), int(error_kind::not_found));
        }
    }
}

BLUETOOTH_LOGS_TEST(test_left_out_libraries, QCoreApplication)
#include "test_left_out_libraries.moc"
