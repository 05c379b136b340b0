// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/log_timeline.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct sighting
{
    const char *date; ///< null: the row has none
    int rssi;         ///< 0: the row has none
    qint64 device;
};

QByteArray page_of(const QList<sighting> &sightings, const timeline_form &form = {})
{
    report_source source;
    source.record.number = 2;
    source.name = u"Phone"_s;
    log_timeline timeline;
    std::vector<qint64> device_of_row;
    for (const sighting &one : sightings) {
        timeline.add(source, cell::of_text_if_any(one.date), one.rssi == 0 ? cell() : cell::of_integer(one.rssi));
        device_of_row.push_back(one.device);
    }
    return timeline.html({}, device_of_row, form);
}

/** The cells of the table's rows, without markup: "1|no name|…". */
QStringList rows_of(const QByteArray &page)
{
    static const QRegularExpression row(u"<tr>(<t[dh][^o].*?)</tr>"_s, QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression cell_end(u"</t[dh]>"_s);
    static const QRegularExpression markup(u"<[^>]*>"_s);
    QStringList rows;
    for (const QRegularExpressionMatch &match : row.globalMatch(QString::fromUtf8(page))) {
        QStringList cells = match.captured(1).split(cell_end);
        cells.removeLast();
        rows.append(cells.join(u'|').remove(markup));
    }
    return rows;
}

} // namespace

/** The sightings of a log, by its own dates: a lane and a row of the table for each device. */
class test_log_timeline : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void seconds_data();
    void seconds();
    void table();
    void gaps_data();
    void gaps();
    void places_on_the_axis();
    void december_to_january();
    void rows_without_a_date();
    void more_devices_than_lanes();
};

void test_log_timeline::seconds_data()
{
    QTest::addColumn<QByteArray>("date");
    QTest::addColumn<qint64>("second"); // -1: none

    QTest::newRow("first") << QByteArray("Jan  1 00:00:00") << qint64(0);
    QTest::newRow("two digits") << QByteArray("Jan 02 00:00:01") << qint64(86401);
    QTest::newRow("after a leap day") << QByteArray("Mar  1 00:00:00") << qint64(60 * 86400);
    QTest::newRow("leap day") << QByteArray("Feb 29 12:00:00") << qint64(59 * 86400 + 43200);
    QTest::newRow("last") << QByteArray("Dec 31 23:59:59") << qint64(366 * 86400 - 1);
    QTest::newRow("text behind") << QByteArray("Jan  1 00:00:00 phone") << qint64(0);
    QTest::newRow("no such day") << QByteArray("Feb 30 00:00:00") << qint64(-1);
    QTest::newRow("day 0") << QByteArray("Jan  0 00:00:00") << qint64(-1);
    QTest::newRow("no such hour") << QByteArray("Jan  1 24:00:00") << qint64(-1);
    QTest::newRow("no such minute") << QByteArray("Jan  1 00:60:00") << qint64(-1);
    QTest::newRow("leap second") << QByteArray("Jan  1 00:00:60") << qint64(60);
    QTest::newRow("no such second") << QByteArray("Jan  1 00:00:61") << qint64(-1);
    QTest::newRow("between two names") << QByteArray("anF  1 00:00:00") << qint64(-1);
    QTest::newRow("cut off") << QByteArray("Jan  1 00:00:0") << qint64(-1);
    QTest::newRow("sign") << QByteArray("Jan -1 00:00:00") << qint64(-1);
    QTest::newRow("no blank behind the month") << QByteArray("Jan:01 00:00:00") << qint64(-1);
    QTest::newRow("no colon behind the hour") << QByteArray("Jan 01 00.00:00") << qint64(-1);
    QTest::newRow("no colon behind the minute") << QByteArray("Jan 01 00:00.00") << qint64(-1);
    QTest::newRow("no month") << QByteArray("Jax  1 00:00:00") << qint64(-1);
    QTest::newRow("letters for a day") << QByteArray("Jan xx 00:00:00") << qint64(-1);
    QTest::newRow("letters for an hour") << QByteArray("Jan  1 xx:00:00") << qint64(-1);
    QTest::newRow("letters for a minute") << QByteArray("Jan  1 00:xx:00") << qint64(-1);
    QTest::newRow("letters for a second") << QByteArray("Jan  1 00:00:xx") << qint64(-1);
    QTest::newRow("ISO") << QByteArray("2026-01-01T00:00:00Z") << qint64(-1);
}

void test_log_timeline::seconds()
{
    QFETCH(QByteArray, date);
    QTEST(second_of_year(date).value_or(-1), "second");
}

