// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/device_names.h"
#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"
#include "host/sample/write_ahead_log.h"
#include "host/source/macos_databases.h"
#include "host/sqlite/sqlite.h"

#include <QFile>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 other_device_count = 1000;
constexpr qint64 paired_device_count = 20;
constexpr qsizetype long_name_size = 1 << 20;

// As the operating system lays them out: no key and nothing required.
constexpr const char *device_columns =
    "(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, LastSeenTime INT, "
    "LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT)";

constexpr const char *common_statements = "CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT, UNIQUE(Uuid));"
                                          "CREATE TABLE _SqliteDatabaseProperties(key TEXT, value TEXT, UNIQUE(key));"
                                          "INSERT INTO _SqliteDatabaseProperties VALUES('_ClientVersion', 2);";

/** A row of a device table; what has no value is NULL. */
struct sample_device
{
    QString uuid;
    std::optional<QByteArray> name; ///< any bytes
    qint64 name_origin = 0;
    QString address;
    std::optional<QString> resolved_address;
    qint64 last_seen = 0; ///< the times are counters, not dates
    qint64 last_connection = 0;
    qint64 service_change = 0;
    std::optional<QString> tags;
    QString icloud_identifier;
};

/** Adds rows to a device table. */
class device_writer
{
public:
    // A name may be bytes, which stand in the database as a text then.
    device_writer(const sqlite_database &database, const QByteArray &table)
        : statement(database, "INSERT INTO " + table + " VALUES(?, CAST(? AS TEXT), ?, ?, ?, ?, ?, ?, ?, ?)")
    {
    }

    void add(const sample_device &device)
    {
        int parameter = 0;
        statement.bind(parameter++, device.uuid);
        if (device.name)
            statement.bind_bytes(parameter++, *device.name);
        else
            statement.bind_null(parameter++);
        statement.bind(parameter++, device.name_origin);
        statement.bind(parameter++, device.address);
        bind_text(parameter++, device.resolved_address);
        statement.bind(parameter++, device.last_seen);
        statement.bind(parameter++, device.last_connection);
        statement.bind(parameter++, device.service_change);
        bind_text(parameter++, device.tags);
        statement.bind(parameter++, device.icloud_identifier);
        statement.next();
        statement.reset();
    }

private:
    void bind_text(int parameter, const std::optional<QString> &text)
    {
        if (text)
            statement.bind(parameter, *text);
        else
            statement.bind_null(parameter);
    }

    sqlite_statement statement;
};

/** Nearly all devices that were only seen have no name; the named ones are spread among them. */
std::optional<QByteArray> other_name(qint64 row)
{
    constexpr qint64 spread = other_device_count / qint64(std::size(other_device_names));
    if (row % spread != spread / 2 || row / spread >= qint64(std::size(other_device_names)))
        return {};
    return other_device_names[row / spread].toUtf8();
}

/** Names that many tools fail on. */
QByteArrayList hostile_names()
{
    return {QByteArray("<img src=x onerror=alert(1)>").repeated(long_name_size / 28), QByteArray("NUL \0 inside", 12),
            "lone surrogate \xED\xA0\x80 inside"};
}

void fill_other_devices(device_writer &table, sample_names names)
{
    sample_random random(1);
    qint64 seen = 150;
    for (qint64 row = 0; row < other_device_count; ++row) {
        seen += 1 + random.below(800);
        sample_device device;
        device.name = other_name(row);
        device.address = random.below(5) == 0 ? u"Public "_s : u"Random "_s;
        device.address += random.address(u':');
        device.last_seen = seen;
        device.last_connection = random.below(20) == 0 ? seen / 180 : 0; // 0: never
        device.uuid = random.uuid();
        device.name_origin = device.name ? 1 + random.below(3) : 0;
        table.add(device);
    }
    if (names == sample_names::usual)
        return;
    for (const QByteArray &name : hostile_names()) {
        sample_device device;
        device.name = name;
        device.name_origin = 1;
        device.address = u"Random "_s + random.address(u':');
        device.uuid = random.uuid();
        device.last_seen = ++seen;
        table.add(device);
    }
}

