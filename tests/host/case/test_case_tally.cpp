// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/manifest.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using code = outcome_code;

source_record ended(int number, source_status status, std::optional<int> exit_code)
{
    source_record record;
    record.number = number;
    record.status = status;
    record.exit_code = exit_code;
    return record;
}

} // namespace

/** What a case is worth as a whole, by how its sources ended. */
class test_case_tally : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void code_of_the_whole_data();
    void code_of_the_whole();
    void without_a_code_a_source_is_partial();
    void sources_that_are_not_done();
};

void test_case_tally::code_of_the_whole_data()
{
    QTest::addColumn<QList<outcome_code>>("codes");
    QTest::addColumn<bool>("is_interrupted");
    QTest::addColumn<outcome_code>("whole");

    const auto row = [](const char *name, const QList<outcome_code> &codes, outcome_code whole,
                        bool interrupted = false) { QTest::newRow(name) << codes << interrupted << whole; };
    row("all done", {code::done, code::done}, code::done);
    row("one partial", {code::done, code::partial}, code::partial);
    row("one without evidence beside one that is done", {code::no_evidence, code::done}, code::partial);
    row("none with evidence", {code::no_evidence, code::no_evidence}, code::no_evidence);
    row("one failed", {code::done, code::failed}, code::partial);
    row("all failed", {code::failed}, code::partial);
    row("one interrupted", {code::done, code::interrupted, code::partial}, code::interrupted);
    row("interrupted before the second had its turn", {code::done}, code::interrupted, true);
    row("interrupted before the first had its turn", {}, code::interrupted, true);
    row("changed evidence goes before an interruption", {code::evidence_changed, code::interrupted},
        code::evidence_changed, true);
    row("changed evidence goes before missing evidence", {code::no_evidence, code::evidence_changed},
        code::evidence_changed);
    row("no source at all", {}, code::done);
}

void test_case_tally::code_of_the_whole()
{
    QFETCH(const QList<outcome_code>, codes);
    QFETCH(const bool, is_interrupted);
    QFETCH(const outcome_code, whole);
    case_tally tally;
    for (const outcome_code one : codes)
        tally.add(ended(1, source_status::done, int(one)));
    tally.is_interrupted = is_interrupted;
    QCOMPARE(int(tally.code()), int(whole));
}

void test_case_tally::without_a_code_a_source_is_partial()
{
    case_tally tally;
    tally.add(ended(1, source_status::not_run, {}));
    QCOMPARE(int(tally.code()), int(code::partial));
}

void test_case_tally::sources_that_are_not_done()
{
    case_tally tally;
    tally.add(ended(2, source_status::done, 0));
    tally.add(ended(3, source_status::partial, 4));
    tally.add(ended(5, source_status::not_run, {}));
    tally.add(ended(9, source_status::done, 0));
    QCOMPARE(tally.not_done, QList<int>({3, 5}));
    QCOMPARE(tally.sources.value(source_status::done), 2);
    QCOMPARE(tally.sources.value(source_status::crashed), 0);
}

BLUETOOTH_LOGS_TEST(test_case_tally, QCoreApplication)
#include "test_case_tally.moc"
