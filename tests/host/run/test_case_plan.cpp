// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_plan.h"

#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using earlier_run = case_request::earlier_run;

named_source source_at(const QString &path, int number = -1)
{
    named_source source;
    source.path = path;
    source.number = number;
    source.place = u"-i"_s;
    return source;
}

case_request request_for(earlier_run earlier, const QList<named_source> &sources)
{
    case_request request;
    request.directory = u"/case"_s;
    request.earlier = earlier;
    request.sources = sources;
    return request;
}

const QList<named_source> three{source_at(u"/a"_s), source_at(u"/b"_s), source_at(u"/c"_s)};

/** What a run of the three sources with usual options left of one of them. */
earlier_source left(int number, source_status status)
{
    QList<named_source> all = three;
    number_sources(all);
    earlier_source source;
    source.number = number;
    source.holds_a_run = true;
    source.has_record = true;
    source.path = all.value(number - 1).path;
    source.status = status;
    source.list_sha256 = sources_identity(all).value("sha256"_L1).toString();
    source.result_options = {{u"tables"_s, QJsonArray{u"devices"_s, u"paired_devices"_s}},
                             {u"engine_type"_s, 0},
                             {u"display_name"_s, u""_s},
                             {u"timezone_offset"_s, 0},
                             {u"suite_tables"_s, false},
                             {u"follow_links"_s, false},
                             {u"is_live"_s, false}};
    return source;
}

earlier_source of_version_1(earlier_source source)
{
    source.version = 1;
    return source;
}

earlier_source left_without_record(int number)
{
    earlier_source source;
    source.number = number;
    source.holds_a_run = true;
    return source;
}

/** "1 /a, 2 /b". */
QString described(const QList<named_source> &sources)
{
    QStringList texts;
    for (const named_source &source : sources)
        texts.append(QString::number(source.number) + u' ' + source.path);
    return texts.join(u", "_s);
}

/** Which sources are run, or why none is. */
QString chosen(const case_request &request, const QList<earlier_source> &earlier)
{
    try {
        const source_choice choice = choose_sources(request, earlier);
        refuse_earlier_results(request, choice, earlier);
        return described(choice.to_run);
    } catch (const host_error &error) {
        return error.message();
    }
}

} // namespace

Q_DECLARE_METATYPE(case_request)
Q_DECLARE_METATYPE(QList<earlier_source>)

class test_case_plan : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void choice_data();
    void choice();
    void added_sources_are_numbered_behind_all_others();
    void added_source_may_be_of_a_container_of_the_case();
    void sources_that_never_began_are_listed();
    void record_that_cannot_be_read_is_no_leftover();
};

void test_case_plan::choice_data()
{
    QTest::addColumn<case_request>("request");
    QTest::addColumn<QList<earlier_source>>("earlier");
    QTest::addColumn<QString>("run");

    const case_request fresh = request_for(earlier_run::refused, three);
    const case_request forced = request_for(earlier_run::removed, three);
    const case_request continued = request_for(earlier_run::continued, three);
    const case_request added = request_for(earlier_run::added_to, {source_at(u"/d"_s)});
    case_request only_second = fresh;
    only_second.only = 2;
    case_request only_ninth = fresh;
    only_ninth.only = 9;
    case_request other_zone = continued;
    other_zone.options.timezone_offset = 3600;
    other_zone.options.suite_tables = true;
    case_request other_limits = continued;
    other_limits.options.memory_limit = 1;
    other_limits.options.plugin_file = u"/x"_s;
    other_limits.options.is_verbose = true;
    const case_request other_sources = request_for(earlier_run::continued, {source_at(u"/a"_s)});
    const case_request unnamed = request_for(earlier_run::continued, {});
    const QString all = u"1 /a, 2 /b, 3 /c"_s;
    const QString holds = u"the case already holds a result, /case/Source%1"_s;
    const QString ways = u": --resume runs what is not done, --force removes it first"_s;
    using enum source_status;

    // clang-format off
    QTest::newRow("first run")                << fresh << QList<earlier_source>() << all;
    QTest::newRow("given numbers")            << request_for(earlier_run::refused, {source_at(u"/a"_s), source_at(u"/b"_s, 1)}) << QList<earlier_source>() << u"2 /a, 1 /b"_s;
    QTest::newRow("a result is there")        << fresh << QList{left(2, done)} << QString(holds.arg(2) + ways);
    QTest::newRow("a part is there")          << fresh << QList{left(2, partial)} << QString(holds.arg(2) + ways);
    QTest::newRow("without a record")         << fresh << QList{left_without_record(3)} << QString(holds.arg(3) + ways);
    QTest::newRow("of no source of the list") << fresh << QList{left(7, interrupted)} << QString(holds.arg(7) + ways);
    QTest::newRow("an incomplete one")        << fresh << QList{left(1, interrupted), left(2, crashed)} << all;
    QTest::newRow("removed")                  << forced << QList{left(1, done), left_without_record(3)} << all;
    QTest::newRow("one of three")             << only_second << QList{left(2, failed)} << u"2 /b"_s;
    QTest::newRow("one that is done")         << only_second << QList{left(2, done)} << QString(holds.arg(2) + ways);
    QTest::newRow("one that is not there")    << only_ninth << QList<earlier_source>() << u"no source has the number 9 of --only"_s;
    QTest::newRow("continued from nothing")   << continued << QList<earlier_source>() << all;
    QTest::newRow("continued")                << continued << QList{left(1, done), left(2, interrupted)} << u"2 /b, 3 /c"_s;
    QTest::newRow("continued after a part")   << continued << QList{left(1, partial), left(2, done), left(3, evidence_changed)} << u"1 /a, 3 /c"_s;
    QTest::newRow("continued, all done")      << continued << QList{left(1, done), left(2, done), left(3, done)} << QString();
    QTest::newRow("continued, other options") << other_zone << QList{left(1, done)} << u"these options are not those of the first run: suite_tables, timezone_offset: --resume takes the same ones, --force starts anew"_s;
    QTest::newRow("continued, other limits")  << other_limits << QList{left(1, done)} << u"2 /b, 3 /c"_s;
    QTest::newRow("continued, other sources") << other_sources << QList{left(1, interrupted)} << u"the sources are not those of the first run, by the record of source 1: --resume takes the same ones"_s;
    QTest::newRow("continued, none named")    << unnamed << QList{left(1, done), left(2, interrupted), left(3, failed)} << u"2 /b, 3 /c"_s;
    QTest::newRow("none named, one unknown")  << unnamed << QList{left(1, done), left(2, interrupted)} << u"no run of some sources began, and nothing in the case has their paths: name all sources again"_s;
    QTest::newRow("added to version 1")       << added << QList{of_version_1(left(1, done))} << u"the record of source 1 is of version 1 of its format, and this program writes version 2: --add cannot go on with it, --force starts anew"_s;
    QTest::newRow("continued, version 1")     << continued << QList{of_version_1(left(1, done))} << u"the record of source 1 is of version 1 of its format, and this program writes version 2: --resume cannot go on with it, --force starts anew"_s;
    QTest::newRow("version 1, none named")    << unnamed << QList{of_version_1(left(1, done))} << u"the record of source 1 is of version 1 of its format, and this program writes version 2: --resume cannot go on with it, --force starts anew"_s;
    QTest::newRow("none named, no case")      << unnamed << QList<earlier_source>() << u"there is no case to continue: /case"_s;
    QTest::newRow("added to nothing")         << added << QList<earlier_source>() << u"there is no case to add to: /case"_s;
    QTest::newRow("added")                    << added << QList{left(1, done), left(3, failed)} << u"4 /d"_s;
    QTest::newRow("added where one stands")   << added << QList{left(1, done), left_without_record(2)} << holds.arg(2);
    // clang-format on
}