void fill_paired_devices(device_writer &table)
{
    sample_random random(2);
    qint64 connected = 3;
    for (qint64 row = 0; row < paired_device_count; ++row) {
        connected += 1 + random.below(90);
        sample_device device;
        if (row < qint64(std::size(paired_device_names)))
            device.name = paired_device_names[row].toUtf8();
        device.name_origin = 1;
        const QString address = u"Public "_s + paired_address(row);
        const QString random_address = u"Random "_s + random.address(u':');
        const bool is_resolved = row % 3 == 0;
        device.address = is_resolved ? random_address : address;
        if (is_resolved)
            device.resolved_address = address;
        device.uuid = random.uuid();
        device.last_seen = connected * 180 + random.below(180);
        device.last_connection = connected;
        device.service_change = row % 2;
        if (row % 2 == 0)
            device.tags = u"Connected,HID"_s;
        device.icloud_identifier = row % 5 == 0 ? random.uuid() : u""_s;
        table.add(device);
    }
}

// What happened since the system wrote its log back to the file the last time.

void change_other_devices(sqlite_database &database, device_writer &table)
{
    database.execute("UPDATE OtherDevices SET LastSeenTime = LastSeenTime + 401000 WHERE rowid IN (3, 512);"
                     "DELETE FROM OtherDevices WHERE rowid = 7;");
    sample_random random(6);
    for (const char *name : {"Airport lounge printer", "Rental car 7"}) {
        sample_device device;
        device.uuid = random.uuid();
        device.name = name;
        device.name_origin = 1;
        device.address = u"Random "_s + random.address(u':');
        device.last_seen = 402000 + random.below(900);
        table.add(device);
    }
}

void change_paired_devices(sqlite_database &database, device_writer &table)
{
    database.execute("UPDATE PairedDevices SET Name = 'Trackpad (office)', LastConnectionTime = 2143 WHERE rowid = 4;"
                     "DELETE FROM PairedDevices WHERE rowid = 18;");
    sample_random random(7);
    sample_device device;
    device.uuid = random.uuid();
    device.name = "Rental car 7";
    device.name_origin = 1;
    device.address = u"Public "_s + rental_car_address;
    device.last_seen = 402950;
    device.last_connection = 2144;
    table.add(device);
}

/**
 * One database in the write-ahead journal mode that the operating system uses, open while @p work fills or changes it;
 * closing it moves all rows to the file.
 */
template<typename Work>
void work_on_database(const QString &file, sqlite_database::access mode, const macos_database &kind, const Work &work)
{
    const QByteArray table(kind.device_table.data(), kind.device_table.size());
    try {
        sqlite_database database(file, mode);
        if (mode == sqlite_database::access::create) {
            for (const char *pragma : {"PRAGMA page_size=4096", "PRAGMA journal_mode=WAL"})
                sqlite_statement(database, pragma).next();
        }
        database.execute("BEGIN");
        if (mode == sqlite_database::access::create) {
            database.execute(QByteArray("CREATE TABLE " + table + device_columns).constData());
            database.execute(common_statements);
        }
        {
            device_writer writer(database, table);
            work(database, writer);
        }
        database.execute("COMMIT");
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, u"the sample database cannot be written: "_s + error.message());
    }
}

QByteArray content_of_sample(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw host_error(error_kind::io, u"the sample database cannot be read: "_s + path);
    return file.readAll();
}

/** The database as it was before @p change, and beside it the log that has the change. */
template<typename Fill, typename Change>
void write_database(const QString &folder, const macos_database &kind, const Fill &fill, const Change &change)
{
    const QString file = folder + kind.file_name;
    work_on_database(file, sqlite_database::access::create, kind, fill);
    const QByteArray before = content_of_sample(file);
    work_on_database(file, sqlite_database::access::read_write, kind, change);
    const QByteArray after = content_of_sample(file);
    if (!QFile::remove(file))
        throw host_error(error_kind::io, u"the sample database cannot be written: "_s + file);
    write_sample_file(file, before);
    write_sample_file(file + u"-wal"_s, write_ahead_log(before, after));
}

} // namespace

QString paired_address(qint64 row)
{
    sample_random random(5);
    QString address;
    for (qint64 before = 0; before <= row; ++before)
        address = random.address(u':');
    return address;
}

void write_ledevices_databases(const QString &folder, sample_names names)
{
    const auto fill_other = [names](sqlite_database &, device_writer &table) { fill_other_devices(table, names); };
    const auto fill_paired = [](sqlite_database &, device_writer &table) { fill_paired_devices(table); };
    write_database(folder, other_devices_database, fill_other, change_other_devices);
    write_database(folder, paired_devices_database, fill_paired, change_paired_devices);
}
