// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "common/used_dates.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryFile>
#include <QTest>

using namespace Qt::StringLiterals;

class test_used_dates : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void last_used_data();
    void last_used();
    void used_dates_data();
    void used_dates();
    void cancelled();
    void a_file_that_nobody_indexed();
};

void test_used_dates::init()
{
    strict_test::init();
    plugin_static_function::set_essentials();
}

void test_used_dates::last_used_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("seconds");

    // clang-format off
    QTest::newRow("as Spotlight prints it") << u"2020-05-03 10:00:00 +0000"_s << u"1588500000"_s;
    QTest::newRow("ISO")                    << u"2020-05-03T10:00:00Z"_s      << u"1588500000"_s;
    QTest::newRow("no zone is UTC")         << u"2020-05-03T10:00:00"_s       << u"1588500000"_s;
    QTest::newRow("another zone")           << u"2020-05-03T10:00:00+05:30"_s << u"1588480200"_s;
    QTest::newRow("sub-seconds")            << u"2020-05-03T10:00:00.900Z"_s  << u"1588500000"_s;
    QTest::newRow("date alone")             << u"2020-05-03"_s                << u"1588464000"_s;
    QTest::newRow("blanks around")          << u" 2020-05-03 10:00:00 \n"_s   << u"1588500000"_s;
    QTest::newRow("before 1970")            << u"1969-12-31 23:59:59 +0000"_s << u"-1"_s;
    QTest::newRow("in an hour that New York skips") << u"2020-03-08 02:30:00 +0000"_s << u"1583634600"_s;
    QTest::newRow("absent")                 << QString()                      << QString();
    QTest::newRow("only a zone")            << u" +0000"_s                    << QString();
    QTest::newRow("no date")                << u"yesterday"_s                 << QString();
    QTest::newRow("no such day")            << u"2020-02-30 10:00:00 +0000"_s << QString();
    // clang-format on
}

void test_used_dates::last_used()
{
    QFETCH(QString, description);
    QFETCH(QString, seconds);

    const struct_GLOBAL_ARTIFACT_used_dates dates = parse_used_dates({description, QString()});
    QCOMPARE(dates.last_used_date, seconds);
    QCOMPARE(dates.used_dates_list, QStringList());
    QCOMPARE(dates.first_used_date, QString());
    QCOMPARE(dates.last_entry_used_date, QString());
}

void test_used_dates::used_dates_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QStringList>("seconds");

    // clang-format off
    QTest::newRow("as Spotlight prints them") << u"(\n    \"2020-05-03 00:00:00 +0000\",\n    \"2020-05-01 00:00:00 +0000\",\n    \"2020-05-02 00:00:00 +0000\"\n)"_s
                                              << QStringList({u"1588464000"_s, u"1588291200"_s, u"1588377600"_s});
    QTest::newRow("one")                      << u"(\n    \"2020-05-03 00:00:00 +0000\"\n)"_s << QStringList(u"1588464000"_s);
    QTest::newRow("ISO")                      << u"(2020-05-03T00:00:00Z,2020-05-01)"_s << QStringList({u"1588464000"_s, u"1588291200"_s});
    QTest::newRow("the same twice")           << u"(2020-05-01,2020-05-01)"_s << QStringList({u"1588291200"_s, u"1588291200"_s});
    QTest::newRow("brackets and quotes anywhere") << u"2020\"-05(-0)1"_s << QStringList(u"1588291200"_s);
    QTest::newRow("others are left out")      << u"(x,2020-05-01,,\"\")"_s << QStringList(u"1588291200"_s);
    QTest::newRow("empty listing")            << u"(\n)"_s << QStringList();
    QTest::newRow("absent")                   << QString() << QStringList();
    // clang-format on
}

void test_used_dates::used_dates()
{
    QFETCH(QString, description);
    QFETCH(QStringList, seconds);

    const struct_GLOBAL_ARTIFACT_used_dates dates = parse_used_dates({QString(), description});
    QCOMPARE(dates.used_dates_list, seconds);
    QCOMPARE(dates.first_used_date, seconds.value(0));
    QCOMPARE(dates.last_entry_used_date, seconds.isEmpty() ? QString() : seconds.constLast());
    QCOMPARE(dates.last_used_date, QString());
}

void test_used_dates::cancelled()
{
    plugin_static_function::set_cancel_extraction(true);
    const auto dates = parse_used_dates({u"2020-05-03"_s, u"(2020-05-01,2020-05-02)"_s});
    QCOMPARE(dates.last_used_date, u"1588464000"_s);
    QCOMPARE(dates.used_dates_list, QStringList());
    QCOMPARE(dates.first_used_date, QString());
    QCOMPARE(dates.last_entry_used_date, QString());
}

void test_used_dates::a_file_that_nobody_indexed()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    for (const QString &path : {file.fileName(), u"/missing/file"_s, QString()}) {
        const auto dates = plugin_static_function::extract_used_date(path);
        QCOMPARE(dates.last_used_date, QString());
        QCOMPARE(dates.used_dates_list, QStringList());
        QCOMPARE(dates.first_used_date, QString());
        QCOMPARE(dates.last_entry_used_date, QString());
    }
}

BLUETOOTH_LOGS_TEST(test_used_dates, QCoreApplication)

#include "test_used_dates.moc"
