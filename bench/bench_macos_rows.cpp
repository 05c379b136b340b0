// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// bench_macos_rows ROWS...
// For each number of OtherDevices rows: times a whole extraction of a synthetic source against a bare loop of the same
// prepare, bind and execute in one transaction, by turns, and tells the peak memory that the extraction adds. One
// number a call gives the cleanest memory figure.

#include "bench/measure.h"
#include "common/sqlite_connection.h"
#include "plugin/bluetooth_logs.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <ctime>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString insert_statement =
    u"insert into devices(bookmark, uuid, device_name, address, source_file,last_seen_time, last_connection_time,os_scheme_display,source_count_name) values(?,?,?,?,?,?,?, ?,?)"_s;

QStringList device(int number)
{
    const QString digits = QString::number(number).rightJustified(12, u'0');
    return {u"6B1E2F30-4C5D-4E6F-8A9B-"_s + digits, number % 200 == 0 ? u"Kopfhörer "_s + digits : QString(),
            u"Random 50:32:66:45:35:EF"_s, QString::number(395626 + number), QString::number(number % 7)};
}

void require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

/** Wall-clock and processor seconds of one piece of work. */
struct seconds
{
    double wall = 0;
    double cpu = 0;
};

template<typename Work>
seconds timed(Work work)
{
    const std::clock_t begin = std::clock();
    const double wall = seconds_of(work);
    return {wall, double(std::clock() - begin) / CLOCKS_PER_SEC};
}

/** Runs statements on a file, all in one transaction. */
template<typename Work>
void in_transaction(const QString &file, Work work)
{
    QSqlDatabase database = open_sqlite_connection(u"benchmark"_s, file);
    require(database.isOpen() && database.transaction(), "opening");
    {
        QSqlQuery query(database);
        work(query);
    }
    require(database.commit(), "commit");
    database.close();
}

void make_source(const QString &root, int rows)
{
    QDir().mkpath(root + u"Library/Bluetooth"_s);
    in_transaction(root + u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s, [&](QSqlQuery &query) {
        require(query.exec(u"CREATE TABLE OtherDevices(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, "
                           "ResolvedAddress TEXT, LastSeenTime INT, LastConnectionTime INT, "
                           "GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT)"_s),
                "creating");
        for (int row = 0; row < rows; ++row)
            require(execute_with_values(query,
                                        u"INSERT INTO OtherDevices(Uuid, Name, Address, LastSeenTime, "
                                        "LastConnectionTime, iCloudIdentifier) VALUES(?, ?, ?, ?, ?, '')"_s,
                                        device(row)),
                    "inserting");
    });
}

/** A case that is ready for extraction; gone with its folder when this object goes. */
class prepared_case
{
public:
    explicit prepared_case(const QString &root)
    {
        struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
        source.source_root_path = root;
        source.os_scheme_internal = u"macOS"_s;
        source.os_scheme_display = u"macOS 12.6"_s;
        plugin.pub_set_essentials();
        plugin.pub_set_source_info(source);
        plugin.pub_set_engine_type(0);
        plugin.pub_set_source_count(1);
        plugin.pub_set_result_directory(directory.path());
        plugin.pub_set_essential_for_kaldo_desk_extraction({u"devices"_s}, {});
        plugin.pub_create_db_tables();
    }

    seconds extract()
    {
        return timed([this] {
            plugin.pub_find_source_file();
            plugin.pub_extract_artifacts();
        });
    }

    seconds insert_bare(const QList<QStringList> &rows)
    {
        return timed([&] {
            in_transaction(database(), [&rows](QSqlQuery &query) {
                for (const QStringList &values : rows)
                    require(execute_with_values(query, insert_statement, values), "inserting");
            });
        });
    }

    qint64 row_count() const
    {
        qint64 count = 0;
        in_transaction(database(), [&count](QSqlQuery &query) {
            require(query.exec(u"SELECT count(*) FROM devices"_s) && query.next(), "counting");
            count = query.value(0).toLongLong();
        });
        return count;
    }

private:
    QString database() const
    {
        return directory.path() + u"/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    }

    QTemporaryDir directory;
    bluetooth_logs plugin;
};

/** Lets the peak begin anew at the present size. */
void reset_peak_memory()
{
    QFile clear(u"/proc/self/clear_refs"_s);
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QTextStream out(stdout);
    for (const QString &argument : QCoreApplication::arguments().mid(1)) {
        const int rows = argument.toInt();
        const QTemporaryDir directory;
        const QString root = directory.path() + u"/source/"_s;
        make_source(root, rows);

        reset_peak_memory();
        const qint64 before = process_memory("VmRSS:");
        {
            prepared_case one(root);
            one.extract();
            require(one.row_count() == rows, "extraction");
        }
        const double bytes_a_row = double(process_memory("VmHWM:") - before) / rows;

        QList<QStringList> values;
        for (int row = 0; row < rows; ++row) {
            const QStringList texts = device(row);
            values.append({u"0"_s, texts[0], texts[1].isNull() ? u""_s : texts[1], texts[2], root, texts[3], texts[4],
                           u"macOS 12.6"_s, u"Source1"_s});
        }
        std::vector<double> whole;
        std::vector<double> wall_ratios;
        std::vector<double> cpu_ratios;
        for (int round = 0; round < rounds; ++round) {
            const seconds bare = prepared_case(root).insert_bare(values);
            const seconds extraction = prepared_case(root).extract();
            whole.push_back(extraction.wall);
            wall_ratios.push_back(extraction.wall / bare.wall);
            cpu_ratios.push_back(extraction.cpu / bare.cpu);
        }
        out << rows << " rows: " << qint64(rows / median(whole)) << " rows/s, "
            << QString::number(median(whole) / rows * 1e6, 'f', 2)
            << " us a row, whole extraction / bare inserts = " << QString::number(median(wall_ratios), 'f', 2)
            << " by the clock, " << QString::number(median(cpu_ratios), 'f', 2) << " of processor time, peak memory "
            << qint64(bytes_a_row) << " bytes a row\n"
            << Qt::flush;
    }
    return 0;
}
