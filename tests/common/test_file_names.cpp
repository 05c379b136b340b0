// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/file_names.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/** Names that are free with all their companions. */
class test_file_names : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void free_names_data();
    void free_names();
};

void test_file_names::free_names_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("free_name");

    // clang-format off
    QTest::newRow("nothing")                     << QStringList{}                               << u"a.db"_s;
    QTest::newRow("the name alone")              << QStringList{u"a.db"_s}                      << u"1_a.db"_s;
    QTest::newRow("a companion alone")           << QStringList{u"a.db-wal"_s}                  << u"1_a.db"_s;
    QTest::newRow("the other companion")         << QStringList{u"a.db-shm"_s}                  << u"1_a.db"_s;
    QTest::newRow("the next one's companion")    << QStringList{u"a.db"_s, u"1_a.db-wal"_s}     << u"2_a.db"_s;
    QTest::newRow("something else")              << QStringList{u"a.db-journal"_s, u"b.db"_s}   << u"a.db"_s;
    // clang-format on
}

void test_file_names::free_names()
{
    QFETCH(QStringList, taken);
    const QTemporaryDir folder;
    for (const QString &name : taken)
        write_file(folder.filePath(name), "");
    QTEST(free_file_name(u"/source/a.db"_s, folder.path(), {u"-shm"_s, u"-wal"_s}), "free_name");
}

BLUETOOTH_LOGS_TEST(test_file_names, QCoreApplication)

#include "test_file_names.moc"
