#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_schemas.py PROGRAM WAITING_PLUGIN
# Cases of every kind that can be made quickly fit docs/*.schema.json, what does not fit is refused, and the lists of
# sources that the program takes and refuses are those that their schema takes and refuses.

import bz2
import contextlib
import copy
import functools
import gzip
import json
import lzma
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tarfile
import time
import unittest

try:
    import jsonschema
except ImportError:
    print("skipped: the package python3-jsonschema is missing")
    sys.exit(77)

from case_in_a_folder import case_in_a_folder, patience

docs = pathlib.Path(__file__).resolve().parents[2] / "docs"
waiting_plugin = sys.argv[2]
search_path = "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin"


@functools.cache
def validator(name):
    schemas = {file.name: json.loads(file.read_text()) for file in docs.glob("*.schema.json")}
    for schema in schemas.values():
        jsonschema.Draft202012Validator.check_schema(schema)
    resolver = jsonschema.RefResolver.from_schema(
        schemas[name], store={schema["$id"]: schema for schema in schemas.values()})
    return jsonschema.Draft202012Validator(schemas[name], resolver=resolver)


class fitting_case(case_in_a_folder):
    def read(self, path):
        return json.loads((self.folder / path).read_text())

    def wait_until(self, is_so):
        end = time.monotonic() + patience
        while not is_so():
            self.assertLess(time.monotonic(), end, "it took too long")
            time.sleep(0.01)

    def wait_for_the_plugin(self):
        self.wait_until((self.folder / "started").exists)

    def statuses_that_fit(self):
        """The statuses of the case's sources, whose manifest and records fit their schemas."""
        manifest = self.read("case/manifest.json")
        validator("manifest.schema.json").validate(manifest)
        for record in self.folder.glob("case/Source*/source.json"):
            validator("source.schema.json").validate(json.loads(record.read_text()))
        return [source["status"] for source in manifest["sources"]]


