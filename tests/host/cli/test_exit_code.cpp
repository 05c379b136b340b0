// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/exit_code.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

/** The numbers that scripts rely on. */
class test_exit_code : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void of_errors();
    void of_cases();
};

void test_exit_code::of_errors()
{
    QCOMPARE(int(exit_code::done), 0);
    QCOMPARE(int(exit_code_of(error_kind::io)), 1);
    QCOMPARE(int(exit_code_of(error_kind::refused)), 2);
    QCOMPARE(int(exit_code_of(error_kind::not_found)), 3);
    QCOMPARE(int(exit_code_of(error_kind::incomplete)), 4);
    QCOMPARE(int(exit_code_of(error_kind::evidence_changed)), 5);
    QCOMPARE(int(exit_code_of(error_kind::interrupted)), 130);
}

void test_exit_code::of_cases()
{
    QCOMPARE(exit_code_of(outcome_code::done), exit_code::done);
    QCOMPARE(exit_code_of(outcome_code::failed), exit_code::internal_error);
    QCOMPARE(exit_code_of(outcome_code::no_evidence), exit_code::input);
    QCOMPARE(exit_code_of(outcome_code::partial), exit_code::partial);
    QCOMPARE(exit_code_of(outcome_code::evidence_changed), exit_code::evidence_changed);
    QCOMPARE(exit_code_of(outcome_code::interrupted), exit_code::interrupted);
}

BLUETOOTH_LOGS_TEST(test_exit_code, QCoreApplication)

#include "test_exit_code.moc"
