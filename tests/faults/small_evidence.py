# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""A small Mac with a write-ahead log, and a small log of an iOS device: what the attacks on the program work with."""

import os
import plistlib
import shutil
import sqlite3

COLUMNS = ("Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, LastSeenTime INT, "
           "LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT")
PREFIX = "May 17 12:11:0{} synthetic-phone "
LOG_LINES = [
    "bluetoothd[112] <Notice>: advertising buffer has room",
    "sharingd(CoreUtils)[102] <Notice>: BLE device found: SFDevice ID 0F3A1B2C-1111-4000-8000-000000000001, "
    "IDS 0F3A1B2C-2222-4000-8000-000000000002, RSSI -61, Nm 'Kitchen speaker', Md 'Speaker1,1', AID A1B2C3, PairedBT",
    "audioaccessoryd[219] <Notice>: Connected active device: Endpoint 12AB, PI 04:52:C7:00:00:01, Nm 'Car, front', "
    "Md 'Car1,1'",
]


def _make_database(path, table, has_log):
    database = sqlite3.connect(path)
    database.execute(f"CREATE TABLE {table}({COLUMNS})")
    if has_log:
        database.execute("PRAGMA journal_mode=WAL")
    for number in range(3):
        database.execute(f"INSERT INTO {table} VALUES(?, ?, 1, ?, NULL, ?, 0, 0, NULL, '')",
                         (f"0000000{number}-0000-4000-8000-000000000000", f"Device {number}",
                          f"Public 04:52:C7:00:00:0{number}", 1000 + number))
    database.commit()
    return database


def make_evidence(folder):
    """FOLDER/mac and FOLDER/log.txt."""
    bluetooth = os.path.join(folder, "mac", "Library", "Bluetooth")
    preferences = os.path.join(folder, "mac", "Library", "Preferences")
    os.makedirs(bluetooth)
    os.makedirs(preferences)
    start = os.path.join(bluetooth, "com.apple.MobileBluetooth.ledevices.")
    _make_database(start + "other.db", "OtherDevices", False).close()
    # What a log adds stands beside the database only while somebody has it open: it is copied meanwhile.
    scratch = os.path.join(folder, "scratch.db")
    database = _make_database(scratch, "PairedDevices", True)
    database.execute("PRAGMA wal_checkpoint(TRUNCATE)")
    database.execute("DELETE FROM PairedDevices WHERE LastSeenTime = 1002")
    database.commit()
    for ending in ("", "-wal"):
        shutil.copyfile(scratch + ending, start + "paired.db" + ending)
    database.close()
    for name in os.listdir(folder):
        if name.startswith("scratch"):
            os.remove(os.path.join(folder, name))
    with open(os.path.join(preferences, "com.apple.Bluetooth.plist"), "wb") as file:
        plistlib.dump({"DeviceCache": {"04-52-c7-00-00-01": {"Name": "One"}}}, file)
    with open(os.path.join(folder, "log.txt"), "w", encoding="utf-8") as file:
        for number, line in enumerate(LOG_LINES):
            file.write(PREFIX.format(number) + line + "\n")


def state_of(folder):
    """Names, contents, times and permissions of all below a folder."""
    result = []
    for place, names, files in os.walk(folder):
        for name in sorted(names + files):
            path = os.path.join(place, name)
            status = os.lstat(path)
            content = b""
            if name in files:
                with open(path, "rb") as file:
                    content = file.read()
            result.append((path, status.st_mode, status.st_mtime_ns, status.st_ctime_ns, content))
    return sorted(result)