class manifests(fitting_case):
    def test_all_kinds_done(self):
        self.run_program("extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-i", "sample/windows", "-o",
                         "case", "--examiner", "A. Example", "--case-number", "47/11")
        self.assertEqual(self.statuses_that_fit(), ["done", "done", "done"])
        lines = (self.folder / "case/Source1/host_devices.jsonl").read_text().splitlines()
        self.assertEqual(len(lines), 12)
        for line in lines:
            validator("host_devices.schema.json").validate(json.loads(line))

    def test_failed_partial_and_not_run(self):
        shutil.copytree(self.folder / "sample/macos", self.folder / "half")
        paired = self.folder / "half/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"
        paired.write_bytes(paired.read_bytes()[:100] + bytes(4000))
        paired.with_name(paired.name + "-wal").mkdir()
        (self.folder / "list.json").write_text(json.dumps({"sources": [
            {"path": "nothing"}, {"path": "half", "name": "half a database"}, {"path": "sample/macos"}]}))
        for number, code in (("1", 3), ("2", 4)):
            self.run_program("extract", "--sources", "list.json", "-o", "case", "--only", number, code=code)
        self.run_program("collect", "case", code=4)
        self.assertEqual(self.statuses_that_fit(), ["failed", "partial", "not run"])
        states = {file["state"] for file in self.read("case/manifest.json")["sources"][1]["evidence"]}
        self.assertEqual(states, {"present", "absent", "refused"})

    def test_write_ahead_log(self):
        name = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"
        with contextlib.closing(sqlite3.connect(self.folder / "sample/macos" / name)) as database:
            database.execute("PRAGMA journal_mode=WAL")
            database.execute("DELETE FROM OtherDevices WHERE rowid < 3")
            database.execute("UPDATE OtherDevices SET Name = 'another' WHERE rowid = 3")
            database.commit()
            shutil.copytree(self.folder / "sample/macos", self.folder / "logged")  # closing writes the log back
        (self.folder / "logged" / (name + "-shm")).unlink()
        self.run_program("extract", "-i", "logged", "-o", "case")
        self.assertEqual(self.statuses_that_fit(), ["done"])
        self.assertEqual(self.read("case/manifest.json")["sources"][0]["wal"],
                         {"devices": {"added": 0, "changed": 1, "deleted": 2}})

    def test_timed_out(self):
        self.run_program("extract", "-i", "sample/macos", "-o", "case", "--no-confinement", "--plugin", waiting_plugin, "--timeout", "1",
                         code=4)
        self.assertEqual(self.statuses_that_fit(), ["timed out"])

    def test_running_then_interrupted(self):
        run = self.start("extract", "-i", "sample/ios/system.log", "-o", "case", "--no-confinement", "--plugin", waiting_plugin)
        self.wait_for_the_plugin()
        record = self.read("case/Source1/source.json")
        self.assertEqual(record["status"], "running")
        validator("source.schema.json").validate(record)
        run.send_signal(signal.SIGINT)
        self.finish(run, 130)
        self.assertEqual(self.statuses_that_fit(), ["interrupted"])

    def test_killed(self):
        run = self.start("extract", "-i", "sample/macos", "-o", "case", "--no-confinement", "--plugin", waiting_plugin)
        self.wait_for_the_plugin()
        run.kill()
        self.finish(run, -signal.SIGKILL)
        self.run_program("collect", "case", code=130)
        self.assertEqual(self.statuses_that_fit(), ["interrupted"])

    def test_evidence_changed(self):
        run = self.start("extract", "-i", "sample/macos", "-o", "case", "--no-confinement", "--plugin", waiting_plugin)
        self.wait_for_the_plugin()
        folder = self.folder / "sample/macos/Library/Bluetooth"
        (folder / "com.apple.MobileBluetooth.ledevices.other.db").unlink()
        (folder / "com.apple.MobileBluetooth.ledevices.other.db-shm").write_bytes(bytes(8))
        (self.folder / "go").touch()
        self.finish(run, 5)
        self.assertEqual(self.statuses_that_fit(), ["evidence changed"])

    def test_what_does_not_fit(self):
        self.run_program("extract", "-i", "sample/macos", "-o", "case")
        manifest = self.read("case/manifest.json")
        fits = validator("manifest.schema.json").is_valid
        self.assertTrue(fits(manifest))
        changes = {
            "another format": lambda m: m.update(format="manifest"),
            "another version": lambda m: m.update(version=3),
            "no list of files": lambda m: m["sources"][0].pop("files"),
            "a file elsewhere": lambda m: m["sources"][0]["files"][0].update(path="/etc/passwd"),
            "a commit that is none": lambda m: m["tool"].update(commit="main"),
            "no kernel": lambda m: m["system"].pop("kernel"),
            "a relative working folder": lambda m: m.update(working_folder="here"),
            "an unknown member": lambda m: m.update(more=1),
            "no source": lambda m: m.update(sources=[]),
            "a local time": lambda m: m.update(started="2026-01-31T12:00:00+01:00"),
            "a thirteenth month": lambda m: m.update(started="2026-13-31T12:00:00Z"),
            "a time of the wrong form": lambda m: m["sources"][0].update(finished="2026-01-31 12:00:00"),
            "an unknown status": lambda m: m["sources"][0].update(status="finished"),
            "a status against the code": lambda m: m["sources"][0].update(exit_code=4),
            "done without a result": lambda m: m["sources"][0].update(result=None),
            "a result elsewhere": lambda m: m["sources"][0]["result"].update(path="/etc/passwd"),
            "fewer than no rows": lambda m: m["sources"][0]["rows"]["devices"].update(stored=-1),
            "another table": lambda m: m["sources"][0]["rows"].update(others={}),
            "a hash that is none": lambda m: m["sources"][0]["evidence"][0].update(copy_sha256="F" * 64),
            "present without a state": lambda m: m["sources"][0]["evidence"][0].update(before=None),
            "absent with a reason": lambda m: m["sources"][0]["evidence"][1].update(reason="it is gone"),
            "no listing": lambda m: m["sources"][0].pop("listing"),
        }
        for what, change in changes.items():
            with self.subTest(what):
                changed = copy.deepcopy(manifest)
                change(changed)
                self.assertFalse(fits(changed))


