# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""What the tests of containers share. The program is their first argument."""

import hashlib
import json
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

program = sys.argv[1]
other = "com.apple.MobileBluetooth.ledevices.other.db"
paired = "com.apple.MobileBluetooth.ledevices.paired.db"
domain = "SysSharedContainerDomain-systemgroup.com.apple.bluetooth"
tables = ("devices", "paired_devices")


def skip_what_is_left_out(errors):
    """The program says that it was built without the library for a container."""
    left_out = re.search("made without (libarchive|The Sleuth Kit)", errors)
    if left_out:
        raise unittest.SkipTest(left_out[0])


def run(*arguments):
    result = subprocess.run([program, *map(str, arguments)], capture_output=True, text=True)
    skip_what_is_left_out(result.stderr)
    return result


def sha256_of(path):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


def needs(*tools):
    for tool in tools:
        if not shutil.which(tool) and not shutil.which(f"/sbin/{tool}"):
            raise unittest.SkipTest(f"{tool} is missing")


def tool(*arguments, **more):
    subprocess.run(list(map(str, arguments)), check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   env={"PATH": "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin", "LC_ALL": "C.UTF-8"}, **more)


class container_case(unittest.TestCase):
    """A sample without its write-ahead logs, and the cases of its folder and its log, which those of containers are compared with."""

    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        run("sample", cls.folder / "sample")
        for log in (cls.folder / "sample/macos/Library/Bluetooth").glob("*.db-wal"):
            log.unlink()
        cls.macos = cls.folder / "sample/macos"
        cls.log = cls.folder / "sample/ios/system.log"
        cls.of_folder = cls.extract(cls.macos, "of_folder")
        cls.of_log = cls.extract(cls.log, "of_log")

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    @classmethod
    def extract(cls, source, name, *options):
        case = cls.folder / ("case_" + name)
        result = run("extract", "-q", "-i", source, "-o", case, *options)
        assert result.returncode == 0, (source, result.returncode, result.stderr)
        return case

    def record(self, case):
        return json.loads((case / "Source1/source.json").read_text())

    def rows(self, case):
        database = sqlite3.connect(f"file:{case}/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite?mode=ro",
                                   uri=True)
        found = {}
        for table in tables:
            cursor = database.execute(f"SELECT * FROM {table}")
            names = [column[0] for column in cursor.description]
            kept = [i for i, name in enumerate(names) if "source" not in name.lower() and "path" not in name.lower()
                    and name != "os_scheme_display"]
            found[table] = [tuple(row[i] for i in kept) for row in cursor]
        database.close()
        return found

    def hashes(self, case):
        return {pathlib.PurePath(file["path"]).name: file["before"]["sha256"]
                for file in self.record(case)["evidence"] if file["state"] == "present"}

    def compare(self, container, name, kind, format, *options, log=False, type=None, hashes=None):
        case = self.extract(container, name, *options)
        expected = self.of_log if log else self.of_folder
        self.assertEqual(self.rows(case), self.rows(expected))
        found = self.hashes(case)
        wanted = self.hashes(expected)
        self.assertEqual(found, {key: wanted[key] for key in hashes or wanted})
        record = self.record(case)
        self.assertEqual(record["type"], type or ("iOS_UID" if log else "macOS"))
        self.assertEqual(record["status"], "done")
        if kind:
            self.assertEqual((record["container"]["kind"], record["container"]["format"]), (kind, format))
            self.assertEqual([file["sha256"] for file in record["container"]["files"]],
                             [None if "--no-container-hash" in options else sha256_of(file["path"])
                              for file in record["container"]["files"]])
        else:
            self.assertIsNone(record["container"])
        for file in record["evidence"]:
            if file["state"] == "present":
                self.assertIsNotNone(file["origin"])
                self.assertEqual((case / "Source1/Evidence" / file["path"]).stat().st_mode & 0o777, 0o400)
        self.assertEqual(run("verify", case, "--containers").returncode, 0)
        return record

    def refuse(self, source, code, words, *options):
        case = self.folder / "refused"
        result = run("extract", "-i", source, "-o", case, *options)
        self.assertEqual(result.returncode, code, result.stderr)
        self.assertIn(words, result.stderr)
        self.assertFalse(case.exists(), "a refused source leaves nothing")

    def looked_at(self, source, code, words):
        """What inspect says of the source, with the code that extract would have."""
        result = run("inspect", "--json", source)
        self.assertEqual(result.returncode, code, result.stderr)
        [found] = json.loads(result.stdout)["sources"]
        self.assertIn(words, found["problem"])
        return found
