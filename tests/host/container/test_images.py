#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_images.py PROGRAM HIVE_WRITER
# Images of each file system, partition table and form, made here, give the same rows and the same hashes of evidence as
# the folder that they were made from. An image whose tool is missing is passed over, and said so.

import ctypes.util
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tarfile
import unittest

from apfs_image import apfs_image
from container_case import container_case, needs, other, paired, program, run, tool
from exfat_image import exfat_image
from ntfs_image import has_library, make_folders

hive_writer = sys.argv[2]
small_apfs = 128 << 20
large_apfs = 2 << 30  # for more than one volume, each 512 MiB allow one; it is sparse
sector = 512


def inspected(path):
    return json.loads(run("inspect", "--json", path).stdout)["sources"][0]


class Images(container_case):
    def empty(self, name, size):
        path = self.folder / name
        with open(path, "wb") as image:
            image.truncate(size)
        return path

    def ext(self):
        needs("mke2fs")
        path = self.folder / "ext.dd"
        if not path.exists():
            self.empty("ext.dd", 16 << 20)
            tool("mke2fs", "-q", "-t", "ext4", "-L", "EXT", "-d", self.macos, path)
        return path

    def apfs(self, name, *volumes, folder=None):
        """A container with these volumes; the last one gets the folder."""
        needs("mkapfs")
        path = self.empty(name, small_apfs if len(volumes) == 1 else large_apfs)
        tool("mkapfs", "-L", volumes[0], path)
        with apfs_image(path) as image:
            last = 0
            for volume in volumes[1:]:
                last = image.add_volume(volume)
            if folder:
                image.add_folder(last, folder)
        return path

    def checked(self, path):
        needs("apfsck", "fsapfsinfo")
        tool("apfsck", path)
        tool("fsapfsinfo", path)

    def volume(self, record):
        volume = record["container"]["volume"]
        return volume["number"], volume["file_system"], volume["name"]

    # file systems

    def test_apfs(self):
        path = self.apfs("one.apfs", "Macintosh", folder=self.macos)
        self.checked(path)
        record = self.compare(path, "apfs", "image", "raw")
        self.assertEqual(self.volume(record), (1, "apfs", "Macintosh"))

    def test_every_volume_of_apfs_is_looked_into(self):
        path = self.apfs("three.apfs", "System", "Preboot", "Data", folder=self.macos)
        self.checked(path)
        record = self.compare(path, "apfs_three", "image", "raw", "--no-container-hash")
        self.assertEqual(self.volume(record), (3, "apfs", "Data"))
        self.assertEqual([(volume["number"], volume["name"], volume["type"], volume["offset"])
                          for volume in inspected(path)["volumes"]],
                         [(1, "System", None, 0), (2, "Preboot", None, 0), (3, "Data", "macOS", 0)])

    def test_apfs_in_a_partition(self):
        needs("sfdisk")
        start, whole = 2048 * sector, self.apfs("inner.apfs", "Macintosh", folder=self.macos)
        path = self.empty("apfs_gpt.dd", small_apfs + 2 * start)
        self.partition(path, f"label: gpt\nstart=2048,size={small_apfs // sector},name=Disk\n")
        tool("dd", f"if={whole}", f"of={path}", "bs=1M", "seek=1", "conv=notrunc,sparse")
        record = self.compare(path, "apfs_gpt", "image", "raw")
        self.assertEqual(record["container"]["volume"],
                         {"number": 1, "offset": start, "file_system": "apfs", "name": "Macintosh"})

    def test_encrypted_volume_of_apfs(self):
        path = self.apfs("encrypted.apfs", "Open", folder=self.macos)
        with apfs_image(path) as image:
            image.claim_encryption(0)
        self.refuse(path, 3, "it is encrypted with FileVault (APFS)")
        self.refuse(path, 3, "it is encrypted with FileVault (APFS)", "--volume", "1")
        [volume] = inspected(path)["volumes"]
        self.assertEqual((volume["is_encrypted"], volume["type"], volume["evidence"]), (True, None, []))

    def test_encrypted_volume_beside_evidence_is_a_warning(self):
        path = self.apfs("half.apfs", "Open", "Closed")
        with apfs_image(path) as image:
            image.add_folder(0, self.macos)
            image.claim_encryption(1)
        record = self.compare(path, "half", "image", "raw", "--no-container-hash")
        texts = [message["text"] for message in record["messages"] if message["weight"] == "warning"]
        self.assertTrue(any("volume 2" in text and "encrypted" in text for text in texts), texts)

    def test_exfat(self):
        needs("mkfs.exfat", "fsck.exfat")
        path = self.empty("exfat.dd", 32 << 20)
        tool("mkfs.exfat", "-L", "STICK", path)
        exfat_image(path).add_folder(self.macos)
        tool("fsck.exfat", "-n", path)
        record = self.compare(path, "exfat", "image", "raw")
        self.assertEqual(self.volume(record), (1, "exfat", "STICK"))

    def ntfs(self, name, folder):
        needs("mkntfs", "ntfscp")
        if not has_library():
            self.skipTest("the library of ntfs-3g is missing")
        path = self.empty(name, 16 << 20)
        tool("mkntfs", "-F", "-q", "-L", "SYSTEM C", path)
        inside = sorted(folder.rglob("*"))
        make_folders(path, [entry.relative_to(folder) for entry in inside if entry.is_dir()])
        for entry in inside:
            if entry.is_file():
                tool("ntfscp", path, entry, entry.relative_to(folder))
        return path

    def test_ntfs(self):
        record = self.compare(self.ntfs("ntfs.dd", self.macos), "ntfs", "image", "raw")
        self.assertEqual(self.volume(record), (1, "ntfs", "SYSTEM C"))

    # Windows

    def windows(self):
        folder = self.folder / "windows"
        if not folder.exists():
            config = folder / "Windows/System32/config"
            config.mkdir(parents=True)
            (config / "SYSTEM").write_bytes(subprocess.run([hive_writer], capture_output=True, check=True).stdout)
            for number in (1, 2):
                (config / f"SYSTEM.LOG{number}").write_bytes(b"log %d" % number)
        return folder

    def compare_windows(self, path, name):
        case = self.extract(path, name)
        record = self.record(case)
        self.assertEqual((record["type"], record["host_devices"]), ("winOS", 1))
        of_folder = self.record(self.extract(self.windows(), "of_" + name))
        hashes = {file["path"]: file["before"]["sha256"] for file in of_folder["evidence"] if file["state"] == "present"}
        self.assertEqual(hashes, {file["path"]: file["before"]["sha256"] for file in record["evidence"]
                                  if file["state"] == "present"})
        self.assertEqual(len(hashes), 3)
        devices = (case / "Source1/host_devices.jsonl").read_text().splitlines()
        self.assertEqual(devices, (self.folder / f"case_of_{name}/Source1/host_devices.jsonl").read_text().splitlines())
        self.assertIn('"Car"', devices[-1])

    def test_registry_of_an_image(self):
        self.compare_windows(self.ntfs("windows.dd", self.windows()), "windows_image")

    def test_registry_of_an_archive(self):
        path = self.folder / "windows.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.windows(), "C")
        self.compare_windows(path, "windows_archive")

    # partition tables

    def partition(self, path, table):
        subprocess.run(["/sbin/sfdisk", "-q", path], text=True, check=True, input=table, stdout=subprocess.DEVNULL)

    def put(self, path, start, content):
        with open(path, "r+b") as image:
            image.seek(start)
            image.write(content)

    def test_mbr(self):
        needs("sfdisk")
        path = self.empty("mbr.dd", 40 << 20)
        self.partition(path, "label: dos\nstart=2048,size=8192,type=83\nstart=16384,size=40960,type=5\n"
                             "start=18432,size=32768,type=83\n")
        self.put(path, 18432 * sector, self.ext().read_bytes())
        record = self.compare(path, "mbr", "image", "raw")
        self.assertEqual(record["container"]["volume"],
                         {"number": 2, "offset": 18432 * sector, "file_system": "ext4", "name": "EXT"})

    def test_apm(self):
        ext = self.ext().read_bytes()
        path = self.empty("apm.dd", 20 << 20)
        self.put(path, 0, struct.pack(">2sHI", b"ER", sector, (20 << 20) // sector))
        parts = ((1, 63, b"Apple", b"Apple_partition_map"), (64, len(ext) // sector, b"Disk", b"Apple_UNIX_SVR2"))
        for number, (start, count, name, kind) in enumerate(parts):
            self.put(path, (1 + number) * sector, struct.pack(">2sHIII32s32sIII", b"PM", 0, len(parts), start, count,
                                                              name, kind, 0, count, 0x33))
        self.put(path, 64 * sector, ext)
        record = self.compare(path, "apm", "image", "raw")
        self.assertEqual(record["container"]["volume"]["offset"], 64 * sector)

    # forms of images

    def test_split_ewf(self):
        needs("ewfacquirestream")
        with open(self.ext(), "rb") as stream:
            tool("ewfacquirestream", "-q", "-c", "none", "-S", "5MiB", "-t", self.folder / "parts", stdin=stream)
        record = self.compare(self.folder / "parts.E01", "split_ewf", "image", "ewf")
        self.assertEqual([pathlib.PurePath(file["path"]).suffix for file in record["container"]["files"]],
                         [".E01", ".E02", ".E03", ".E04"])
        self.assertTrue(all(file["sha256"] for file in record["container"]["files"]))

    def test_ewf_under_any_name(self):
        needs("ewfacquirestream")
        with open(self.ext(), "rb") as stream:
            tool("ewfacquirestream", "-q", "-t", self.folder / "named", stdin=stream)
        path = (self.folder / "named.E01").rename(self.folder / "exhibit 7")
        self.compare(path, "named_ewf", "image", "ewf")

    def test_vmdk_with_extents(self):
        needs("qemu-img")
        for form, files in (("twoGbMaxExtentSparse", 2), ("twoGbMaxExtentFlat", 2), ("monolithicFlat", 2),
                            ("streamOptimized", 1)):
            with self.subTest(form):
                path = self.folder / f"{form}.vmdk"
                tool("qemu-img", "convert", "-O", "vmdk", "-o", f"subformat={form}", self.ext(), path)
                record = self.compare(path, form, "image", "vmdk")
                self.assertEqual(len(record["container"]["files"]), files)

    def test_vhd(self):
        needs("qemu-img")
        for form in ("fixed", "dynamic"):
            with self.subTest(form):
                path = self.folder / f"{form}.vhd"
                tool("qemu-img", "convert", "-O", "vpc", "-o", f"subformat={form}", self.ext(), path)
                self.compare(path, "vhd_" + form, "image", "vhd")

    def test_split_from_zero(self):
        content = self.ext().read_bytes()
        for number in range(3):
            (self.folder / f"zero.{number:03}").write_bytes(content[number * 6000000:(number + 1) * 6000000])
        record = self.compare(self.folder / "zero.000", "zero", "image", "raw")
        self.assertEqual(len(record["container"]["files"]), 3)

    # what is in no readable volume

    def test_encrypted_volumes_are_named(self):
        for name, place, magic, words in (("core", 88, b"CS\x01\0", "FileVault (CoreStorage)"),
                                          ("bitlocker", 3, b"-FVE-FS-", "BitLocker"), ("luks", 0, b"LUKS\xba\xbe", "LUKS")):
            with self.subTest(name):
                needs("sfdisk")
                path = self.empty(name + ".dd", 20 << 20)
                self.partition(path, "label: gpt\nstart=2048,size=2048,name=Secret\n")
                self.put(path, 2048 * sector + place, magic)
                self.refuse(path, 3, "encrypted with " + words)
                self.assertTrue(inspected(path)["volumes"][0]["is_encrypted"])

    def test_image_without_evidence_lists_its_volumes(self):
        needs("mke2fs", "sfdisk")
        path = self.empty("nothing.dd", 40 << 20)
        self.partition(path, "label: gpt\nstart=2048,size=2048,name=Raw\nstart=4096,size=32768,name=Two\n")
        inner = self.empty("inner.dd", 16 << 20)
        tool("mke2fs", "-q", "-t", "ext2", "-L", "EMPTY", inner)
        self.put(path, 4096 * sector, inner.read_bytes())
        self.refuse(path, 3, "these volumes were looked at: volume 1 at 1048576 (no file system that is known, Raw); "
                             "volume 2 at 2097152 (ext2, EMPTY)")

    def test_what_is_cut_off_is_told(self):
        """A volume behind the end of its image is no volume without evidence."""
        needs("sfdisk")
        ext = self.ext().read_bytes()
        path = self.empty("cut.dd", 40 << 20)
        self.partition(path, f"label: dos\nstart=2048,size={len(ext) // sector},type=83\nstart=40960,size=16384,type=83\n")
        self.put(path, 2048 * sector, ext)
        with open(path, "r+b") as image:
            image.truncate(20 << 20)
        record = self.compare(path, "cut", "image", "raw")
        self.assertIn("its first bytes cannot be read", " ".join(message["text"] for message in record["messages"]))
        self.put(path, 2048 * sector, bytes(1 << 20))
        self.refuse(path, 3, "its first bytes cannot be read")

    def test_ewf_without_its_end_is_told(self):
        needs("ewfacquirestream")
        with open(self.ext(), "rb") as stream:
            tool("ewfacquirestream", "-q", "-c", "none", "-S", "5MiB", "-t", self.folder / "lost", stdin=stream)
        (self.folder / "lost.E04").unlink()
        path = self.folder / "lost.E01"
        result = run("extract", "-q", "-i", path, "-o", self.folder / "case_lost")
        self.assertIn("the container cannot be read to its end: its end is missing", result.stderr)
        self.assertIn(result.returncode, (3, 4))
        self.looked_at(path, result.returncode, "its end is missing")
        with open(self.ext(), "rb") as stream:
            tool("ewfacquirestream", "-q", "-t", self.folder / "short", stdin=stream)
        short = self.folder / "short.E01"
        short.write_bytes(short.read_bytes()[:40000])
        self.refuse(short, 3, "its end is missing")

    def test_deleted_evidence_is_not_taken(self):
        needs("mke2fs", "debugfs")
        path = self.folder / "deleted.dd"
        shutil.copy(self.ext(), path)
        tool("debugfs", "-w", "-R", f"rm Library/Bluetooth/{paired}", path)
        case = self.folder / "case_deleted"
        run("extract", "-q", "-i", path, "-o", case)
        states = {file["path"]: file["state"] for file in self.record(case)["evidence"]}
        self.assertEqual(states["Library/Bluetooth/" + paired], "absent")
        self.assertEqual(states["Library/Bluetooth/" + other], "present")

    def test_links_of_an_image(self):
        needs("mke2fs")
        folder = self.folder / "linked"
        shutil.copytree(self.macos, folder)
        database = folder / "Library/Bluetooth" / paired
        database.rename(folder / "kept")
        database.symlink_to("/kept")
        outside = folder / "Library/Bluetooth" / other
        outside.unlink()
        outside.symlink_to("../../../../../etc/passwd")
        path = self.empty("linked.dd", 16 << 20)
        tool("mke2fs", "-q", "-t", "ext4", "-d", folder, path)
        case = self.folder / "case_linked"
        self.assertEqual(run("extract", "-q", "--follow-links", "-i", path, "-o", case).returncode, 4)
        states = {file["path"]: file["state"] for file in self.record(case)["evidence"]}
        self.assertEqual(states["Library/Bluetooth/" + paired], "present")
        self.assertEqual(states["Library/Bluetooth/" + other], "refused")

    def test_library_that_cannot_be_loaded(self):
        path = self.ext()
        libraries = self.folder / "libraries"
        libraries.mkdir()
        (libraries / ctypes.util.find_library("tsk")).write_text("no library")
        for arguments, code, said in ((["--version"], 0, "images: The Sleuth Kit cannot be loaded: "),
                                      (["inspect", path], 1, f"error: {path}: The Sleuth Kit cannot be loaded: ")):
            result = subprocess.run([program, *arguments], capture_output=True, text=True,
                                    env=dict(os.environ, LD_LIBRARY_PATH=str(libraries)))
            self.assertIn(said, result.stdout + result.stderr)
            self.assertEqual(result.returncode, code)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
