#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_cluster_parallel.py PROGRAM
# Sources that GNU parallel runs one by one give the same, byte for byte, as those of one run side by side.

import json
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import unittest

from case_in_a_folder import case_in_a_folder, patience, program

if not shutil.which("parallel"):
    print("skipped: GNU parallel is missing")
    sys.exit(77)

scripts = pathlib.Path(__file__).resolve().parents[2] / "scripts/cluster"


class under_parallel(case_in_a_folder):
    def make_sources(self):
        shutil.copytree(self.folder / "sample/macos", self.folder / "with a log")
        database = self.folder / "with a log/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"
        writer = sqlite3.connect(database)
        self.addCleanup(writer.close)  # closing would move the rows out of the write-ahead log
        writer.execute("DELETE FROM OtherDevices WHERE rowid < 10")
        writer.commit()
        self.assertGreater(database.with_name(database.name + "-wal").stat().st_size, 0)
        sources = [
            {"path": "sample/macos", "number": 3, "name": "it's $HOME; \"quoted\""},
            {"path": "sample/ios/system.log"},
            {"path": "sample/windows", "type": "winOS"},
            {"path": "with a log"},
            {"path": "nothing"},
        ]
        (self.folder / "a list.json").write_text(json.dumps({"sources": sources}))

    def compare(self):
        return subprocess.run([scripts / "compare_cases.py", "alone", "side by side"], cwd=self.folder,
                              stdout=subprocess.PIPE, text=True, check=False)

    def test_equals_one_run(self):
        self.make_sources()
        self.run_program("extract", "--sources", "a list.json", "-o", "side by side", "--jobs", "2", code=4)
        self.environment.update(BLUETOOTH_LOGS=program, PARALLEL="--jobs 2")
        run = subprocess.run([scripts / "run_parallel.sh", "a list.json", "alone", "--os-name", "macOS 12 'Monterey'"],
                             cwd=self.folder, env=self.environment, timeout=patience, check=False,
                             stdin=subprocess.DEVNULL)
        self.assertEqual(run.returncode, 4)
        self.assertNotEqual(self.compare().returncode, 0)  # another --os-name

        self.run_program("extract", "--sources", "a list.json", "-o", "side by side", "--jobs", "2", "--force",
                         "--os-name", "macOS 12 'Monterey'", code=4)
        self.assertEqual(self.compare().stdout.split(",")[0], "equal: 5 sources in the manifests")

        copy = self.folder / "alone/Source3/Evidence/Library/Preferences/com.apple.Bluetooth.plist"
        copy.write_bytes(copy.read_bytes() + b" ")
        self.assertEqual(self.compare().stdout, f"different bytes: {copy.relative_to(self.folder / 'alone')}\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
