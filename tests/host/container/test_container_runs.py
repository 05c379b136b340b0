#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_container_runs.py PROGRAM
# Runs on containers that end early, meet a limit or are watched: what is half copied never counts as evidence, and the
# container stays as it was.

import gzip
import io
import json
import lzma
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tarfile
import time
import unittest
import zipfile
import zlib

from container_case import container_case, needs, other, paired, program, run, skip_what_is_left_out, tool

long_log_lines = 1200000
log_line = b"May 17 12:11:05 phone-name process(Library)[159] <Notice>: nothing of note in line %09d\n"


def events(*arguments):
    """What --progress json says, and the exit code."""
    result = run(*arguments, "--progress", "json")
    return [json.loads(line) for line in result.stderr.splitlines() if line.startswith("{")], result.returncode


def children(process):
    task = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children")
    return [int(number) for number in task.read_text().split()] if task.exists() else []


class ContainerRuns(container_case):
    def tar_of_databases(self, name, paths, **members):
        path = self.folder / name
        with tarfile.open(path, "w") as archive:
            for member in paths:
                archive.add(self.macos / "Library/Bluetooth" / pathlib.PurePath(member).name, member)
            for member, content in members.items():
                entry = tarfile.TarInfo(member)
                entry.size = len(content)
                archive.addfile(entry, io.BytesIO(content))
        return path

    def states(self, case, source="Source1"):
        record = json.loads((case / source / "source.json").read_text())
        return {file["path"]: (file["state"], file["reason"]) for file in record["evidence"]}

    def file_of(self, case, name):
        return self.states(case)["Library/Bluetooth/" + name]

    # limits

    def test_size_of_a_database(self):
        path = self.folder / "large.tar"
        with tarfile.open(path, "w") as archive:
            archive.add(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + paired)
            entry = tarfile.TarInfo("Library/Bluetooth/" + other)
            entry.size = 3 << 20
            archive.addfile(entry, io.BytesIO(bytes(3 << 20)))
        case = self.folder / "case_large"
        self.assertEqual(run("extract", "-q", "-i", path, "-o", case, "--max-database", "2").returncode, 4)
        state, reason = self.file_of(case, other)
        self.assertEqual((state, "--max-database" in reason), ("refused", True), reason)
        self.assertEqual(self.file_of(case, paired)[0], "present")
        self.assertFalse((case / "Source1/Evidence/Library/Bluetooth" / other).exists())

    def test_size_of_a_log_in_fractions(self):
        path = self.folder / "log.gz"
        path.write_bytes(gzip.compress(b"".join(log_line % i for i in range(40000)), 1))
        case = self.folder / "case_log_limit"
        result = run("extract", "-i", path, "-o", case, "--max-log", "0.001")
        self.assertEqual(result.returncode, 3, result.stderr)
        self.assertEqual([file["state"] for file in self.record(case)["evidence"]], ["refused"])
        self.assertIn("it has more than the 1073741 bytes that --max-log allows", result.stderr)
        self.assertEqual([file for file in (case / "Source1/Evidence").rglob("*") if file.is_file()], [])
        self.extract(path, "log_in_limit", "--max-log", "0.01", "--suite-tables")

    def test_ratio(self):
        path = self.folder / "bomb.log.xz"
        with lzma.open(path, "wb", preset=6) as stream:
            stream.write(log_line % 1)
            for _ in range(40):
                stream.write(b"\n" * (1 << 20))
        case = self.folder / "case_bomb"
        result = run("extract", "-i", path, "-o", case)
        self.assertEqual(result.returncode, 3, result.stderr)
        self.assertEqual([file["state"] for file in self.record(case)["evidence"]], ["refused"])
        self.assertIn("it unpacks to more than 1000 times its size", result.stderr)
        self.assertEqual([file for file in (case / "Source1/Evidence").rglob("*") if file.is_file()], [])

    def test_hole_of_a_petabyte_in_an_archive(self):
        sparse = tarfile.TarInfo("Library/Bluetooth/" + other)
        sparse.pax_headers = {"GNU.sparse.major": "0", "GNU.sparse.minor": "1", "GNU.sparse.size": str(1 << 50),
                              "GNU.sparse.numblocks": "1", "GNU.sparse.map": "0,0",
                              "GNU.sparse.name": "Library/Bluetooth/" + other}
        path = self.folder / "hole.tar"
        with tarfile.open(path, "w", format=tarfile.PAX_FORMAT) as archive:
            archive.addfile(sparse)
            archive.add(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + paired)
        case = self.folder / "case_hole"
        started = time.monotonic()
        self.assertEqual(run("extract", "-q", "-i", path, "-o", case).returncode, 4)
        self.assertLess(time.monotonic() - started, 30)
        state, reason = self.file_of(case, other)
        self.assertEqual((state, "1125899906842624 bytes" in reason), ("refused", True), reason)

    def test_hole_of_terabytes_in_an_image(self):
        needs("mke2fs")
        folder = self.folder / "holes"
        shutil.copytree(self.macos, folder)
        with open(folder / "Library/Bluetooth" / other, "r+b") as database:
            database.truncate(8 << 40)
        path = self.folder / "holes.dd"
        with open(path, "wb") as image:
            image.truncate(16 << 20)
        tool("mke2fs", "-q", "-t", "ext4", "-d", folder, path)
        case = self.folder / "case_holes"
        self.assertEqual(run("extract", "-q", "-i", path, "-o", case).returncode, 4)
        state, reason = self.file_of(case, other)
        self.assertEqual((state, "8796093022208 bytes" in reason), ("refused", True), reason)

    def test_member_that_lies_about_its_size(self):
        path = self.folder / "liar.zip"
        content = (self.macos / "Library/Bluetooth" / other).read_bytes()
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
            archive.writestr("Library/Bluetooth/" + other, content)
            archive.write(self.macos / "Library/Bluetooth" / paired, "Library/Bluetooth/" + paired)
        archive = bytearray(path.read_bytes())
        for signature, place in ((b"PK\x03\x04", 22), (b"PK\x01\x02", 24)):
            at = archive.index(signature) + place
            archive[at:at + 4] = (len(content) - 4096).to_bytes(4, "little")
        path.write_bytes(archive)
        case = self.folder / "case_liar"
        self.assertEqual(run("extract", "-q", "-i", path, "-o", case).returncode, 4)
        self.assertEqual(self.file_of(case, other)[0], "unreadable")
        self.assertEqual(self.file_of(case, paired)[0], "present")

    def test_full_disk_is_told_before_it_is_full(self):
        path = self.tar_of_databases("room.tar", ["Library/Bluetooth/" + other, "Library/Bluetooth/" + paired])
        disk = self.folder / "disk"
        disk.mkdir()
        result = subprocess.run(["unshare", "-m", "sh", "-c", 'mount -t tmpfs -o size=150k none "$1" && shift && exec "$@"',
                                 "sh", disk, program, "extract", "-i", path, "-o", disk / "case"],
                                capture_output=True, text=True)
        if "unshare" in result.stderr or "mount" in result.stderr:
            self.skipTest("nothing can be mounted here")
        skip_what_is_left_out(result.stderr)
        self.assertEqual(result.returncode, 4, result.stderr)
        self.assertIn("there is no room in the case to copy the evidence", result.stderr)

    # runs that end early

    def long_log(self):
        """A compressed log that takes a while to unpack."""
        path = self.folder / "long.log.gz"
        if not path.exists():
            with gzip.open(path, "wb", compresslevel=1) as stream:
                for block in range(long_log_lines // 100000):
                    stream.write(b"".join(log_line % (block * 100000 + i) for i in range(100000)))
        return path

    def evidence_in(self, case):
        folder = case / "Source1/Evidence"
        return [file for file in folder.rglob("*") if file.is_file()] if folder.exists() else []

    def begun(self, name, *options):
        """An extraction that has begun to write the log, whose worker was stopped there, and the case."""
        case = self.folder / ("case_" + name)
        process = subprocess.Popen([program, "extract", "-q", "-i", self.long_log(), "-o", case, "--suite-tables",
                                    "--no-container-hash", *options], stderr=subprocess.PIPE, text=True)
        until = time.monotonic() + 60
        while time.monotonic() < until and process.poll() is None:
            written = [file for file in case.glob("Source1/*/taken/*") if file.stat().st_size > 0]
            if written:
                self.workers = children(process)
                self.signal_workers(signal.SIGSTOP)
                return process, case
            time.sleep(0.002)
        errors = process.communicate()[1]
        skip_what_is_left_out(errors)
        self.fail("the run ended before anything was written: " + errors)

    def signal_workers(self, number):
        for worker in self.workers:
            try:
                os.kill(worker, number)
            except ProcessLookupError:
                pass

    def ended(self, process, case, code, goes_on=True):
        if goes_on:
            self.signal_workers(signal.SIGCONT)
        errors = process.communicate(timeout=60)[1]
        self.assertEqual(process.returncode, code, errors)
        self.assertEqual(self.evidence_in(case), [])
        self.assertEqual([str(file) for file in case.rglob("taken")], [])
        self.assertNotEqual(self.record(case)["status"], "done")
        return errors

    def resumed(self, case):
        """What was left undone is done by --resume, from the start."""
        result = run("extract", "-q", "-o", case, "--resume", "--suite-tables", "--no-container-hash")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.record(case)["status"], "done")
        [log] = self.evidence_in(case)
        self.assertEqual(log.stat().st_size, long_log_lines * len(log_line % 0))

    def test_interruption_and_resumption(self):
        process, case = self.begun("interrupted")
        process.send_signal(signal.SIGINT)
        process.send_signal(signal.SIGINT)
        self.ended(process, case, 130)
        self.resumed(case)

    def test_one_interruption_is_enough(self):
        process, case = self.begun("interrupted_once")
        process.send_signal(signal.SIGINT)
        self.ended(process, case, 130)

    def test_crash(self):
        process, case = self.begun("crashed")
        self.signal_workers(signal.SIGSEGV)
        errors = self.ended(process, case, 4)
        self.assertIn("SIGSEGV", errors)
        self.resumed(case)

    def test_killed_program(self):
        process, case = self.begun("killed")
        process.kill()
        self.signal_workers(signal.SIGCONT)
        process.communicate()
        until = time.monotonic() + 60  # its worker notices
        while time.monotonic() < until and any(pathlib.Path(f"/proc/{worker}").exists() for worker in self.workers):
            time.sleep(0.01)
        self.assertEqual(self.evidence_in(case), [])
        self.assertEqual(self.record(case)["status"], "running")
        self.resumed(case)

    def test_time_limit(self):
        process, case = self.begun("timeout", "--timeout", "1")
        errors = self.ended(process, case, 4, goes_on=False)
        self.assertIn("longer than the 1 seconds of --timeout", errors)

    def test_change_during_the_run_is_found(self):
        process, case = self.begun("touched")
        os.utime(self.long_log())
        self.signal_workers(signal.SIGCONT)
        errors = process.communicate(timeout=60)[1]
        self.assertEqual(process.returncode, 5, errors)
        self.assertIn(f"the evidence changed during the run: {self.long_log()}: it was modified", errors)

    def test_memory_limit(self):
        path = self.folder / "memory.tar.xz"
        source = self.tar_of_databases("memory.tar", ["Library/Bluetooth/" + other])
        filters = [{"id": lzma.FILTER_LZMA2, "preset": 6, "dict_size": 1 << 30}]
        path.write_bytes(lzma.compress(source.read_bytes(), filters=filters))
        result = run("extract", "-i", path, "-o", self.folder / "case_memory", "--memory-limit", "400")
        self.assertIn(result.returncode, (3, 4), result.stderr)
        self.assertIn("memory", result.stderr.lower())
        self.assertEqual(self.evidence_in(self.folder / "case_memory"), [])

    def test_others_of_a_case_go_on(self):
        """A source whose container breaks its reader takes down itself alone."""
        broken = self.folder / "broken.tar.xz"
        broken.write_bytes(lzma.compress(b"nothing")[:-9] + b"x")
        whole = self.tar_of_databases("whole.tar", ["Library/Bluetooth/" + other, "Library/Bluetooth/" + paired])
        case = self.folder / "case_others"
        result = run("extract", "-q", "-i", broken, "-i", whole, "-o", case, "--jobs", "2")
        self.assertEqual(result.returncode, 4, result.stderr)
        self.assertIn("broken.tar.xz", result.stderr)
        records = [json.loads(path.read_text()) for path in sorted(case.glob("Source*/source.json"))]
        self.assertEqual([record["path"] for record in records if record["status"] == "done"], [str(whole)])

    def test_one_source_of_several_containers(self):
        sources = self.folder / "only.json"
        whole = self.tar_of_databases("only.tar", ["Library/Bluetooth/" + other, "Library/Bluetooth/" + paired])
        sources.write_text(json.dumps({"sources": [{"path": str(self.macos)}, {"path": str(whole)}]}))
        case = self.folder / "case_only"
        for number in ("2", "1"):
            result = run("extract", "-q", "--sources", sources, "-o", case, "--only", number)
            self.assertEqual(result.returncode, 0, result.stderr)
        result = run("collect", "-q", case)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(run("verify", case, "--containers").returncode, 0)

    # what is told, and what is left alone

    def test_progress(self):
        path = self.folder / "progress.tar.gz"
        with tarfile.open(path, "w:gz") as archive:
            archive.add(self.macos, ".")
        said, code = events("extract", "-q", "-i", path, "-o", self.folder / "case_progress")
        self.assertEqual(code, 0)
        size = path.stat().st_size
        read = sum(event["bytes"] for event in said if event["event"] == "read" and event["source"] == 1)
        self.assertEqual(read, size)
        hashed = sum(event["bytes"] for event in said if event["event"] == "hashed" and event["source"] == 1)
        evidence = sum(file.stat().st_size for file in self.evidence_in(self.folder / "case_progress"))
        self.assertEqual(hashed, size + 2 * evidence)

    def ewf_image(self, name):
        raw = self.folder / (name + ".dd")
        with open(raw, "wb") as image:
            image.truncate(16 << 20)
        tool("mke2fs", "-q", "-t", "ext4", "-d", self.macos, raw)
        with open(raw, "rb") as stream:
            tool("ewfacquirestream", "-q", "-d", "sha1", "-t", self.folder / name, stdin=stream)
        return self.folder / (name + ".E01")

    def test_stored_hashes_of_an_image_are_made_anew(self):
        needs("mke2fs", "ewfacquirestream")
        path = self.ewf_image("hashes")
        case = self.extract(path, "hashes")
        result = run("verify", case, "--containers")
        self.assertEqual(result.returncode, 0)
        for name in ("MD5", "SHA-1"):
            self.assertIn(f"what it holds has the {name} that stands in it", result.stderr)
        self.assertNotIn("MD5", run("verify", case).stderr)

        # An image whose own hash is not that of its content, and was not when the case was made.
        content = bytearray(path.read_bytes())
        md5 = bytes.fromhex(self.record(case)["container"]["stored_hashes"]["md5"])
        for section, size in ((b"digest", 76), (b"hash", 32)):  # each ends with a sum
            place = content.index(section + bytes(16 - len(section))) + 76
            self.assertEqual(content[place:place + 16], md5)
            content[place:place + 16] = bytes(16)
            content[place + size:place + size + 4] = zlib.adler32(content[place:place + size]).to_bytes(4, "little")
        path.write_bytes(content)
        case = self.extract(path, "wrong_hashes")
        result = run("verify", case, "--containers")
        self.assertEqual(result.returncode, 5, result.stderr)
        self.assertIn(f"what it holds has the MD5 {md5.hex()}, and not {'0' * 32}", result.stderr)

    def test_stored_hashes_are_made_where_everything_is_read(self):
        needs("mke2fs", "ewfacquirestream", "strace")
        path = self.ewf_image("confined")
        case = self.extract(path, "confined")
        trace = self.folder / "confined.trace"
        result = subprocess.run(["strace", "-f", "-o", trace, "-e", "trace=execve,seccomp,landlock_restrict_self,prlimit64,setrlimit,open,openat",
                                 program, "verify", case, "--containers"], capture_output=True, text=True)
        if "ptrace" in result.stderr:
            self.skipTest("tracing is not permitted here")
        self.assertEqual(result.returncode, 0, result.stderr)
        calls = trace.read_text().splitlines()
        self.assertEqual(sum("execve(" in call for call in calls), 1, "another program was started")
        reads = [place for place, call in enumerate(calls) if "confined.E01" in call]
        wanted = ["RLIMIT_AS, {rlim_cur=2097152*1024"]  # what --memory-limit is without being given
        wanted += [name for name in ("seccomp(SECCOMP_SET_MODE_FILTER", "landlock_restrict_self(")
                   if self.record(case)["confinement"]["seccomp" if "seccomp" in name else "landlock"]]
        for name in wanted:
            places = [place for place, call in enumerate(calls) if name in call]
            self.assertTrue(places and places[0] < reads[0], name)

    def test_changed_container_is_found(self):
        path = self.tar_of_databases("changed.tar", ["Library/Bluetooth/" + other])
        case = self.folder / "case_changed"
        run("extract", "-q", "-i", path, "-o", case)
        state = path.stat()
        content = bytearray(path.read_bytes())
        content[-1] ^= 1
        path.write_bytes(content)
        os.utime(path, ns=(state.st_atime_ns, state.st_mtime_ns))
        self.assertNotEqual(run("verify", case, "--containers").returncode, run("verify", case).returncode)
        self.assertEqual(run("verify", case, "--containers").returncode, 5)

    def test_longer_container_is_a_changed_file(self):
        path = self.tar_of_databases("longer.tar", ["Library/Bluetooth/" + other])
        case = self.folder / "case_longer"
        run("extract", "-q", "-i", path, "-o", case)
        for content, code, outcome in ((b"", 0, "unchanged"), (b"x", 5, "changed")):
            state = path.stat()
            path.write_bytes(path.read_bytes() + content)
            os.utime(path, ns=(state.st_atime_ns, state.st_mtime_ns))
            result = run("verify", case, "--json")
            self.assertEqual(result.returncode, code, result.stderr)
            compared = {file["path"]: file["outcome"] for file in json.loads(result.stdout)["files"]}
            self.assertEqual(compared[str(path)], outcome)

    def test_moved_container_is_named(self):
        path = self.tar_of_databases("here.tar", ["Library/Bluetooth/" + other, "Library/Bluetooth/" + paired])
        case = self.extract(path, "moved")
        moved = path.rename(self.folder / "there.tar")
        for options, code in (([], 3), (["--evidence", f"1={moved}"], 0), (["--evidence", f"1={moved}", "--containers"], 0)):
            result = run("verify", case, *options)
            self.assertEqual(result.returncode, code, result.stderr)
        moved.write_bytes(moved.read_bytes()[:-1] + b"x")
        self.assertEqual(run("verify", case, "--evidence", f"1={moved}", "--containers").returncode, 5)

    def test_access_times_stay(self):
        needs("mke2fs", "ewfacquirestream", "qemu-img")
        ext = self.folder / "times.dd"
        with open(ext, "wb") as image:
            image.truncate(16 << 20)
        tool("mke2fs", "-q", "-t", "ext4", "-d", self.macos, ext)
        with open(ext, "rb") as stream:
            tool("ewfacquirestream", "-q", "-t", self.folder / "times", stdin=stream)
        images = [ext, self.folder / "times.E01"]
        for suffix, format in (("vmdk", "vmdk"), ("vhd", "vpc")):
            images.append(self.folder / f"times.{suffix}")
            tool("qemu-img", "convert", "-O", format, ext, images[-1])
        archive = self.folder / "times.tar"
        with tarfile.open(archive, "w") as stream:
            stream.add(self.macos, ".")
        link = self.folder / "times_link"
        link.symlink_to(archive)
        control = self.folder / "times_control"
        control.write_bytes(b"x")
        for path in images + [archive, control]:
            os.utime(path, (1_000_000_000, 1_100_000_000))
        control.read_bytes()
        if control.stat().st_atime == 1_000_000_000:
            self.skipTest("access times are never written here")
        for path in images + [archive, link]:
            with self.subTest(path.name):
                self.extract(path, "times_" + path.name)
                run("inspect", path)
                result = run("verify", self.folder / ("case_times_" + path.name), "--containers")
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(path.stat().st_atime, 1_000_000_000)

    def test_inspection_writes_nothing(self):
        needs("strace")
        folder = self.folder / "backup"
        folder.mkdir()
        index = sqlite3.connect(folder / "Manifest.db")
        index.execute("PRAGMA journal_mode=WAL")
        index.execute("CREATE TABLE Files (fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags INTEGER, "
                      "file BLOB)")
        index.execute("INSERT INTO Files VALUES (?, 'SysSharedContainerDomain-systemgroup.com.apple.bluetooth', ?, 1, "
                      "NULL)", ("ab" * 20, "Library/Database/" + other))
        index.commit()
        index.close()
        (folder / "ab").mkdir()
        shutil.copy(self.macos / "Library/Bluetooth" / other, folder / "ab" / ("ab" * 20))
        (folder / "Manifest.plist").write_text('<?xml version="1.0"?><plist version="1.0"><dict/></plist>')
        packed = self.folder / "backup.tar.xz"
        with tarfile.open(packed, "w:xz") as archive:
            archive.add(folder, "0")
        archive = self.tar_of_databases("looked.tar", ["Library/Bluetooth/" + other])
        calls = self.folder / "calls"
        result = subprocess.run(["strace", "-f", "-qq", "-o", calls, "-e",
                                 "trace=openat,open,creat,mkdir,mkdirat,rename,renameat,renameat2,unlink,unlinkat,"
                                 "symlink,link,truncate,memfd_create", program, "inspect", folder, packed, archive,
                                 self.macos, self.log], capture_output=True, text=True)
        if "ptrace" in result.stderr:
            self.skipTest("nothing can be traced here")
        skip_what_is_left_out(result.stderr)
        self.assertEqual(result.returncode, 0, result.stderr)
        writing = [line for line in calls.read_text().splitlines()
                   if not any(harmless in line for harmless in ("O_RDONLY", "O_PATH", '"/dev/null', "+++", "---",
                                                                "resumed>"))]
        self.assertEqual(writing, [])
        self.assertEqual(result.stdout.count("iOS"), 3, result.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
