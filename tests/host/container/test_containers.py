#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_containers.py PROGRAM
# Containers made here, with what Debian has for it, give the same rows and the same hashes of evidence as the folder or
# the log that they were made from. A container whose tool is missing is passed over, and said so.

import csv
import hashlib
import io
import json
import pathlib
import plistlib
import shutil
import sqlite3
import subprocess
import sys
import tarfile
import unittest
import zipfile

from container_case import container_case, domain, needs, other, paired, program, run, skip_what_is_left_out, tool


class Containers(container_case):
    # archives

    def test_tar_of_each_compression(self):
        for suffix in ("", "gz", "bz2", "xz"):
            with self.subTest(suffix):
                path = self.folder / f"a.tar.{suffix}"
                with tarfile.open(path, "w:" + suffix) as archive:
                    archive.add(self.macos, "filesystem1")
                self.compare(path, "tar" + suffix, "archive", "tar")

    def test_zip(self):
        path = self.folder / "a.zip"
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
            for file in self.macos.rglob("*"):
                archive.write(file, file.relative_to(self.macos))
        self.compare(path, "zip", "archive", "zip")

    def test_7z_and_cpio(self):
        needs("7z", "cpio")
        tool("7z", "a", "-bd", self.folder / "a.7z", "macos", cwd=self.macos.parent)
        self.compare(self.folder / "a.7z", "7z", "archive", "7z")
        subprocess.run("find macos | cpio -o -H newc > ../a.cpio", shell=True, cwd=self.macos.parent,
                       stderr=subprocess.DEVNULL, check=True)
        self.compare(self.folder / "a.cpio", "cpio", "archive", "cpio")

    def test_compressed_log(self):
        for name, suffix, format in (("gzip", "gz", "gzip"), ("bzip2", "bz2", "bzip2"), ("xz", "xz", "xz"),
                                     ("zstd", "zst", "zstd")):
            with self.subTest(name):
                needs(name)
                tool(name, "-k", "-f", self.log)
                self.compare(f"{self.log}.{suffix}", "log_" + suffix, "compressed", format, log=True)

    def test_choice_of_a_log(self):
        path = self.folder / "logs.zip"
        with zipfile.ZipFile(path, "w") as archive:
            archive.write(self.log, "a/one.log")
            archive.write(self.log, "b/system.log")
            archive.writestr("readme.txt", "no log\n")
        self.refuse(path, 2, "--member a/one.log, --member b/system.log")
        self.refuse(path, 2, "with the name of --member", "--member", "c")
        self.compare(path, "member", "archive", "zip", "--member", "b/system.log", log=True)

    def test_last_member_of_a_name_counts(self):
        path = self.folder / "twice.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + other)
            archive.add(self.macos, ".")
        record = self.compare(path, "twice", "archive", "tar")
        self.assertTrue(any("the last one was taken" in message["text"] for message in record["messages"]))

    def test_dangerous_names(self):
        path = self.folder / "danger.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.macos, ".")
            for name in ("../../outside", "/tmp/absolute", "C:\\x", "a/../../b"):
                entry = tarfile.TarInfo(name)
                archive.addfile(entry)
        record = self.compare(path, "danger", "archive", "tar")
        self.assertEqual(sum("passed over" in message["text"] for message in record["messages"]), 4)

    def test_dangerous_evidence_is_refused(self):
        path = self.folder / "evil.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + paired)
            archive.add(self.macos / "Library/Bluetooth" / other, "../Library/Bluetooth/" + other)
        case = self.folder / "case_evil"
        result = run("extract", "-i", path, "-o", case)
        self.assertEqual(result.returncode, 4, result.stderr)
        states = {file["path"]: file["state"] for file in self.record(case)["evidence"]}
        self.assertEqual(states["Library/Bluetooth/" + other], "refused")
        self.assertEqual(states["Library/Bluetooth/" + paired], "present")
        self.looked_at(path, 4, "is not read: its name leads to a folder above")

    def test_links(self):
        path = self.folder / "links.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.macos / "Library/Bluetooth" / paired, "store/p")
            archive.add(self.macos / "Library/Bluetooth" / other, "Library/Bluetooth/" + other)
            archive.add(self.macos / "Library/Preferences", "Library/Preferences")
            link = tarfile.TarInfo("Library/Bluetooth/" + paired)
            link.type, link.linkname = tarfile.SYMTYPE, "../../store/p"
            archive.addfile(link)
        self.compare(path, "links", "archive", "tar")

    def test_cut_archive_is_partial(self):
        whole = self.folder / "whole.tar"
        with tarfile.open(whole, "w") as archive:
            archive.add(self.macos / "Library/Bluetooth" / other, "Library/Bluetooth/" + other)
            archive.add(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + paired)
        cut = self.folder / "cut.tar"
        cut.write_bytes(whole.read_bytes()[:-24000])
        case = self.folder / "case_cut"
        self.assertEqual(run("extract", "-i", cut, "-o", case).returncode, 4)
        states = {file["path"]: file["state"] for file in self.record(case)["evidence"]}
        self.assertEqual(states["Library/Bluetooth/" + other], "present")
        self.assertEqual(states["Library/Bluetooth/" + paired], "unreadable")
        self.looked_at(cut, 4, "the container cannot be read to its end: truncated")
        cut.write_bytes(b"\x1f\x8b" + bytes(4000))
        self.assertIsNone(self.looked_at(cut, 3, "the archive cannot be read")["container"])

    def test_archive_that_is_cut_behind_the_evidence_is_partial(self):
        cut = self.folder / "cut_behind.tar"
        with tarfile.open(cut, "w") as archive:
            archive.add(self.macos, ".")
            entry = tarfile.TarInfo("behind")
            entry.size = 200000
            archive.addfile(entry, io.BytesIO(bytes(entry.size)))
        cut.write_bytes(cut.read_bytes()[:-100000])
        for options in ([], ["--no-container-hash"], ["--type", "macos"]):
            case = self.folder / f"case_cut_behind{len(options)}{options[-1:]}"
            result = run("extract", "-q", "-i", cut, "-o", case, *options)
            self.assertEqual(result.returncode, 4, result.stderr)
            self.assertIn("the container cannot be read to its end: truncated", result.stderr)
            self.assertEqual(self.rows(case), self.rows(self.of_folder))
        self.looked_at(cut, 4, "the container cannot be read to its end: truncated")

    def test_encrypted_members(self):
        needs("7z")
        for suffix, options in (("zip", []), ("7z", []), ("7z", ["-mhe=on"])):
            path = self.folder / f"secret{len(options)}.{suffix}"
            tool("7z", "a", "-bd", "-psecret", *options, path, "macos", cwd=self.macos.parent)
            self.refuse(path, 3, "encrypted")
            self.looked_at(path, 3, "encrypted")

    # images

    def file_systems(self):
        needs("mke2fs")
        ext = self.folder / "ext.dd"
        if not ext.exists():
            with open(ext, "wb") as image:
                image.truncate(16 << 20)
            tool("mke2fs", "-q", "-t", "ext4", "-L", "EXT", "-d", self.macos, ext)
        return ext

    def test_ext(self):
        record = self.compare(self.file_systems(), "ext", "image", "raw")
        self.assertEqual(record["container"]["volume"],
                         {"number": 1, "offset": 0, "file_system": "ext4", "name": "EXT"})

    def test_fat(self):
        needs("mkfs.vfat", "mcopy")
        path = self.folder / "fat.dd"
        with open(path, "wb") as image:
            image.truncate(16 << 20)
        tool("mkfs.vfat", "-F", "16", "-n", "FAT", path)
        tool("mcopy", "-s", "-i", path, self.macos / "Library", "::/")
        record = self.compare(path, "fat", "image", "raw")
        self.assertEqual((record["container"]["volume"]["file_system"], record["container"]["volume"]["name"]),
                         ("fat16", "FAT"))

    def test_hfs(self):
        needs("xorriso")
        path = self.folder / "hfs.dd"
        tool("xorriso", "-as", "mkisofs", "-hfsplus", "-quiet", "-o", path, self.macos)
        record = self.compare(path, "hfs", "image", "raw")
        self.assertEqual(record["container"]["volume"]["file_system"], "hfs+")

    def test_formats_of_images(self):
        needs("qemu-img", "ewfacquirestream")
        ext = self.file_systems()
        for suffix, format, name in (("vmdk", "vmdk", "vmdk"), ("vhd", "vpc", "vhd")):
            path = self.folder / f"ext.{suffix}"
            tool("qemu-img", "convert", "-O", format, ext, path)
            self.compare(path, suffix, "image", name)
        with open(ext, "rb") as stream:
            tool("ewfacquirestream", "-q", "-d", "sha1", "-t", self.folder / "ewf", stdin=stream)
        record = self.compare(self.folder / "ewf.E01", "ewf", "image", "ewf")
        content = ext.read_bytes()
        self.assertEqual(record["container"]["stored_hashes"],
                         {"md5": hashlib.md5(content).hexdigest(), "sha1": hashlib.sha1(content).hexdigest()})
        self.check_report(self.folder / "case_ewf", record)
        for number in range(3):
            (self.folder / f"split.{number + 1:03}").write_bytes(content[number * 6000000:(number + 1) * 6000000])
        record = self.compare(self.folder / "split.001", "split", "image", "raw")
        self.assertEqual(len(record["container"]["files"]), 3)

    def check_report(self, case, record):
        """Every format of a report says which container the evidence came from."""
        formats = ("html", "jsonl", "csv", "sqlite")
        result = run("report", case, *(word for format in formats for word in ("-f", format)))
        self.assertEqual(result.returncode, 0, result.stderr)
        container = record["container"]
        [file] = container["files"]
        [line] = (case / "Report/containers.jsonl").read_text().splitlines()
        wanted = {"source": 1, "source_name": "Source1", "kind": "image", "format": "ewf", **file,
                  "stored_md5": container["stored_hashes"]["md5"], "stored_sha1": container["stored_hashes"]["sha1"],
                  "volume": 1, "volume_offset": 0, "volume_file_system": "ext4", "volume_name": "EXT"}
        self.assertEqual(json.loads(line), wanted)
        with open(case / "Report/containers.csv", newline="") as table:
            self.assertEqual(list(csv.DictReader(table)), [{name: str(value) for name, value in wanted.items()}])
        database = sqlite3.connect(case / "Report/report.sqlite")
        self.assertEqual(database.execute("SELECT path, sha256 FROM containers").fetchall(), [(file["path"], file["sha256"])])
        database.close()
        self.assertIn(f"image, ewf, {file['path']}, SHA-256 {file['sha256']}", (case / "Report/README.txt").read_text())
        page = (case / "Report/report.html").read_text()
        for text in ("Containers that evidence was taken out of", file["sha256"][:16], "changes their access times"):
            self.assertIn(text, page)

    def test_report_says_that_no_hash_was_made(self):
        case = self.extract(self.file_systems(), "unhashed", "--no-container-hash")
        self.assertEqual(run("report", case, "-f", "html", "-f", "csv").returncode, 0)
        for name in ("report.html", "README.txt"):
            self.assertIn("not made (--no-container-hash)", (case / "Report" / name).read_text())

    def test_refused_image_names_the_command(self):
        needs("qemu-img")
        path = self.folder / "a.qcow2"
        tool("qemu-img", "create", "-f", "qcow2", path, "1M")
        self.refuse(path, 3, f"qemu-img convert -O raw {path}")

    def two_volumes(self, name):
        """The same file system in two partitions."""
        needs("sfdisk")
        ext = self.file_systems().read_bytes()
        path = self.folder / name
        with open(path, "wb") as image:
            image.truncate(40 << 20)
        subprocess.run(["/sbin/sfdisk", "-q", path], text=True, check=True, stdout=subprocess.DEVNULL,
                       input="label: gpt\nstart=2048,size=32768,name=One\nstart=34816,size=32768,name=Two\n")
        with open(path, "r+b") as image:
            for start in (2048, 34816):
                image.seek(start * 512)
                image.write(ext)
        return path

    def test_choice_of_a_volume(self):
        path = self.two_volumes("gpt.dd")
        self.refuse(path, 2, "--volume 1 (macOS")
        self.refuse(path, 2, "there is no volume 9", "--volume", "9")
        record = self.compare(path, "gpt", "image", "raw", "--volume", "2")
        self.assertEqual(record["container"]["volume"]["offset"], 34816 * 512)

    def test_volumes_of_one_image_in_one_case(self):
        """All of them in one list, one after the other by --add, and continued without naming them again."""
        path = self.two_volumes("both.dd")
        (self.folder / "both.json").write_text(json.dumps({"sources": [
            {"path": str(path), "volume": 1}, {"path": str(path), "volume": 2}]}))
        listed = self.folder / "case_listed"
        self.assertEqual(run("extract", "-q", "--sources", self.folder / "both.json", "-o", listed).returncode, 0)
        added = self.extract(path, "added_volumes", "--volume", "1")
        self.assertEqual(run("extract", "-q", "-o", added, "--resume").returncode, 0)
        self.assertEqual(run("extract", "-q", "-i", path, "--volume", "2", "-o", added, "--add").returncode, 0)
        for case in (listed, added):
            result = run("extract", "-q", "-i", path, "--volume", "2", "-o", case, "--add")
            self.assertEqual((result.returncode, "a source is given twice" in result.stderr), (2, True), result.stderr)
            result = run("extract", "-q", "-i", self.macos, "-o", case, "--add")
            self.assertEqual(result.returncode, 0, result.stderr)
            sources = json.loads((case / "manifest.json").read_text())["sources"]
            self.assertEqual([source["container"] and source["container"]["volume"]["number"] for source in sources],
                             [1, 2, None])
            self.assertEqual(run("verify", case, "--containers").returncode, 0)

    def test_encrypted_volume_is_named(self):
        path = self.folder / "luks.dd"
        path.write_bytes(b"LUKS\xba\xbe\x00\x01" + bytes(1 << 20))
        self.refuse(path, 3, "encrypted with LUKS")

    # iOS

    def ios_folder(self):
        folder = self.folder / "ios_files"
        group = folder / "private/var/containers/Shared/SystemGroup/0A1B"
        if not folder.exists():
            shutil.copytree(self.macos / "Library/Bluetooth", group / "Library/Database")
        return folder

    def test_ios_files(self):
        folder = self.ios_folder()
        record = self.compare(folder, "ios", None, None, type="iOS_files", hashes=(other, paired))
        self.assertEqual(record["driven_as"], "macOS")
        path = self.folder / "ios.tar.gz"
        with tarfile.open(path, "w:gz") as archive:
            archive.add(folder, "dump")
        self.compare(path, "ios_tar", "archive", "tar", type="iOS_files", hashes=(other, paired))

    def backup(self, name, encrypted=False, stored=True, more=()):
        folder = self.folder / name
        folder.mkdir()
        index = sqlite3.connect(folder / "Manifest.db")
        index.execute("CREATE TABLE Files (fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags INTEGER, "
                      "file BLOB)")
        for database in (other, paired, *more):
            path = "Library/Database/" + database
            number = hashlib.sha1(f"{domain}-{path}".encode()).hexdigest()
            index.execute("INSERT INTO Files VALUES (?, ?, ?, 1, NULL)", (number, domain, path))
            if stored or database == other:
                (folder / number[:2]).mkdir(exist_ok=True)
                content = self.macos / "Library/Bluetooth" / database
                shutil.copy(content if content.exists() else self.log, folder / number[:2] / number)
        index.commit()
        index.close()
        (folder / "Manifest.plist").write_bytes(plistlib.dumps({"IsEncrypted": encrypted}, fmt=plistlib.FMT_BINARY))
        return folder

    def test_backup(self):
        folder = self.backup("backup")
        record = self.compare(folder, "backup", "backup", "folder", type="iOS_backup", hashes=(other, paired))
        self.assertEqual([pathlib.PurePath(file["path"]).name for file in record["container"]["files"]],
                         ["Manifest.db", "Manifest.plist"])
        path = self.folder / "backup.tar.gz"
        with tarfile.open(path, "w:gz") as archive:
            archive.add(folder, "0000")
        self.compare(path, "backup_tar", "backup", "tar", type="iOS_backup", hashes=(other, paired))

    def test_backups_that_are_not_whole(self):
        self.refuse(self.backup("locked", encrypted=True), 3, "IsEncrypted")
        case = self.folder / "case_lacking"
        self.assertEqual(run("extract", "-i", self.backup("lacking", stored=False), "-o", case).returncode, 4)
        states = {file["path"]: file["state"] for file in self.record(case)["evidence"]}
        self.assertEqual(states["Library/Bluetooth/" + paired], "unreadable")

    def test_cut_backup(self):
        """What is behind the cut is unknown, even where the index and the databases stand before it."""
        folder = self.backup("behind")
        path = self.folder / "behind.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(folder, "0000")
            (folder / "last").write_bytes(bytes(1 << 16))
            archive.add(folder / "last", "0001")
        path.write_bytes(path.read_bytes()[:-(1 << 15)])
        case = self.folder / "case_behind"
        result = run("extract", "-i", path, "-o", case)
        self.assertEqual(result.returncode, 4, result.stderr)
        self.assertIn("the container cannot be read to its end", result.stderr)
        self.assertEqual(self.rows(case), self.rows(self.of_folder))

    def test_backup_with_more_than_the_usual(self):
        """What only the index names is found too, behind and before it."""
        leftover = other + ".12:00:00_01-31-2026.corrupt"
        folder = self.backup("more", more=(leftover,))
        for name, is_backwards in (("before", False), ("behind", True)):
            path = self.folder / (name + "_more.tar.gz")
            with tarfile.open(path, "w:gz") as archive:
                for file in sorted((file for file in folder.rglob("*") if file.is_file()), reverse=is_backwards):
                    archive.add(file, "dump/" + str(file.relative_to(folder)))
            case = self.extract(path, name + "_more")
            self.assertEqual(self.rows(case), self.rows(self.of_folder))
            self.assertIn("Library/Bluetooth/" + leftover,
                          [path.relative_to(case / "Source1/Evidence").as_posix()
                           for path in (case / "Source1/Evidence").rglob("*.corrupt")])

    def test_several_backups(self):
        path = self.folder / "several.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.backup("lacks", stored=False), "first")
            archive.add(self.backup("whole"), "second")
        for options in ((), ("-t", "ios-backup")):
            self.refuse(path, 2, "choose one: --member first, --member second", *options)
            self.refuse(path, 2, "there is no device log and no evidence with the name of --member: third", *options,
                        "--member", "third")
            name = "second" + "_".join(options)
            case = self.extract(path, name, "--member", "second", *options)
            self.assertEqual(self.rows(case), self.rows(self.of_folder))
            self.assertEqual({file["origin"]["path"].split("/")[0] for file in self.record(case)["evidence"]
                              if file["origin"]}, {"second"})
            first = self.folder / ("case_first" + "_".join(options))
            self.assertEqual(run("extract", "-i", path, "-o", first, "--member", "first", *options).returncode, 4)

    def test_sample_with_containers(self):
        sample = self.folder / "with_containers"
        self.assertEqual(run("sample", sample, "--image").returncode, 0)
        for name, kind, format, type in (("sample.tar.gz", "archive", "tar", "macOS"),
                                         ("ios_backup", "backup", "folder", "iOS_backup"),
                                         ("ios_files", None, None, "iOS_files")):
            case = self.extract(sample / name, name)
            record = self.record(case)
            self.assertEqual((record["type"], record["driven_as"], record["status"]), (type, "macOS", "done"))
            self.assertEqual(self.rows(case), self.rows(self.of_folder))
            self.assertEqual(len(self.hashes(case)), 5)
            container = record["container"]
            self.assertEqual((container["kind"], container["format"]) if container else (None, None), (kind, format))

    # inspect

    def test_inspection(self):
        result = run("inspect", "--json", self.file_systems(), self.macos, self.log)
        self.assertEqual(result.returncode, 0, result.stderr)
        report = json.loads(result.stdout)
        self.assertEqual((report["format"], report["version"]), ("bluetooth-logs inspection", 1))
        self.assertEqual([source["type"] for source in report["sources"]], ["macOS", "macOS", "iOS_UID"])
        image = report["sources"][0]
        self.assertEqual(sorted(image), ["container", "evidence", "path", "problem", "type", "volumes"])
        self.assertEqual(sorted(image["volumes"][0]), ["evidence", "file_system", "is_encrypted", "name", "number",
                                                       "offset", "size", "type"])
        self.assertEqual({file["path"] for file in image["evidence"]},
                         {"Library/Bluetooth/" + other, "Library/Bluetooth/" + paired,
                          "Library/Preferences/com.apple.Bluetooth.plist"})
        self.assertIsNone(report["sources"][1]["container"])


    def test_program_and_plugin_are_whole(self):
        """The two files are all that has to be copied."""
        alone = self.folder / "alone"
        alone.mkdir()
        copied = shutil.copy(program, alone)
        for file in pathlib.Path(program).parent.glob("libbluetooth_logs.*"):
            shutil.copy(file, alone)
        for arguments in (("inspect", self.file_systems()), ("extract", "-i", self.macos, "-o", self.folder / "case_alone")):
            result = subprocess.run([copied, *arguments], capture_output=True, text=True)
            skip_what_is_left_out(result.stderr)
            self.assertEqual(result.returncode, 0, result.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