/** Those that were seen most come first; without any signal strength there is no column of it. */
void test_log_timeline::table()
{
    const QByteArray page = page_of({{"May 17 12:00:00", -70, 4},
                                     {"May 17 12:00:30", 0, 7},
                                     {"May 17 14:30:00", -40, 7},
                                     {"May 17 14:30:05", -60, 7}});
    QVERIFY2(page.contains(
                 "4 sightings of 2 devices, from May 17 12:00:00 to May 17 14:30:05 as the log writes dates."),
             page.constData());
    QCOMPARE(rows_of(page), (QStringList{u"Device|Name|Sightings|First|Last|Longest gap|Strongest, dBm"_s,
                                         u"7|no name|3|May 17 12:00:30|May 17 14:30:05|2 hours|-40"_s,
                                         u"4|no name|1|May 17 12:00:00|May 17 12:00:00||-70"_s}));
    QCOMPARE(rows_of(page_of({{"May 17 12:00:00", 0, 4}})),
             (QStringList{u"Device|Name|Sightings|First|Last|Longest gap"_s,
                          u"4|no name|1|May 17 12:00:00|May 17 12:00:00|"_s}));
}

void test_log_timeline::gaps_data()
{
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QString>("gap");

    QTest::newRow("seconds") << QByteArray("May  1 00:00:59") << u"59 seconds"_s;
    QTest::newRow("a minute") << QByteArray("May  1 00:01:00") << u"1 minute"_s;
    QTest::newRow("minutes") << QByteArray("May  1 01:59:59") << u"119 minutes"_s;
    QTest::newRow("hours") << QByteArray("May  1 02:00:00") << u"2 hours"_s;
    QTest::newRow("many hours") << QByteArray("May  2 23:59:59") << u"47 hours"_s;
    QTest::newRow("days") << QByteArray("May  3 00:00:00") << u"2 days"_s;
}

void test_log_timeline::gaps()
{
    QFETCH(QByteArray, last);
    QFETCH(QString, gap);
    const QStringList rows = rows_of(page_of({{"May  1 00:00:00", 0, 1}, {last.constData(), 0, 1}}));
    QCOMPARE(rows.last().section(u'|', 5), gap);
}

/** The first stands at the start, the last at the end; the strongest is the highest, one without strength a ring. */
void test_log_timeline::places_on_the_axis()
{
    const QByteArray page = page_of(
        {{"May 17 12:00:00", -100, 1}, {"May 17 12:00:10", 0, 1}, {"May 17 12:00:20", -30, 1}});
    const QByteArray first = "<circle class=\"point\" cx=\"230\" cy=\"62\"";
    const QByteArray middle = "<circle class=\"ring\" cx=\"550\" cy=\"62\"";
    const QByteArray last = "<circle class=\"point\" cx=\"870\" cy=\"36\"";
    QVERIFY2(page.contains(first) && page.contains(middle) && page.contains(last), page.constData());
    QCOMPARE(page.count("<circle"), 3);
}

/** Dates that go back by more than half a year are those of the next one. */
void test_log_timeline::december_to_january()
{
    const QByteArray page = page_of({{"Dec 31 23:59:50", 0, 1}, {"Jan  1 00:00:10", 0, 1}});
    QVERIFY2(page.contains("from Dec 31 23:59:50 to Jan 1 00:00:10"), page.constData());
    QCOMPARE(rows_of(page).last(), u"1|no name|2|Dec 31 23:59:50|Jan 1 00:00:10|20 seconds"_s);
}

void test_log_timeline::rows_without_a_date()
{
    QCOMPARE(page_of({{nullptr, 0, 1}, {"yesterday", 0, 2}}), QByteArray());
    const QByteArray page = page_of({{nullptr, 0, 1}, {"yesterday", 0, 2}, {"May 17 12:00:00", 0, 3}});
    QVERIFY2(page.contains("1 row has a date of another form and is left out."), page.constData());
    QCOMPARE(rows_of(page).last().section(u'|', 0, 0), u"3"_s);
}

void test_log_timeline::more_devices_than_lanes()
{
    timeline_form form;
    form.most_lanes = 1;
    const QByteArray page = page_of({{"May 17 12:00:00", 0, 1}, {"May 17 12:00:00", 0, 2}, {"May 17 12:00:01", 0, 2}},
                                    form);
    QVERIFY2(page.contains("3 sightings of 2 devices"), page.constData());
    QVERIFY2(page.contains("The first 1 devices are shown"), page.constData());
    QCOMPARE(rows_of(page).size(), 2);
    QCOMPARE(rows_of(page).last().section(u'|', 0, 0), u"2"_s);
}

BLUETOOTH_LOGS_TEST(test_log_timeline, QCoreApplication)

#include "test_log_timeline.moc"
