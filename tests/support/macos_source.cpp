// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/macos_source.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

sqlite_file make_database(const QString &path, const QString &table)
{
    sqlite_file database(path);
    database.execute(u"CREATE TABLE "_s + table
                     + u"(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, LastSeenTime INT, "
                       "LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT)"_s);
    return database;
}

} // namespace

macos_source::macos_source()
{
    QDir().mkpath(root() + u"Library/Bluetooth"_s);
}

QString macos_source::root() const
{
    return directory.path() + u"/source/"_s;
}

QString macos_source::other_db() const
{
    return root() + u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
}

QString macos_source::paired_db() const
{
    return root() + u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s;
}

sqlite_file macos_source::make_other() const
{
    return make_database(other_db(), u"OtherDevices"_s);
}

sqlite_file macos_source::make_paired() const
{
    return make_database(paired_db(), u"PairedDevices"_s);
}

void macos_source::add_device(const sqlite_file &database, const QString &table, const QVariantList &values)
{
    QVariantList row = values;
    row.resize(10);
    database.execute(u"INSERT INTO "_s + table + u" VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_s, row);
}