class containers(fitting_case):
    """What a case says of containers; a build without a library has fewer kinds of them."""

    def setUp(self):
        super().setUp()
        self.version = self.start("--version").communicate(timeout=patience)[0]

    def needs(self, what, *tools):
        if f"{what}: not in this build" in self.version:
            self.skipTest(f"built without the library for {what}")
        for name in tools:
            if not shutil.which(name, path=search_path):
                self.skipTest(f"{name} is missing")

    def call(self, *command, stdin=None):
        subprocess.run(command, cwd=self.folder, check=True, stdin=stdin, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, env={"PATH": search_path})

    def tar(self, name, folder, *mode):
        with tarfile.open(self.folder / name, *mode) as archive:
            archive.add(self.folder / folder, "dump")
        return name

    def container_of(self, source, *options):
        """What the manifest has of the source's container; it fits, and so do the origins of the evidence."""
        self.run_program("extract", "-i", source, "-o", "case", "--force", *options)
        self.assertEqual(self.statuses_that_fit(), ["done"])
        [found] = self.read("case/manifest.json")["sources"]
        origins = [file["origin"] for file in found["evidence"] if file["state"] == "present"]
        self.assertTrue(origins and all(origins), found["evidence"])
        return found["container"]

    def assert_is(self, container, kind, format):
        self.assertEqual((container["kind"], container["format"]), (kind, format))

    def test_archives(self):
        self.needs("archives")
        self.assert_is(self.container_of(self.tar("a.tar", "sample/macos", "w")), "archive", "tar")
        packed = self.container_of(self.tar("a.tgz", "sample/macos", "w:gz"), "--no-container-hash")
        self.assert_is(packed, "archive", "tar")
        self.assertIsNone(packed["files"][0]["sha256"])
        shutil.make_archive(self.folder / "a", "zip", self.folder / "sample/macos")
        self.assert_is(self.container_of("a.zip"), "archive", "zip")

    def test_other_archives(self):
        self.needs("archives", "7z", "cpio")
        self.call("7z", "a", "-bd", "a.7z", "sample/macos")
        self.assert_is(self.container_of("a.7z"), "archive", "7z")
        self.call("sh", "-c", "find sample/macos | cpio -o -H newc > a.cpio")
        self.assert_is(self.container_of("a.cpio"), "archive", "cpio")

    def test_compressed_logs(self):
        self.needs("archives")
        log = (self.folder / "sample/ios/system.log").read_bytes()
        for name, pack in (("gzip", gzip.compress), ("bzip2", bz2.compress), ("xz", lzma.compress)):
            (self.folder / name).write_bytes(pack(log))
            self.assert_is(self.container_of(name), "compressed", name)

    def test_backups_and_file_systems_of_ios(self):
        self.run_program("sample", "more", "--image")
        self.assert_is(self.container_of("more/ios_backup"), "backup", "folder")
        self.assertIsNone(self.container_of("more/ios_files"))
        self.needs("archives")
        self.assert_is(self.container_of(self.tar("backup.tar", "more/ios_backup", "w")), "backup", "tar")

    def test_images(self):
        self.needs("images", "mke2fs", "ewfacquirestream", "qemu-img")
        with open(self.folder / "disk.dd", "wb") as file:
            file.truncate(8 << 20)
        self.call("mke2fs", "-q", "-t", "ext4", "-d", "sample/macos", "-L", "Disk", "disk.dd")
        raw = self.container_of("disk.dd")
        self.assert_is(raw, "image", "raw")
        self.assertEqual(raw["volume"], {"number": 1, "offset": 0, "file_system": "ext4", "name": "Disk"})
        with open(self.folder / "disk.dd", "rb") as image:
            self.call("ewfacquirestream", "-q", "-d", "sha1", "-t", "disk", stdin=image)
        ewf = self.container_of("disk.E01")
        self.assert_is(ewf, "image", "ewf")
        self.assertIsNotNone(ewf["stored_hashes"]["md5"])
        for format, name in (("vmdk", "vmdk"), ("vpc", "vhd")):
            self.call("qemu-img", "convert", "-O", format, "disk.dd", "disk." + name)
            self.assert_is(self.container_of("disk." + name), "image", name)

    def test_what_does_not_fit(self):
        self.run_program("sample", "more", "--image")
        self.run_program("extract", "-i", "more/ios_backup", "-o", "case")
        manifest = self.read("case/manifest.json")
        fits = validator("manifest.schema.json").is_valid
        self.assertTrue(fits(manifest))
        volume = {"number": 1, "offset": 0, "file_system": None, "name": None}
        hashes = {"md5": "0" * 32, "sha1": None}

        def fits_with(source=None, **members):
            changed = copy.deepcopy(manifest)
            changed["sources"][0]["container"].update(members)
            if source:
                source(changed["sources"][0])
            return fits(changed)

        self.assertTrue(fits_with(volume=volume, stored_hashes=hashes))
        refused = {
            "an unknown kind": {"kind": "disk"},
            "an unknown format": {"format": "rar"},
            "an unknown member": {"more": 1},
            "no files": {"files": []},
            "a file without a path": {"files": [{"size": 1, "modified": None, "sha256": None}]},
            "a hash that is none": {"files": [{"path": "a", "size": 1, "modified": None, "sha256": "F" * 64}]},
            "a local time": {"files": [{"path": "a", "size": 1, "modified": "2026-01-31T12:00:00+01:00", "sha256": None}]},
            "a stored hash that is none": {"stored_hashes": {**hashes, "md5": "0" * 31}},
            "one stored hash": {"stored_hashes": {"md5": "0" * 32}},
            "a volume before the first": {"volume": {**volume, "number": 0}},
            "a volume before the image": {"volume": {**volume, "offset": -1}},
            "a file system that nobody takes": {"volume": {**volume, "file_system": "zfs"}},
            "no container of a path": {"source": lambda source: source.update(container={})},
            "no word of a container": {"source": lambda source: source.pop("container")},
            "an origin without a size": {"source": lambda source: source["evidence"][0]["origin"].pop("size")},
        }
        for what, members in refused.items():
            with self.subTest(what):
                self.assertFalse(fits_with(**members))


