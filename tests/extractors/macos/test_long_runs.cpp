// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/macos_source.h"
#include "tests/support/plugin_run.h"
#include "tests/support/progress_record.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

class test_long_runs : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void progress();
};

void test_long_runs::progress()
{
    macos_source source;
    plugin_run run;
    run.source.source_root_path = source.root();
    QList<QVariantList> rows;
    for (int row = 0; row < 120000; ++row)
        rows.append({u"UUID"_s});
    source.make_other().execute_many(u"INSERT INTO OtherDevices(Uuid) VALUES(?)"_s, rows);
    run.tabs = QStringList{u"devices"_s};
    progress_record progress(run.frame);
    QElapsedTimer timer;
    timer.start();
    run.run();
    const qint64 seconds = timer.elapsed() / 1000;

    // Between the frame's first signal and the tab's: at most one a second, growing, never the whole.
    const qsizetype tab = progress.events.indexOf(u"tabs 1"_s);
    QStringList during = progress.events.mid(1, tab - 2);
    QVERIFY2(during.size() <= seconds, qPrintable(during.join(u' ')));
    qint64 last = 0;
    for (const QString &event : during) {
        const qint64 records = event.section(u' ', 1).toLongLong();
        QVERIFY(records > last);
        last = records;
    }
    QVERIFY(last <= 120000);
    QCOMPARE(progress.events.mid(tab - 1),
             QStringList({u"records 120000"_s, u"tabs 1"_s, u"records 120000"_s, u"records 120000"_s}));
}

BLUETOOTH_LOGS_TEST(test_long_runs, QApplication)

#include "test_long_runs.moc"