void test_case_plan::choice()
{
    QFETCH(case_request, request);
    QFETCH(QList<earlier_source>, earlier);
    QFETCH(QString, run);
    QCOMPARE(chosen(request, earlier), run);
}

void test_case_plan::added_sources_are_numbered_behind_all_others()
{
    const case_request request = request_for(earlier_run::added_to, {source_at(u"/d"_s), source_at(u"/e"_s)});
    const source_choice choice = choose_sources(request, {left(1, source_status::done), left(3, source_status::done)});
    QCOMPARE(described(choice.all), u"1 /a, 3 /c, 4 /d, 5 /e"_s);
}

/** What was chosen in a container sets its sources apart, also where the case has them already. */
void test_case_plan::added_source_may_be_of_a_container_of_the_case()
{
    named_source third = source_at(u"/a"_s);
    third.volume = 3;
    const case_request request = request_for(earlier_run::added_to, {third});
    const QList<earlier_source> earlier{left(1, source_status::done), left(2, source_status::done)};
    QList<named_source> listed{source_at(u"/a"_s), source_at(u"/b"_s)};
    number_sources(listed);
    listed[0].volume = 2;
    listed[1].member = u"x.log"_s;
    const source_choice choice = choose_sources(request, earlier, listed);
    QCOMPARE(described(choice.all), u"1 /a, 2 /b, 3 /a"_s);
    QCOMPARE(choice.all.at(0).volume, 2);
    QCOMPARE(choice.all.at(1).member, u"x.log"_s);
    refuse_overlaps(choice.all, path_comparison::texts);

    listed[0].path = u"/elsewhere"_s; // a list of other sources says nothing of these
    QCOMPARE(choose_sources(request, earlier, listed).all.at(0).volume, 0);
}

/** What the case lists counts only where it is the list that its records are of. */
void test_case_plan::sources_that_never_began_are_listed()
{
    const case_request request = request_for(earlier_run::continued, {});
    const QList<earlier_source> earlier{left(1, source_status::done), left(2, source_status::interrupted)};
    QList<named_source> listed = three;
    number_sources(listed);
    QCOMPARE(described(choose_sources(request, earlier, listed).to_run), u"2 /b, 3 /c"_s);
    listed[2].path = u"/elsewhere"_s;
    QVERIFY_THROWS_EXCEPTION(host_error, choose_sources(request, earlier, listed));
    QCOMPARE(choose_sources(request, {}, listed).to_run.size(), 3); // the run ended before the first one began
}

void test_case_plan::record_that_cannot_be_read_is_no_leftover()
{
    earlier_source broken = left_without_record(1);
    broken.has_record = true;
    broken.problem = host_error(error_kind::not_found, u"no record"_s);
    QVERIFY(!broken.was_left_incomplete());
    QCOMPARE(
        chosen(request_for(earlier_run::refused, three), {broken}),
        u"the case already holds a result, /case/Source1: --resume runs what is not done, --force removes it first"_s);
    QCOMPARE(chosen(request_for(earlier_run::continued, three), {broken}), u"no record"_s);
    QCOMPARE(chosen(request_for(earlier_run::added_to, {source_at(u"/d"_s)}), {broken}), u"no record"_s);
}

BLUETOOTH_LOGS_TEST(test_case_plan, QCoreApplication)

#include "test_case_plan.moc"