class lists_of_sources(case_in_a_folder):
    def test_as_the_program_does(self):
        good = {"path": "sample/macos"}
        lists = {
            "a path": ({"sources": [good]}, True),
            "all members": ({"sources": [{**good, "type": "macOS", "name": "Laptop", "number": 3}]}, True),
            "the type in other letters": ({"sources": [{**good, "type": "MACOS"}]}, True),
            "the type to be told": ({"sources": [{**good, "type": "auto"}]}, True),
            "the largest number": ({"sources": [{**good, "number": 1000000}]}, True),
            "no object": ([], False),
            "nothing": ({}, False),
            "no sources": ({"sources": []}, False),
            "sources that are no list": ({"sources": good}, False),
            "a source that is a text": ({"sources": ["sample/macos"]}, False),
            "an unknown member above": ({"sources": [good], "more": 1}, False),
            "an unknown member": ({"sources": [{**good, "more": 1}]}, False),
            "no path": ({"sources": [{"name": "Laptop"}]}, False),
            "an empty path": ({"sources": [{"path": ""}]}, False),
            "a path that is a number": ({"sources": [{"path": 1}]}, False),
            "a name that is a number": ({"sources": [{**good, "name": 1}]}, False),
            "an unknown type": ({"sources": [{**good, "type": "Amiga"}]}, False),
            "the long type in other letters": ({"sources": [{**good, "type": "ios_uid"}]}, False),
            "the number 0": ({"sources": [{**good, "number": 0}]}, False),
            "a number too large": ({"sources": [{**good, "number": 1000001}]}, False),
            "half a number": ({"sources": [{**good, "number": 1.5}]}, False),
            "a number as text": ({"sources": [{**good, "number": "1"}]}, False),
        }
        fits = validator("sources.schema.json").is_valid
        for what, (content, is_good) in lists.items():
            with self.subTest(what):
                self.assertEqual(fits(content), is_good)
                (self.folder / "list.json").write_text(json.dumps(content))
                run = self.start("extract", "--sources", "list.json", "-o", "case", "--force")
                _, errors = run.communicate(timeout=patience)
                self.assertEqual(run.returncode == 0, is_good, errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
