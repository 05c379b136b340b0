// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_page.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** How much there is of what a page shows only so much of. */
struct amounts
{
    int sources = 2;
    int devices = 1;  ///< paired, named and shared
    int known_in = 2; ///< sources
    int name = 1;     ///< characters
    int logs = 1;
    int lanes = 1; ///< devices of each log
    int notes = 0;
    int shortcomings = 1;
    int shortcoming = 1; ///< characters
};

report_case case_with(const amounts &much)
{
    report_case the_case{case_layout(u"/nowhere"_s), {}, {}, {}, {}, {}};
    for (int number = 1; number <= std::max({much.sources, much.known_in, much.logs}); ++number) {
        report_source source;
        source.record.number = number;
        source.record.status = source_status::done;
        source.name = u"s"_s;
        the_case.sources.append(source);
    }
    QList<case_note> notes;
    for (int number = 1; number <= much.notes; ++number) {
        case_note note;
        note.number = number;
        note.row = noted_row{1, u"devices"_s, number};
        notes.append(note);
    }
    the_case.notes = std::make_shared<note_list>(notes);
    return the_case;
}

QList<joined_device> devices_with(const amounts &much)
{
    QList<joined_device> devices;
    for (int number = 1; number <= much.devices; ++number) {
        joined_device device;
        device.number = number;
        device.shared_number = number;
        for (int source = 0; source < much.known_in; ++source) {
            device_appearance one;
            one.source = source;
            one.name = QByteArray(much.name, 'n');
            one.is_paired = true;
            device.appearances.append(one);
            device.sources.append(source);
        }
        devices.append(device);
    }
    return devices;
}

/** Each log has a row for each of its devices. */
row_devices add_rows(html_page &page, const report_case &the_case, const amounts &much)
{
    row_devices numbers;
    const sqlite_database database(u":memory:"_s, sqlite_database::access::create);
    const host_values host;
    for (int log = 0; log < much.logs; ++log) {
        sqlite_statement row(database, "SELECT 'May 17 12:11:05' AS date");
        row.next();
        for (int lane = 1; lane <= much.lanes; ++lane) {
            page.count({the_case.sources.at(log), u"devices"_s, row, host, "devices"});
            numbers[u"devices"_s].push_back(lane);
        }
    }
    return numbers;
}

QByteArray page_with(const amounts &much, bool is_brief)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"page.html"_s);
    const report_case the_case = case_with(much);
    const QList<joined_device> devices = devices_with(much);
    html_page page(the_case);
    const row_devices numbers = add_rows(page, the_case, much);
    QStringList shortcomings;
    for (int number = 1; number <= much.shortcomings; ++number)
        shortcomings.append(much.shortcoming > 1 ? QString(much.shortcoming, u's') : u"s %1"_s.arg(number));
    const page_content content{devices, numbers, shortcomings, true, devices.size(), devices.size()};
    if (is_brief)
        page.write_brief(file, content, {});
    else
        page.write(file, content);
    return content_of(file);
}

struct limit
{
    const char *of;
    int amounts::*amount;
    int most;
    const char *sign;          ///< that something is left out
    const char *one = nullptr; ///< of those that are shown, the first ones; "@" for its number
};

constexpr limit limits_of_page[] = {
    {"devices", &amounts::devices, 20, "<p>And 1 more", "<td><a href=\"#device-@\">"},
    {"sources of a device", &amounts::known_in, 21, // the last one takes no more room
     "<td>1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20 and 2 more</td>"},
    {"columns of a name", &amounts::name, 4000, "… (cut; 4001 bytes)</bdi>"},
    {"logs", &amounts::logs, 12, "<p>And 1 more logs;", "<h3>Source @:"},
    {"devices of a log", &amounts::lanes, 20, " devices are shown: "},
    {"notes", &amounts::notes, 20, "<p>And 1 more notes.</p>", "<td>row 1:devices:@</td>"},
    {"shortcomings", &amounts::shortcomings, 1000, "<li>and 1 more</li>", "<li>s @</li>"},
};

constexpr limit limits_of_brief[] = {
    {"devices", &amounts::devices, 50, "<p>And 1 more", "<tr><td>@</td><td><bdi>n</bdi></td><td>paired"},
    {"sources of a device", &amounts::known_in, 7, "<td>1, 2, 3, 4, 5, 6 and 2 more</td>"},
    {"columns of a name", &amounts::name, 44, "…</bdi>"},
    {"logs", &amounts::logs, 2, "<p>And 1 more logs;", "<h3>Source @:"},
    {"devices of a log", &amounts::lanes, 6, " devices are shown: "},
    {"notes", &amounts::notes, 20, "<p>And 1 more notes.</p>", "<td>row 1:devices:@</td>"},
    {"shortcomings", &amounts::shortcomings, 20, "<li>and 1 more</li>", "<li><bdi>s @</bdi></li>"},
    {"columns of a shortcoming", &amounts::shortcoming, 300, "…</bdi>"},
    {"sources", &amounts::sources, 30, "<p>And 1 more sources.</p>", "<tr><td>@</td><td><bdi>s</bdi></td><td></td>"},
};

void compare(const limit &one, bool is_brief)
{
    for (const int more : {0, 1}) {
        amounts much;
        much.*one.amount = one.most + more;
        const QByteArray page = page_with(much, is_brief);
        QVERIFY2(page.contains(one.sign) == (more == 1), one.of);
        QVERIFY2(!page.contains("nd 0 more"), one.of);
        for (const int number : {1, one.most, one.most + 1}) {
            if (one.one && (number <= one.most || more == 1))
                QVERIFY2(page.contains(QByteArray(one.one).replace('@', QByteArray::number(number)))
                             == (number <= one.most),
                         one.of);
        }
    }
}

} // namespace

/** How much a page shows of what there may be much of, and that it says so where there is more. */
class test_page_limits : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void page();
    void brief();
};

void test_page_limits::page()
{
    for (const limit &one : limits_of_page)
        compare(one, false);
}

void test_page_limits::brief()
{
    for (const limit &one : limits_of_brief)
        compare(one, true);
}

BLUETOOTH_LOGS_TEST(test_page_limits, QCoreApplication)

#include "test_page_limits.moc"
