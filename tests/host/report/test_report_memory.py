#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_report_memory.py PROGRAM
# Reports for programs of two sources take no more memory for many rows than for few.

import os
import pathlib
import sqlite3
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
from case_in_a_folder import case_in_a_folder, program  # noqa: E402

if sys.platform != "linux":
    print("skipped: other systems count peak memory in other units")
    sys.exit(77)

few, many = 2_000, 60_000
most_growth = 8192  # KiB: among them the UUIDs of one source's devices, which number the cards of shared ones
database = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"
numbers = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < {rows}) "


class report_memory(case_in_a_folder):
    def add_rows(self, case, source, rows):
        """Rows as a run would have left them, in the result and in the working copy."""
        folder = self.folder / case / f"Source{source}"
        statement = numbers.format(rows=rows) + (
            "INSERT INTO {table} SELECT printf('%08X-0000-4000-8000-%012X', {source}, i), 'Headphones ' || i, "
            "printf('Random C0:00:00:%02X:%02X:%02X', i >> 16, i >> 8 & 255, i & 255), i, i FROM n")
        for file, table in ((folder / "Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite",
                             "devices(uuid, device_name, address, last_seen_time, last_connection_time)"),
                            (folder / "Evidence" / database,
                             "OtherDevices(Uuid, Name, Address, LastSeenTime, LastConnectionTime)")):
            connection = sqlite3.connect(file)
            connection.execute(statement.format(table=table, source=source))
            connection.commit()
            connection.close()

    def peak(self, *arguments):
        """The peak memory (KiB) of the program. A process of its own starts it: its account begins with its parent's."""
        launcher = "import os, sys; child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ); "\
                   "_, status, usage = os.wait4(child, 0); print(status, usage.ru_maxrss)"
        output = subprocess.run([sys.executable, "-c", launcher, program, *arguments], cwd=self.folder, check=True,
                                env=self.environment, stdout=subprocess.PIPE).stdout
        status, peak = map(int, output.split())
        # The rows of the large case are not those of its record, which the report says.
        self.assertIn(os.waitstatus_to_exitcode(status), (0, 4))
        return peak

    def test_does_not_grow(self):
        peaks = {}
        for rows in (few, many):
            case = f"case{rows}"
            self.run_program("-q", "extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-o", case)
            self.run_program("-q", "extract", "--add", "-i", str(self.other_source()), "-o", case)
            for source in (1, 3):
                self.add_rows(case, source, rows)
            peaks[rows] = self.peak("-q", "report", case, "-f", "jsonl", "-f", "csv", "-f", "sqlite")
            self.check_database(rows)
            lines = (self.folder / case / "Report/devices.jsonl").read_text().count("\n")
            self.assertGreater(lines, 2 * rows)
            shared = (self.folder / case / "Report/shared.jsonl").read_text()
            self.assertGreater(shared.count("\n"), 0)
        print(f"peak memory in KiB of a report: {peaks}")
        self.assertGreater(peaks[few], 1000)
        self.assertLess(peaks[many] - peaks[few], most_growth)

    def check_database(self, rows):
        """It sorts more than its memory takes, and leaves nothing of it."""
        report = self.folder / f"case{rows}/Report"
        connection = sqlite3.connect(report / "report.sqlite")
        for table in ("devices", "names"):
            self.assertGreater(connection.execute(f"SELECT count(*) FROM {table}").fetchone()[0], 2 * rows)
        connection.close()
        self.assertEqual([path.name for path in report.iterdir() if "sqlite" in path.name], ["report.sqlite"])

    def other_source(self):
        """The same sample once more: its public addresses are in two sources."""
        self.run_program("sample", "other", "--force")
        return self.folder / "other/macos"


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
