// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/result_rows.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>
#include <QThread>

class test_result_rows : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void progress_is_due_after_a_second();
    void no_progress_is_due_without_a_timer();
};

void test_result_rows::progress_is_due_after_a_second()
{
    QElapsedTimer timer;
    timer.start();
    qint64 before = 0;
    while (before <= 1000) {
        QThread::usleep(200); // often enough, and the processor is others'
        before = timer.elapsed();
        const bool is_due = is_progress_due(timer);
        const qint64 after = timer.elapsed();
        if (after <= 1000)
            QVERIFY2(!is_due, qPrintable(QString::number(after)));
        if (before > 1000)
            QVERIFY2(is_due, qPrintable(QString::number(before)));
    }
}

void test_result_rows::no_progress_is_due_without_a_timer()
{
    QVERIFY(!is_progress_due(QElapsedTimer()));
}

BLUETOOTH_LOGS_TEST(test_result_rows, QCoreApplication)

#include "test_result_rows.moc"
