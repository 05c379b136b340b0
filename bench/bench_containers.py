#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# bench_containers.py PROGRAM image [GIB]   a sparse image with a macOS source in it: inspect against fls and icat of the
#                                           same library, which list the volume and read what the program reads
# bench_containers.py PROGRAM tar [GIB]     a tar of files of 64 KiB, and one of 1 MiB: inspect and extract against tar -tf,
#                                           extract with the container's hash against openssl and tar -tf
# bench_containers.py PROGRAM hash [GIB]    the hash of a container against openssl of the same libcrypto
# By turns, nine rounds; the ratios are medians of those of the rounds. Containers stand in the temporary folder meanwhile.

import io
import os
import pathlib
import statistics
import subprocess
import sys
import tarfile
import tempfile
import time

rounds = 9
sector = 512


class cost:
    """What commands take, one after the other: seconds by the clock and of the processor, peak memory in KiB."""

    def __init__(self, clock=0.0, processor=0.0, peak=0):
        self.clock, self.processor, self.peak = clock, processor, peak

    def less(self, other):
        return cost(self.clock - other.clock, self.processor - other.processor, self.peak)


def measured(*commands):
    """The cost of commands that must end well. A peak below this program's own memory cannot be seen."""
    total = cost()
    start = time.perf_counter()
    for command in commands:
        process = subprocess.Popen(list(map(str, command)), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"{command} ended with {process.returncode}")
        total.processor += usage.ru_utime + usage.ru_stime
        total.peak = max(total.peak, usage.ru_maxrss)
    total.clock = time.perf_counter() - start
    return total


def show(what, pairs):
    """Medians of both, and of the ratios of each round."""
    text = what
    for name in ("clock", "processor"):
        both = [(getattr(our, name), getattr(their, name)) for our, their in pairs]
        ratios = [our / their for our, their in both if their > 0]
        text += (f"; {name} {statistics.median(our for our, _ in both):.3f} s against "
                 f"{statistics.median(their for _, their in both):.3f} s, ratio {statistics.median(ratios):.2f} "
                 f"({min(ratios):.2f} to {max(ratios):.2f})")
    print(f"{text}; peak {max(our.peak for our, _ in pairs)} KiB; load {os.getloadavg()[0]:.0f}", flush=True)


def compare(what, ours, theirs):
    show(what, [(measured(*ours), measured(*theirs)) for _ in range(rounds)])


def sample(program, folder):
    subprocess.run([program, "-q", "sample", folder / "sample"], check=True, stdout=subprocess.DEVNULL)
    return folder / "sample/macos"


def image(program, folder, gibibytes):
    path = folder / "disk.dd"
    with open(path, "wb") as file:
        file.truncate(gibibytes << 30)
    subprocess.run(["/sbin/mke2fs", "-q", "-t", "ext4", "-d", sample(program, folder), path], check=True)
    listed = subprocess.run(["fls", "-r", "-p", path], check=True, capture_output=True, text=True).stdout
    inodes = [line.split()[1].rstrip(":") for line in listed.splitlines() if "Library" in line and line.startswith("r/r")]
    theirs = [["fls", "-r", path]] + [["icat", path, inode] for inode in inodes]
    compare(f"image of {gibibytes} GiB, evidence listed and sized against fls and icat",
            [[program, "inspect", path]], theirs)
    compare_extraction(program, folder, f"image of {gibibytes} GiB, extract against fls and icat", path,
                       folder / "sample/macos", ["--no-container-hash"], theirs)


def tar_of_files(path, source, gibibytes, kibibytes):
    content = os.urandom(kibibytes << 10)
    with tarfile.open(path, "w") as archive:
        archive.add(source, "dump")
        for number in range((gibibytes << 20) // kibibytes):
            entry = tarfile.TarInfo(f"dump/private/{number:06}")
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content))


def compare_extraction(program, folder, what, source, plain, options, theirs):
    """What extract takes longer of a container than of the folder that is in it, against what others take."""
    pairs = []
    for _ in range(rounds):
        cases = [folder / f"case{len(list(folder.iterdir()))}{name}" for name in "ab"]
        ours = measured([program, "extract", "-q", "-i", source, "-o", cases[0], *options])
        alone = measured([program, "extract", "-q", "-i", plain, "-o", cases[1]])
        pairs.append((ours.less(alone), measured(*theirs)))
    show(f"{what}, what it takes more than the folder", pairs)


def tar(program, folder, gibibytes):
    source = sample(program, folder)
    path = folder / "dump.tar"
    tar_of_files(path, source, 0, 64)
    compare("tar of the source alone, which is what starting takes", [[program, "inspect", path]], [["tar", "-tf", path]])
    for kibibytes in (64, 1024):
        tar_of_files(path, source, gibibytes, kibibytes)
        measured(["cat", path])  # all find it in memory then
        what = f"tar of {gibibytes} GiB, files of {kibibytes} KiB"
        listed = ["tar", "-tf", path]
        compare(f"{what}, inspect against tar -tf", [[program, "inspect", path]], [listed])
        compare_extraction(program, folder, f"{what}, extract without its hash against tar -tf", path, source,
                           ["--no-container-hash"], [listed])
        compare_extraction(program, folder, f"{what}, extract with its hash against openssl and tar -tf", path, source, [],
                           [["openssl", "dgst", "-sha256", path], listed])


def hashing(program, folder, gibibytes):
    path = folder / "hash.tar"
    with tarfile.open(path, "w") as archive:
        archive.add(sample(program, folder), ".")
    with open(path, "ab") as file:
        for _ in range(gibibytes << 10):
            file.write(os.urandom(1 << 20))
    case = folder / "case"
    subprocess.run([program, "extract", "-q", "-i", path, "-o", case], check=True, stderr=subprocess.DEVNULL)
    compare(f"hash of {gibibytes} GiB, verify --containers against openssl",
            [[program, "-q", "verify", case, "--containers"]], [["openssl", "dgst", "-sha256", path]])


if __name__ == "__main__":
    works = {"image": (image, 20), "tar": (tar, 4), "hash": (hashing, 2)}
    if len(sys.argv) < 3 or sys.argv[2] not in works:
        sys.exit(f"usage: {sys.argv[0]} PROGRAM image|tar|hash [GIB]")
    work, gibibytes = works[sys.argv[2]]
    with tempfile.TemporaryDirectory() as temporary:
        work(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(temporary), int(sys.argv[3]) if len(sys.argv) > 3 else gibibytes)
