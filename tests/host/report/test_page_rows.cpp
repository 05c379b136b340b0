// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/host/report/page_data.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString log_name = u"system.log"_s;
const QString widened_log_name = u"more.log"_s;

void write_logs(const host_program &host)
{
    // clang-format off
    write_file(host.path(log_name),
               "May 17 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 1A, RSSI -60, Nm 'Car', Md 'a1', AID 7F\n"
               "May 17 12:11:06 p s[1] <Notice>: active device: PI 5A:1B:2C:3D:4E:5F, Nm 'Pods', PairedBT yes\n");
    write_file(host.path(widened_log_name),
               "May 18 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 2B, RSSI -70, Nm 'Café', Md 'b2'\n");
    // clang-format on
}

/** A row of JSON Lines, by the page's names of its columns. */
QJsonObject as_page_row(const QJsonObject &line)
{
    QJsonObject row{{u"source"_s, line.value("source"_L1)}, {u"source_name"_s, line.value("source_name"_L1)}};
    for (const auto &[member, prefix] : {std::pair("plugin"_L1, "plugin_"_L1), std::pair("host"_L1, "host_"_L1),
                                         std::pair("locator"_L1, "host_"_L1)}) {
        const QJsonObject values = line.value(member).toObject();
        for (auto value = values.constBegin(); value != values.constEnd(); ++value)
            row.insert(prefix + value.key(), value.value());
    }
    return row;
}

/** As the page shows it. */
QJsonValue shown(const QJsonValue &value)
{
    return value.isDouble() ? QString::number(value.toInteger()) : value;
}

/** A column that the page leaves out holds nothing in any row. */
QStringList differences(const QList<QJsonObject> &on_pages, const QList<QJsonObject> &wanted)
{
    QStringList found;
    for (qsizetype i = 0; i < wanted.size(); ++i) {
        const QJsonObject row = as_page_row(wanted.at(i));
        for (auto value = row.constBegin(); value != row.constEnd(); ++value) {
            const QJsonValue on_page = on_pages.value(i).value(value.key());
            if (on_page.toString() != shown(value.value()).toString() || on_page.isString() == value.value().isNull())
                found.append(u"row %1, %2: %3 instead of %4"_s.arg(i + 1).arg(value.key(), on_page.toString(),
                                                                              shown(value.value()).toString()));
        }
    }
    return found;
}

} // namespace

/** The page shows the values that JSON Lines have, whatever the order of the sources and of their columns. */
class test_page_rows : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void same_cells_as_json_lines_data();
    void same_cells_as_json_lines();
};

void test_page_rows::same_cells_as_json_lines_data()
{
    QTest::addColumn<QStringList>("sources");

    const QStringList kinds{u"macos"_s, u"macos without model"_s, u"log"_s, u"other log"_s};
    for (const QString &first : kinds) {
        for (const QString &second : kinds) {
            if (first != second)
                QTest::newRow(qPrintable(first + u" before "_s + second)) << QStringList{first, second};
        }
    }
}

void test_page_rows::same_cells_as_json_lines()
{
    QFETCH(QStringList, sources);
    const host_program host;
    write_logs(host);
    const macos_source full;
    const macos_source half;
    // clang-format off
    macos_source::add_device(full.make_other(), u"OtherDevices"_s,
                             {u"U-1"_s, u"one"_s, 2, u"Random C0:00:00:00:00:01"_s, u"Public B4:C2:6A:7F:D3:7A"_s, 395626, 0, 0, u"Tag"_s, u"ic-1"_s});
    macos_source::add_device(full.make_paired(), u"PairedDevices"_s,
                             {u"U-1"_s, u"one"_s, 1, u"Public B4:C2:6A:7F:D3:7A"_s, QVariant(), 9, 8, 1, u"Connected"_s, u"ic-1"_s});
    macos_source::add_device(half.make_paired(), u"PairedDevices"_s,
                             {u"U-2"_s, QVariant(), 1, QVariant(), QVariant(), 5, QVariant(), QVariant(), QVariant(), QVariant()});
    // clang-format on
    const QMap<QString, QString> places{{u"macos"_s, full.root()},
                                        {u"macos without model"_s, half.root()},
                                        {u"log"_s, log_name},
                                        {u"other log"_s, widened_log_name}};
    QStringList arguments{u"-q"_s, u"extract"_s, u"-o"_s, u"case"_s, u"--jobs"_s, u"1"_s};
    for (const QString &source : std::as_const(sources))
        arguments << u"-i"_s << places.value(source);
    const host_result extracted = host.run(arguments);
    QVERIFY2(host.path(u"case/manifest.json"_s).size() > 0, qPrintable(extracted.errors));
    host.run({u"-q"_s, u"report"_s, u"case"_s, u"-f"_s, u"html"_s, u"-f"_s, u"jsonl"_s});

    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    qsizetype compared = 0;
    for (const auto &[table, section] :
         {std::pair(u"devices"_s, u"devices"_s), std::pair(u"paired_devices"_s, u"paired-devices"_s)}) {
        QList<QJsonObject> wanted;
        for (const QByteArray &line : content_of(host.path(u"case/Report/"_s + table + u".jsonl"_s)).split('\n')) {
            if (!line.isEmpty())
                wanted.append(QJsonDocument::fromJson(line).object());
        }
        const QList<QJsonObject> found = page_rows(page, section);
        QCOMPARE(found.size(), wanted.size());
        QCOMPARE(differences(found, wanted), QStringList());
        compared += wanted.size();
    }
    QVERIFY(compared >= 2);
}

BLUETOOTH_LOGS_TEST(test_page_rows, QCoreApplication)

#include "test_page_rows.moc"
