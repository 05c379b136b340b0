#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_container_mutants.py PROGRAM HIVE_WRITER MUTATOR [COUNT [FORM...]]
# So many mutants (50) of each form of container, or of those that are named (tar, zip, apfs, …), taken out by the function that the worker calls. One that brings that
# down, in a library, goes through the program, which has to name the source and end with 4. A few go through the program
# besides: whatever its worker does, the program ends with a code of its own, and names the source.

import bz2
import gzip
import lzma
import random
import shutil
import subprocess
import sys
import tarfile
import unittest
import zipfile

import test_images
from container_case import needs, program, run, tool

mutator = sys.argv[3]
count = sys.argv[4] if len(sys.argv) > 4 else "50"
through_the_program = 3
known_codes = (0, 2, 3, 4)


class Mutants(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        test_images.Images.setUpClass()
        cls.images = test_images.Images("ext")
        cls.folder = test_images.Images.folder
        cls.macos = test_images.Images.macos
        cls.log = test_images.Images.log
        cls.tar = cls.folder / "seed.tar"
        with tarfile.open(cls.tar, "w") as archive:
            archive.add(cls.macos, "dump")

    @classmethod
    def tearDownClass(cls):
        test_images.Images.tearDownClass()

    def torture(self, path, container=None):
        """Changes a file, which is the container or stands in it."""
        container = container or path
        result = subprocess.run([mutator, container, path, count, program], capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr[-4000:])
        print(result.stdout.strip().splitlines()[-1], file=sys.stderr)
        content = path.read_bytes() if path.stat().st_size < 64 << 20 else None
        for number in range(through_the_program if content else 0):
            chance = random.Random(number)
            mutant = bytearray(content)
            for _ in range(20):
                mutant[chance.randrange(min(len(mutant), 1 << 16))] = chance.randrange(256)
            path.write_bytes(mutant)
            result = run("inspect", container)
            self.assertIn(result.returncode, known_codes, result.stderr)
            self.assertTrue(result.returncode == 0 or str(container) in result.stderr, result.stderr)
        if content:
            path.write_bytes(content)

    def packed(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def test_tar(self):
        self.torture(self.tar)

    def test_compressed_tar(self):
        content = self.tar.read_bytes()
        self.torture(self.packed("seed.tar.gz", gzip.compress(content)))
        self.torture(self.packed("seed.tar.bz2", bz2.compress(content)))
        self.torture(self.packed("seed.tar.xz", lzma.compress(content)))
        needs("zstd")
        tool("zstd", "-q", "-f", self.packed("zst.tar", content), "-o", self.folder / "seed.tar.zst")
        self.torture(self.folder / "seed.tar.zst")

    def test_zip(self):
        path = self.folder / "seed.zip"
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
            for file in sorted(self.macos.rglob("*")):
                archive.write(file, file.relative_to(self.macos))
        self.torture(path)

    def test_7z(self):
        needs("7z")
        tool("7z", "a", "-bd", self.folder / "seed.7z", "macos", cwd=self.macos.parent)
        self.torture(self.folder / "seed.7z")

    def test_cpio(self):
        needs("cpio")
        subprocess.run("find macos | cpio -o -H newc > ../seed.cpio", shell=True, cwd=self.macos.parent,
                       stderr=subprocess.DEVNULL, check=True)
        self.torture(self.folder / "seed.cpio")

    def test_compressed_log(self):
        content = self.log.read_bytes()
        for suffix, pack in (("gz", gzip.compress), ("bz2", bz2.compress), ("xz", lzma.compress)):
            self.torture(self.packed("seed.log." + suffix, pack(content)))
        needs("zstd")
        tool("zstd", "-q", "-f", self.log, "-o", self.folder / "seed.log.zst")
        self.torture(self.folder / "seed.log.zst")

    def test_backup(self):
        sample = self.folder / "backup_sample"
        run("sample", sample, "--image")
        backup = sample / "ios_backup"
        path = self.folder / "backup.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(backup, ".")
        self.torture(path)
        self.torture(backup / "Manifest.db", backup)
        self.torture(backup / "Manifest.plist", backup)

    def test_apfs(self):
        needs("mkapfs")
        path = self.images.empty("seed.apfs", 128 << 20)
        tool("mkapfs", "-L", "Seed", path)
        with test_images.apfs_image(path) as image:
            image.add_folder(0, self.macos)
        self.torture(path)

    def test_ext(self):
        self.torture(self.images.ext())

    def test_ntfs(self):
        self.torture(self.images.ntfs("seed.ntfs", self.macos))

    def test_exfat(self):
        needs("mkfs.exfat")
        path = self.images.empty("seed.exfat", 32 << 20)
        tool("mkfs.exfat", path)
        test_images.exfat_image(path).add_folder(self.macos)
        self.torture(path)

    def test_fat(self):
        needs("mkfs.vfat", "mcopy")
        path = self.images.empty("seed.fat", 16 << 20)
        tool("mkfs.vfat", "-F", "16", path)
        tool("mcopy", "-s", "-i", path, self.macos / "Library", "::/")
        self.torture(path)

    def test_hfs(self):
        needs("xorriso")
        path = self.folder / "seed.hfs"
        tool("xorriso", "-as", "mkisofs", "-hfsplus", "-quiet", "-o", path, self.macos)
        self.torture(path)

    def converted(self, suffix, format):
        needs("qemu-img")
        path = self.folder / f"seed.{suffix}"
        tool("qemu-img", "convert", "-O", format, self.images.ext(), path)
        return path

    def test_vmdk(self):
        self.torture(self.converted("vmdk", "vmdk"))

    def test_vhd(self):
        self.torture(self.converted("vhd", "vpc"))

    def test_ewf(self):
        needs("ewfacquirestream")
        with open(self.images.ext(), "rb") as stream:
            tool("ewfacquirestream", "-q", "-t", self.folder / "seed", stdin=stream)
        self.torture(self.folder / "seed.E01")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + [f"Mutants.test_{form}" for form in sys.argv[5:]])
