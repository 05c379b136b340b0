// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_removal.h"

#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/** Only what is listed goes, and folders that are empty then. */
class test_file_removal : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void listed_data();
    void listed();
    void folders_data();
    void folders();
};

void test_file_removal::listed_data()
{
    QTest::addColumn<QString>("present"); // a name that ends with "/" is a folder, "name>target" a link
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("kept"); // what is told
    QTest::addColumn<QString>("left"); // all that is there

    // clang-format off
    QTest::newRow("nothing")               << u""_s                    << u"a b/c"_s       << u""_s          << u""_s;
    QTest::newRow("no list")               << u"a b/c"_s               << u""_s            << u""_s          << u"a b/ b/c"_s;
    QTest::newRow("all")                   << u"a b/c b/d/e"_s         << u"a b/c b/d/e"_s << u""_s          << u""_s;
    QTest::newRow("some")                  << u"a b/c b/d/e"_s         << u"b/c"_s         << u"b/d"_s       << u"a b/ b/d/ b/d/e"_s;
    QTest::newRow("beside the listed")     << u"a other"_s             << u"a"_s           << u""_s          << u"other"_s;
    QTest::newRow("others in folders")     << u"b/c b/x b/d/e b/d/y"_s << u"b/c b/d/e"_s   << u"b/d/y b/x"_s << u"b/ b/d/ b/d/y b/x"_s;
    QTest::newRow("order of what is kept") << u"z/a z/2 y/a y/1"_s     << u"z/a y/a"_s     << u"y/1 z/2"_s   << u"y/ y/1 z/ z/2"_s;
    QTest::newRow("similar names")         << u"b/c b/d/e b/dd/f"_s    << u"b/c b/d/g"_s   << u"b/d/e b/dd"_s << u"b/ b/d/ b/d/e b/dd/ b/dd/f"_s;
    QTest::newRow("folder of that name")   << u"a/ b"_s                << u"a b"_s         << u""_s          << u"a/"_s;
    QTest::newRow("link of that name")     << u"a>b b"_s               << u"a"_s           << u""_s          << u"b"_s;
    QTest::newRow("link to a folder")      << u"a>d d/f"_s             << u"a"_s           << u""_s          << u"d/ d/f"_s;
    QTest::newRow("link on the way")       << u"a>d d/f"_s             << u"a/f"_s         << u""_s          << u"a@ d/ d/f"_s;
    QTest::newRow("file on the way")       << u"a"_s                   << u"a/f"_s         << u""_s          << u"a"_s;
    QTest::newRow("empty folders")         << u"b/d/"_s                << u"b/d/e"_s       << u""_s          << u""_s;
    // clang-format on
}

void test_file_removal::listed()
{
    QFETCH(const QString, present);
    QFETCH(const QString, files);
    QFETCH(const QString, left);
    const QTemporaryDir folder;
    for (const QString &name : present.split(u' ', Qt::SkipEmptyParts)) {
        if (name.contains(u'>'))
            QVERIFY(QFile::link(name.section(u'>', 1), folder.filePath(name.section(u'>', 0, 0))));
        else if (name.endsWith(u'/'))
            QVERIFY(QDir().mkpath(folder.filePath(name)));
        else
            write_file(folder.filePath(name), "content");
    }
    QStringList told;
    for (const QString &path : remove_listed_files(folder.path(), files.split(u' ', Qt::SkipEmptyParts)))
        told.append(path.startsWith(folder.path() + u'/') ? path.sliced(folder.path().size() + 1) : path);
    QTEST(told.join(u' '), "kept");
    QCOMPARE(tree_of(folder.path()).join(u' '), left);
}

void test_file_removal::folders_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("between");

    // clang-format off
    QTest::newRow("none")     << u"a b"_s           << u""_s;
    QTest::newRow("one")      << u"a/b"_s           << u"a"_s;
    QTest::newRow("deep")     << u"a/b/c/d"_s       << u"a a/b a/b/c"_s;
    QTest::newRow("together") << u"b/c/x a b/d b/c/y a2/e"_s << u"a2 b b/c"_s;
    // clang-format on
}

void test_file_removal::folders()
{
    QFETCH(const QString, files);
    QTEST(folders_of(files.split(u' ', Qt::SkipEmptyParts)).join(u' '), "between");
}

BLUETOOTH_LOGS_TEST(test_file_removal, QCoreApplication)
#include "test_file_removal.moc"
