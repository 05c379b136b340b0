# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""A Mac, an iOS file system, a backup, a log and two Windows volumes that know the same headset: what the program prints,
what it has read of them, and all its reports, read by other programs than its own.

test_every_source.py PROGRAM HIVE_WRITER"""

import base64
import datetime
import hashlib
import json
import os
import plistlib
import re
import shutil
import sqlite3
import subprocess
import sys
import unittest
import zipfile

from case_in_a_folder import case_in_a_folder, program
from workbook_sheets import open_book, rows_of_sheet, sheet_names, sheet_namespace

hive_writer = sys.argv[2]
has_workbooks = "BLUETOOTH_LOGS_WITHOUT_WORKBOOKS" not in os.environ

headset = "3C:28:6D:1A:90:4E"
formula = "=HYPERLINK(\"http://example.invalid\")"
hostile_name = "\x1b[31m \ufffe \uffff <b>&amp; _x0041_ \u202e"
secret = b"abcdefghijklmnop"  # every key of the pairings
mobile_list = "com.apple.MobileBluetooth.devices.plist"
domain = "SysSharedContainerDomain-systemgroup.com.apple.bluetooth"
hive_place = "Windows/System32/config/SYSTEM"
last_seen = datetime.datetime(2024, 5, 17, 10, 11, 5, tzinfo=datetime.timezone.utc)


class every_source(case_in_a_folder):
    maxDiff = None

    def setUp(self):
        super().setUp()
        self.write_mobile_list(self.folder / "sample/macos/Library/Bluetooth/Library/Preferences")
        group = self.folder / "phone/private/var/containers/Shared/SystemGroup/0A1B"
        shutil.copytree(self.folder / "sample/macos/Library/Bluetooth", group / "Library/Database",
                        ignore=shutil.ignore_patterns("Library"))
        self.write_mobile_list(group / "Library/Preferences")
        self.write_backup(self.folder / "backup")
        self.write_volumes()
        self.run_program("extract", "-o", "case", *sum((["-i", source] for source in self.sources), []))

    sources = ("sample/macos", "phone", "backup", "sample/ios/system.log", "pc", "dirty pc")

    def write_mobile_list(self, folder):
        folder.mkdir(parents=True)
        entry = {"Name": "Rental car", "UserNameKey": hostile_name.replace("\x1b", "").replace("\ufffe", "")
                 .replace("\uffff", ""), "DeviceIdVendor": 76, "LastSeenTime": 737633465}
        (folder / mobile_list).write_bytes(plistlib.dumps({headset: entry}, fmt=plistlib.FMT_BINARY))

    def write_backup(self, folder):
        folder.mkdir()
        index = sqlite3.connect(folder / "Manifest.db")
        index.execute("CREATE TABLE Files (fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags INTEGER, "
                      "file BLOB)")
        phone = self.folder / "phone/private/var/containers/Shared/SystemGroup/0A1B"
        for file in sorted(phone.rglob("*.db")) + sorted(phone.rglob("*.plist")):
            path = str(file.relative_to(phone))
            number = hashlib.sha1(f"{domain}-{path}".encode()).hexdigest()
            index.execute("INSERT INTO Files VALUES (?, ?, ?, 1, NULL)", (number, domain, path))
            (folder / number[:2]).mkdir(exist_ok=True)
            shutil.copy(file, folder / number[:2] / number)
        index.commit()
        index.close()
        (folder / "Manifest.plist").write_bytes(plistlib.dumps({"IsEncrypted": False}, fmt=plistlib.FMT_BINARY))

    def write_volumes(self):
        for name, options in (("pc", []), ("dirty pc", ["dirty"])):
            hive = self.folder / name / hive_place
            hive.parent.mkdir(parents=True)
            hive.write_bytes(subprocess.run([hive_writer, *options], stdout=subprocess.PIPE, check=True).stdout)
        (self.folder / "dirty pc" / (hive_place + ".LOG1")).write_bytes(b"log")

    def extracted_again(self, source, code=0):
        """What a run of one source prints, without paths and hashes."""
        process = self.start("extract", "-i", source, "-o", "again", "--force")
        output, errors = process.communicate(timeout=100)
        self.assertEqual(process.returncode, code, errors)
        text = (output + errors).replace(str(self.folder), "$")
        return re.sub(r"[0-9a-f]{64}", "HASH", text)

    def result_of(self, kind, source, counts, last, *messages):
        rows = "".join(f"        {table:14}  {count:>14}\n" for table, count in counts)
        return (f"Source  {kind}: $/{source}\n"
                "Result  $/again/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite\n"
                f"{rows}Source1  done  {last}\nManifest  SHA-256 HASH\n" + "".join(messages))

    def test_transcripts(self):
        both = (("devices", "1,000 rows"), ("paired_devices", "20 rows"))
        none = (("devices", "0 rows"), ("paired_devices", "0 rows"))
        rows = "1,000 devices, 20 paired_devices, "
        registry = ("note: the plug-in extracts nothing from Windows sources: the devices of its registry are in "
                    "host_devices.jsonl\n")
        dirty = (f"note: {hive_place}: the hive is dirty, its two sequence numbers are 3 and 2: the newest changes may be "
                 "in its transaction logs, which are not applied (SYSTEM.LOG1)\n")
        self.assertEqual(self.extracted_again("sample/macos"),
                         self.result_of("macOS", "sample/macos", both, rows + "13 host devices"))
        self.assertEqual(self.extracted_again("phone"),
                         self.result_of("iOS", "phone", both, rows + "1 host devices"))
        self.assertEqual(self.extracted_again("backup"),
                         self.result_of("iOS", "backup", both, rows + "1 host devices"))
        self.assertEqual(self.extracted_again("pc"),
                         self.result_of("Windows", "pc", none, "0 devices, 0 paired_devices, 2 host devices", registry))
        self.assertEqual(self.extracted_again("dirty pc"),
                         self.result_of("Windows", "dirty pc", none, "0 devices, 0 paired_devices, 2 host devices", dirty,
                                        registry))

    def lines(self, path):
        return [json.loads(line) for line in (self.folder / path).read_text().splitlines()]

    def test_devices_of_the_lists(self):
        facts = {(line["source"], line["list"], line["address_normal"]): line
                 for line in self.lines("case/Source5/host_devices.jsonl") + self.lines("case/Source2/host_devices.jsonl")}
        car = facts[5, "registry", headset.lower()]
        self.assertEqual((car["kind"], car["is_paired"], car["names"]), ("classic", True, ["Rental car", formula]))
        self.assertEqual(car["class_of_device"]["minor"], "Wearable headset")
        self.assertEqual({time["name"]: time["utc"] for time in car["times"] if time["name"].startswith("Last")},
                         {"LastSeen": "2024-05-17T10:11:05Z", "LastConnected": None})
        mouse = facts[5, "registry", "d0:11:22:33:44:5e"]
        self.assertEqual((mouse["kind"], mouse["is_paired"], mouse["names"]), ("le", True, ["Mouse"]))
        phone = facts[2, "mobile_devices", headset.lower()]
        self.assertEqual((phone["kind"], phone["is_paired"], phone["vendor"]["id"]), ("classic", None, 76))
        self.assertEqual([(time["clock"], time["utc"]) for time in phone["times"]], [("unknown", "2024-05-17T10:11:05Z")])

    def report(self):
        formats = ("html", "csv", "tsv", "jsonl", "timeline", "sqlite", *(("xlsx",) if has_workbooks else ()))
        self.run_program("report", "case", *sum((["-f", name] for name in formats), []), "--log-year", "2024", "--log-zone", "+02:00",
                         "--mobile-epoch", "2001")
        return self.folder / "case/Report"

    def test_one_headset(self):
        report = self.report()
        every = self.lines("case/Report/shared.jsonl")
        shared = [line for line in every if line["joined_by"] == [{"kind": "public_address", "value": headset.lower()}]]
        self.assertEqual(len(shared), 1)
        self.assertEqual(shared[0]["sources"], [1, 2, 3, 4, 5, 6])
        self.assertEqual({place["found_in"] for place in shared[0]["appearances"]}, {"row", "mobile_devices", "registry"})
        page = (report / "report.html").read_text()
        section = page[page.index('id="more-than-one-source"'):page.index('id="paired"')]
        links = list(dict.fromkeys(re.findall(r'"#device-(\d+)"', section)))
        self.assertEqual(len(links), 20)
        self.assertLessEqual(set(links), {str(line["card"]) for line in every})

    def test_no_key_is_in_a_report(self):
        """Nor in what the case keeps, but for the hive itself and the program's copy of it."""
        report = self.report()
        traces = [secret, secret.hex().encode(), secret.hex().upper().encode(), secret.hex(" ").encode(),
                  base64.b64encode(secret)[:20], secret.decode("utf-16-le").encode(), b"MasterIRK",
                  str(int.from_bytes(secret[:8], "little")).encode(), str(int.from_bytes(secret[:4], "little")).encode()]
        self.assertIn(secret, (self.folder / "case/Source5/Evidence" / hive_place).read_bytes())
        looked_at = 0
        for file in sorted((self.folder / "case").rglob("*")):
            if not file.is_file() or "Evidence" in file.parts:
                continue
            contents = [file.read_bytes()]
            if file.suffix == ".xlsx":
                book = zipfile.ZipFile(file)
                contents += [book.read(name) for name in book.namelist()]
            for content in contents:
                looked_at += 1
                for trace in traces:
                    self.assertNotIn(trace, content, (file, trace))
        self.assertGreater(looked_at, 40)
        self.assertTrue((report / "README.txt").exists())

    def test_timeline(self):
        report = self.report()
        events = self.lines("case/Report/timeline.jsonl")
        self.assertEqual([event["timestamp"] for event in events], sorted(event["timestamp"] for event in events))
        for event in events:
            time = datetime.datetime.fromisoformat(event["datetime"])
            self.assertEqual(int(time.timestamp()), event["timestamp"] // 10 ** 6, event)
        seen = [event for event in events if event["address"] == headset.lower()
                and event["timestamp"] == int(last_seen.timestamp()) * 10 ** 6]
        self.assertEqual({(event["source"], event["timestamp_desc"]) for event in seen},
                         {(number, "LastSeenTime of the mobile list, taken as seconds since 2001") for number in (1, 2, 3)}
                         | {(number, "LastSeen of the registry") for number in (5, 6)})
        first = [event for event in events if event["source"] == 4][0]
        self.assertTrue(first["datetime"].startswith("2024-05-17T12:1") and first["datetime"].endswith("+02:00"), first)
        self.assertEqual(events[-1]["timestamp"], max(event["timestamp"] for event in events))
        errors = self.run_program("report", "case", "-f", "timeline", "-o", "times")
        readme = (self.folder / "times/README.txt").read_text()
        for reason in ("counters of databases, which are no dates", "--log-year and --log-zone place them",
                       "--mobile-epoch says it", "times that say never"):
            line = next(line for line in readme.splitlines() if line.endswith(reason))
            self.assertIn(f"note: {line}\n", errors)
        self.assertTrue(report.exists())

    def test_formulas(self):
        """In CSV and TSV a text of the evidence begins with an apostrophe where it would begin a formula."""
        report = self.report()
        for file in sorted(report.glob("*.csv")) + sorted(report.glob("*.tsv")):
            text = file.read_bytes().decode()
            separator = "," if file.suffix == ".csv" else "\t"
            cells = re.split(r"\r\n|" + separator, re.sub(r'"((?:[^"]|"")*)"', lambda match: "Q" + match[1].lstrip(), text))
            for cell in cells:
                start = cell[1:2] if cell.startswith("Q") else cell[:1]
                self.assertNotIn(start, ("=", "+", "@"), (file, cell))
        self.assertIn("'=HYPERLINK", (report / "devices.csv").read_text())

    def test_database(self):
        database = sqlite3.connect(f"file:{self.report()}/report.sqlite?mode=ro", uri=True)
        self.addCleanup(database.close)
        self.assertEqual(database.execute("PRAGMA integrity_check").fetchone(), ("ok",))
        for table in ("devices", "paired_devices", "host_devices", "evidence_files", "wal_changes", "timeline"):
            path = f"case/Report/{table}.jsonl"
            self.assertEqual(database.execute(f"SELECT count(*) FROM {table}").fetchone()[0], len(self.lines(path)), table)
        appearances = sum(len(line["appearances"]) for line in self.lines("case/Report/shared.jsonl"))
        self.assertEqual(database.execute("SELECT count(*) FROM shared").fetchone()[0], appearances)
        self.assertEqual([row[0] for row in database.execute("SELECT source FROM sources ORDER BY source")],
                         [1, 2, 3, 4, 5, 6])
        lines = self.lines("case/Report/paired_devices.jsonl")
        names = [row[0] for row in database.execute("SELECT device_name FROM paired_devices ORDER BY rowid")]
        self.assertEqual(names, [line["plugin"]["device_name"] for line in lines])
        # What an examiner asks: which devices do several sources know, which are paired, where does a name stand?
        self.assertIn((6, "1,2,3,4,5,6"), [(row[0], ",".join(sorted(row[1].split(",")))) for row in database.execute(
            "SELECT sources, source_numbers FROM v_shared_devices WHERE joined_by LIKE ?", ("%" + headset.lower() + "%",))])
        paired = database.execute("SELECT source, known_as FROM v_paired_devices WHERE lower(address) = ? ORDER BY source",
                                  (headset.lower(),)).fetchall()
        self.assertEqual(paired[-2:], [(5, "registry list"), (6, "registry list")])
        self.assertEqual({row[0] for row in database.execute(
            "SELECT DISTINCT source_table FROM names WHERE names MATCH 'rental AND car'")}, {"host_devices", "shared", "timeline"})
        self.assertGreater(database.execute("SELECT count(*) FROM v_named_devices").fetchone()[0], 100)
        self.assertEqual(database.execute("SELECT max(rank IS NULL), count(*) FROM v_last_seen WHERE source = 1 AND "
                                          "source_table = 'devices'").fetchone(), (0, 1000))
        # When was the headset last seen, by the sources that have a time of it?
        self.assertEqual(database.execute("SELECT source, last_time, meaning FROM v_last_seen WHERE address = ? AND last_time "
                                          "IS NOT NULL", (headset.lower(),)).fetchall(),
                         [(number, "2024-05-17T10:11:05+00:00", meaning) for numbers, meaning in (
                             ((1, 2, 3), "LastSeenTime of the mobile list, taken as seconds since 2001"),
                             ((5, 6), "LastSeen of the registry")) for number in numbers])
        self.assertEqual(database.execute("SELECT line_date FROM v_last_seen WHERE source = 4 LIMIT 1").fetchone(),
                         (self.lines("case/Report/devices.jsonl")[-1]["plugin"]["date"],))
        self.assertEqual(database.execute("SELECT devices, paired_devices, host_devices FROM v_sources WHERE source = 1")
                         .fetchone(), (1000, 20, 13))
        plan = " ".join(row[3] for row in database.execute(
            "EXPLAIN QUERY PLAN SELECT * FROM host_devices WHERE address_normal = 'x'"))
        self.assertIn("USING INDEX", plan)

    @unittest.skipUnless(has_workbooks, "built without libxlsxwriter")
    def test_workbook(self):
        report = self.report()
        book = open_book(report / "report.xlsx")
        names = sheet_names(book)
        self.assertEqual(names, ["sources", "devices", "paired_devices", "shared", "evidence_files", "containers",
                                 "wal_changes", "host_devices", "unparsed_lines", "salvage", "timeline"])
        database = sqlite3.connect(f"file:{report}/report.sqlite?mode=ro", uri=True)
        self.addCleanup(database.close)
        for number, name in enumerate(names, 1):
            rows, sheet = rows_of_sheet(book, f"xl/worksheets/sheet{number}.xml")
            pane = sheet.find(f".//{sheet_namespace}pane")
            self.assertEqual((pane.get("ySplit"), pane.get("state")), ("1", "frozen"), name)
            self.assertIsNotNone(sheet.find(sheet_namespace + "autoFilter"), name)
            self.assertIsNotNone(sheet.find(f"{sheet_namespace}cols/{sheet_namespace}col").get("width"), name)
            self.assertEqual(len(rows) - 1, database.execute(f"SELECT count(*) FROM {name}").fetchone()[0], name)
        rows, _ = rows_of_sheet(book, f"xl/worksheets/sheet{names.index('host_devices') + 1}.xml")
        texts = [text for row in rows for text in row.values()]
        self.assertTrue(any(isinstance(text, str) and text.endswith(formula) for text in texts))
        self.assertFalse(any(isinstance(text, str) and text.startswith("'") for text in texts))

    def test_shown(self):
        process = self.start("show", "case", "--table", "host_devices", "--source", "5", "--rows", "1")
        output, errors = process.communicate(timeout=100)
        self.assertEqual((process.returncode, errors), (0, ""))
        self.assertTrue(output.endswith("Source5  host_devices  2 rows, 1 shown\n"), output)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
