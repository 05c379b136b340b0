#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# bench_report.py PROGRAM page ROWS [MODULES]   a page of so many rows: how long it takes to make, and, where node finds
#                                               puppeteer-core in MODULES, to open, to filter and to sort
# bench_report.py PROGRAM lines ROWS            JSON Lines of so many rows against "sqlite3 -json" on the same tables, by
#                                               turns, with the peak memory of each
# bench_report.py PROGRAM database ROWS         report.sqlite of so many rows against sqlite3's ".import" of the report's own
#                                               CSV, alone and with the same indexes and names made after it, by turns,
#                                               with the peak memory of each
# bench_report.py PROGRAM timeline EVENTS       a timeline of so many lines of a log
# The case stands in the temporary folder meanwhile.

import os
import pathlib
import random
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

rounds = 5
nothing_to_measure_with = 77 # the browser or its modules are missing
names = ["Kitchen speaker", "Зоя's headphones", "リビングのスピーカー", "Car, front", "=1+1", None, None, None, None, None]


def make_source(root, rows):
    folder = root / "Library/Bluetooth"
    folder.mkdir(parents=True)
    numbers = random.Random(1)

    def device(row):
        address = ":".join(f"{byte:02X}" for byte in numbers.randbytes(6))
        return (f"6B1E2F30-4C5D-4E6F-8A9B-{row:012X}", names[row % len(names)], row % 3,
                ("Public " if row % 5 == 0 else "Random ") + address, None, 395626 + row, row % 7, 0, None, "")

    with sqlite3.connect(folder / "com.apple.MobileBluetooth.ledevices.other.db") as database:
        database.execute("CREATE TABLE OtherDevices(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress "
                         "TEXT, LastSeenTime INT, LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, "
                         "iCloudIdentifier TEXT)")
        database.executemany("INSERT INTO OtherDevices VALUES(?,?,?,?,?,?,?,?,?,?)", map(device, range(rows)))
    database.close()


def make_log(path, lines):
    """Two lines a second, by a clock that runs backwards from hour to hour: they are to be sorted."""
    with open(path, "w") as log:
        for line in range(lines):
            second = line // 2 % 3600
            hour = 23 - line // 7200 % 24
            log.write(f"May {17 + line // 172800 % 14} {hour:02}:{second // 60:02}:{second % 60:02} phone sharingd[102] <Notice>: "
                      f"BLE device found: SFDevice ID {line % 5000}, IDS 1, RSSI -60, Nm 'device', Md 'Model1,1', AID 7F\n")


def measured(command, output=subprocess.DEVNULL):
    """Seconds by the clock, seconds of the processor and peak memory in KiB of a command that must end well."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=output)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command} ended with {process.returncode}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def all_rounds(*works):
    """What each work measured, in rounds by turns."""
    return list(zip(*[[work() for work in works] for _ in range(rounds)]))


def told(name, runs):
    wall, cpu, memory = zip(*runs)
    print(f"{name}: median {statistics.median(wall):.2f} s by the clock ({min(wall):.2f} to {max(wall):.2f}), "
          f"{statistics.median(cpu):.2f} s of the processor, peak memory {max(memory)} KiB", flush=True)


def told_speeds(own, works):
    """What each work measured, and the speed of one of them against each other."""
    results = dict(zip(works, all_rounds(*works.values())))
    for name, runs in results.items():
        told(name, runs)
    ours = results.pop(own)
    for name, runs in results.items():
        wall, cpu = (statistics.median(theirs[i] / own[i] for theirs, own in zip(runs, ours)) for i in (0, 1))
        print(f"speed against {name}: {wall:.2f} by the clock, {cpu:.2f} of the processor", flush=True)


def bench_page(program, folder, modules):
    making, = all_rounds(lambda: measured([program, "-q", "report", folder / "case", "--force"]))
    page = folder / "case/Report/report.html"
    told(f"page of {page.stat().st_size} bytes", making)
    if modules and shutil.which("node"):
        result = subprocess.run(["node", pathlib.Path(__file__).with_name("bench_report_page.mjs"), modules, page])
        if result.returncode not in (0, nothing_to_measure_with):
            sys.exit("the browser failed")


def bench_lines(program, folder):
    source = folder / "case/Source1"
    tables = {source / "Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite": "devices"}
    tables |= {next(source.glob("Evidence/**/*.other.db")): "OtherDevices"}

    def sqlite(wanted):
        runs = []
        for database, table in wanted.items():
            with open(folder / "sqlite.json", "w") as output:
                runs.append(measured(["sqlite3", "-readonly", "-json", database, f"SELECT * FROM {table}"], output))
        walls, cpus, memories = zip(*runs)
        return sum(walls), sum(cpus), max(memories)

    report = [program, "-q", "report", folder / "case", "-f", "jsonl", "--force"]
    works = {"report -f jsonl": lambda: measured(report)}
    if shutil.which("sqlite3"):
        works |= {"sqlite3 -json, result and evidence": lambda: sqlite(tables),
                  "sqlite3 -json, result alone": lambda: sqlite(dict([next(iter(tables.items()))]))}
    told_speeds("report -f jsonl", works)


after_import = """
BEGIN;
CREATE VIRTUAL TABLE names USING fts5(name, source UNINDEXED, source_table UNINDEXED, source_rowid UNINDEXED);
INSERT INTO names SELECT device_name, source, 'devices', rowid FROM devices WHERE device_name != '';
INSERT INTO names SELECT host_name, source, 'devices', rowid FROM devices WHERE host_name != '';
CREATE INDEX i_uuid ON devices(uuid);
CREATE INDEX i_address ON devices(address);
CREATE INDEX i_host_resolved_address ON devices(host_resolved_address);
COMMIT;
"""


def bench_database(program, folder):
    report = [program, "-q", "report", folder / "case", "--force"]
    subprocess.run([*report, "-f", "csv"], check=True, stdout=subprocess.DEVNULL)

    def imported(*more):
        (folder / "imported.sqlite").unlink(missing_ok=True)
        return measured(["sqlite3", folder / "imported.sqlite", ".mode csv",
                         f".import {folder / 'case/Report/devices.csv'} devices", *more])

    works = {"report -f sqlite": lambda: measured([*report, "-f", "sqlite"])}
    if shutil.which("sqlite3"):
        works |= {"sqlite3 .import": imported,
                  "sqlite3 .import, indexes and names": lambda: imported(after_import)}
    told_speeds("report -f sqlite", works)


def bench_timeline(program, folder):
    making, = all_rounds(lambda: measured([program, "-q", "report", folder / "case", "-f", "timeline", "--force",
                                           "--log-year", "2024", "--log-zone", "+02:00"]))
    with open(folder / "case/Report/timeline.jsonl") as events:
        told(f"timeline of {sum(1 for _ in events)} events", making)


def main():
    program, kind, rows, *modules = sys.argv[1:]
    program = os.path.abspath(program)
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        if kind == "timeline":
            make_log(folder / "source", int(rows))
        else:
            make_source(folder / "source", int(rows))
        subprocess.run([program, "-q", "extract", "-i", folder / "source", "-o", folder / "case"],
                       stdout=subprocess.DEVNULL, check=True)
        if kind == "page":
            bench_page(program, folder, os.path.abspath(modules[0]) if modules else None)
        elif kind == "lines":
            bench_lines(program, folder)
        elif kind == "database":
            bench_database(program, folder)
        elif kind == "timeline":
            bench_timeline(program, folder)
        else:
            sys.exit("the kind is page, lines, database or timeline")


main()
