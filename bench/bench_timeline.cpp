// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// bench_timeline EVENTS…   sorts so many events of a timeline, and writes timeline.jsonl and timeline.csv of them

#include "bench/measure.h"
#include "host/report/list_files.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QTextStream>

#include <random>

using namespace Qt::StringLiterals;

namespace {

/** Lines of a log, in no order. */
std::vector<timeline_event> make_events(int count)
{
    constexpr quint32 seconds_of_ten_years = 315360000;
    constexpr qint64 start_of_2015 = 1420070400;
    std::mt19937 numbers(1);
    std::vector<timeline_event> events;
    for (int i = 0; i < count; ++i) {
        const qint64 second = start_of_2015 + qint64(numbers() % seconds_of_ten_years);
        const QByteArray number = QByteArray::number(i);
        timeline_event event;
        event.timestamp = second * 1000000;
        event.datetime = QDateTime::fromSecsSinceEpoch(second, Qt::UTC).toString(u"yyyy-MM-ddTHH:mm:ss"_s).toLatin1()
                         + "+00:00";
        event.message = "May 17 12:11:05 phone sharingd[102] <Notice>: BLE device found: SFDevice ID " + number
                        + ", IDS 1, RSSI -60, Nm 'Kitchen', Md 'Model1,1', AID 7F";
        event.description = "Line of a log";
        event.source = 1;
        event.device = number;
        event.name = "Kitchen";
        event.locator = "system.log line " + number;
        events.push_back(event);
    }
    return events;
}

} // namespace

int main(int argc, char *argv[])
{
    QTextStream out(stdout);
    for (int argument = 1; argument < argc; ++argument) {
        const int count = QByteArray(argv[argument]).toInt();
        const QTemporaryDir directory;
        report_options options;
        options.output = directory.path();
        timeline events;
        std::vector<double> sorting;
        std::vector<double> writing;
        for (int round = 0; round < rounds; ++round) {
            events.events = make_events(count);
            changed_cells changes;
            sorting.push_back(seconds_of([&] { sort_events(events.events); }));
            writing.push_back(seconds_of([&] { write_timeline_files(options, events, changes); }));
        }
        out << count << " events: sorted in " << QString::number(median(sorting), 'f', 3) << " s, written in "
            << QString::number(median(writing), 'f', 3) << " s\n"
            << Qt::flush;
    }
    return 0;
}
