# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Makes calls of the system fail in every command, one a run, and judges what the program makes of it.

Without --sample every call fails once with each error (of the many allocations a part). Ends with 1 if a fault broke a
promise: 0 only with an undisturbed result, else a message; evidence untouched; no crash and no hang; what is run again
gives the undisturbed result.
"""

import argparse
import concurrent.futures
import errno
import json
import os
import queue
import random
import re
import shutil
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import time
import zipfile

from small_evidence import make_evidence, state_of

CALLS = "write pwrite fsync open read pread lseek mmap rename unlink mkdir close stat readdir fork malloc".split()
PROCESSES = 8

# What each call may lawfully give, by its manual page; with a "+": from there on. "fork" stands for threads, too.
EFFECTS = {
    "write": [errno.ENOSPC, errno.EIO, errno.EINTR, "short"],
    "pwrite": [errno.ENOSPC, errno.EIO, "short"],
    "fsync": [errno.EIO, errno.ENOSPC],
    "open": [errno.EIO, errno.EACCES, errno.EMFILE],
    "read": [errno.EIO, errno.EINTR, "short", "zero", f"{errno.EIO}+"],
    "pread": [errno.EIO, "short", f"{errno.EIO}+"],
    "lseek": [errno.EIO],
    "mmap": [errno.ENOMEM],
    "rename": [errno.EIO, errno.ENOSPC],
    "unlink": [errno.EIO],
    "mkdir": [errno.ENOSPC, errno.EIO],
    "close": [errno.EIO],
    "stat": [errno.EIO, errno.EACCES],
    "readdir": [errno.EIO],
    "fork": [errno.EAGAIN],
    "malloc": [errno.ENOMEM],
}
MOST_ALLOCATIONS = 300  # of a process, in a full run
TIME_LIMIT = 60  # seconds; an undisturbed run takes a fraction of one

# Members that no two runs have alike.
VOLATILE = {"started", "finished", "changed", "modified", "options", "tool", "system", "working_folder", "size", "sha256",
            "manifest_sha256", "verified"}


class Fault:
    """The number-th call of a process, and what becomes of it."""

    def __init__(self, command, process, call, number, effect):
        self.command = command
        self.process = process
        self.call = call
        self.number = number
        self.effect = effect

    def __str__(self):
        effect = errno.errorcode.get(self.effect, self.effect)
        return f"{self.command}: {self.call} {self.number} of process {self.process}: {effect}"


class Run:
    """What a run of the program left behind."""

    def __init__(self, code, output, errors, is_met, descriptor):
        self.code = code  # None: it hung; negative: a signal
        self.output = output
        self.errors = errors
        self.is_met = is_met
        self.descriptor = descriptor


def without_volatile(value):
    if isinstance(value, dict):
        return {name: without_volatile(member) for name, member in value.items() if name not in VOLATILE}
    if isinstance(value, list):
        return [without_volatile(member) for member in value]
    return value


def dump_of(path):
    """A file that is none in the end is told by its error."""
    try:
        database = sqlite3.connect(f"file:{path}?immutable=1", uri=True)
        try:
            return list(database.iterdump())
        finally:
            database.close()
    except sqlite3.Error as error:
        return [str(error)]


def members_of(path):
    """What a workbook holds; the archive around it has times of its own."""
    try:
        with zipfile.ZipFile(path) as archive:
            return {name: archive.read(name) for name in archive.namelist()}
    except zipfile.BadZipFile as error:
        return str(error)


def content_of(path):
    """What two undisturbed runs have alike of a file."""
    if path.endswith((".sqlite", ".db")):
        return dump_of(path)
    if path.endswith(".xlsx"):
        return members_of(path)
    with open(path, "rb") as file:
        content = file.read()
    if path.endswith("plugin.log"):
        return re.sub(rb"(?m)^\[[^]]*\]", b"", content)
    if path.endswith("manifest.json.sha256"):
        return bool(re.fullmatch(rb"[0-9a-f]{64}  manifest.json\n", content))
    if path.endswith(".json"):
        try:
            return without_volatile(json.loads(content))
        except ValueError:
            return content
    return re.sub(rb"[0-9a-f]{64}|[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}Z", b"", content)


def case_state(folder):
    """Every file of a case, by its name."""
    state = {}
    for place, _, names in os.walk(folder):
        for name in names:
            if name == ".lock":
                continue  # it names its last holder
            path = os.path.join(place, name)
            state[os.path.relpath(path, folder)] = content_of(path)
        if not names and place != folder:
            state[os.path.relpath(place, folder) + "/"] = None
    return state


def differences(state, expected):
    names = sorted(name for name in set(state) | set(expected) if state.get(name, 0) != expected.get(name, 0))
    return ", ".join(names)


class Command:
    """A command with the case that it needs, and how it is put right after a fault."""

    def __init__(self, name, needs, arguments, again):
        self.name = name
        self.needs = needs  # None: no case; else the name of a prepared one
        self.arguments = arguments
        self.again = again


SOURCES = ["-i", "evidence/mac", "-i", "evidence/log.txt", "-o", "case", "--jobs", "1"]
FORMATS = [part for name in ("html", "csv", "jsonl", "timeline", "sqlite", "xlsx") for part in ("-f", name)
           if name != "xlsx" or "BLUETOOTH_LOGS_WITHOUT_WORKBOOKS" not in os.environ]
COMMANDS = [
    Command("extract", None, ["extract", *SOURCES], ["extract", "--resume", *SOURCES]),
    Command("resume", "half", ["extract", "--resume", *SOURCES], ["extract", "--resume", *SOURCES]),
    Command("report", "whole", ["report", "case", "--brief", *FORMATS],
            ["report", "case", "--brief", "--force", *FORMATS]),
    Command("collect", "whole", ["collect", "case"], ["collect", "case"]),
    Command("show", "whole", ["show", "case"], ["show", "case"]),
    Command("verify", "whole", ["verify", "case"], ["verify", "case"]),
]


def stopped_process_of(session):
    for name in os.listdir("/proc"):
        try:
            with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                state, _, _, of_session = file.read().rpartition(")")[2].split()[:4]
        except (OSError, ValueError):
            continue
        if state == "T" and of_session == str(session):
            return int(name)
    return None


class Place:
    """A folder of its own, with evidence, prepared cases and what undisturbed runs give."""

    def __init__(self, program, shim, folder):
        self.program = program
        self.shim = shim
        self.folder = folder
        os.makedirs(folder)
        make_evidence(self.path("evidence"))
        self.counts_file = self.path("counts")
        self.expected = {}
        self.counts = {}
        self.run_undisturbed(["extract", *SOURCES])
        os.rename(self.path("case"), self.path("whole"))
        shutil.copytree(self.path("whole"), self.path("half"))
        shutil.rmtree(self.path("half", "Source2"))
        os.remove(self.path("half", "manifest.json"))
        os.remove(self.path("half", "manifest.json.sha256"))
        for command in COMMANDS:
            self.prepare(command)
            run = self.run(command.arguments)
            self.counts[command.name] = self.read_counts()[2]
            self.expected[command.name] = (run, case_state(self.path("case")))
            if run.code != 0:
                sys.exit(f"{command.name}, undisturbed: {run.code}\n{run.errors}")
        self.evidence = state_of(self.path("evidence"))

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def prepare(self, command):
        shutil.rmtree(self.path("case"), ignore_errors=True)
        if command.needs:
            shutil.copytree(self.path(command.needs), self.path("case"))

    def read_counts(self):
        with open(self.counts_file, "rb") as file:
            is_met, descriptor, *numbers = struct.unpack(f"Qq{PROCESSES * len(CALLS)}Q", file.read())
        counts = {(process, call): numbers[process * len(CALLS) + index]
                  for process in range(PROCESSES) for index, call in enumerate(CALLS)}
        return bool(is_met), descriptor, counts

    def run(self, arguments, fault=None, meanwhile=None):
        """With @p meanwhile, which is called when the process has stopped at the fault."""
        with open(self.counts_file, "wb") as file:
            file.write(bytes(16 + 8 * PROCESSES * len(CALLS)))
        environment = dict(os.environ, LD_PRELOAD=self.shim, BLUETOOTH_LOGS_FAULT_COUNTS=self.counts_file,
                           QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", TZ="UTC")
        if fault:
            environment["BLUETOOTH_LOGS_FAULT"] = f"{fault.process} {fault.call} {fault.number} {fault.effect}"
        process = subprocess.Popen([self.program, *arguments], cwd=self.folder, env=environment, text=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   errors="replace", start_new_session=True)
        if meanwhile:
            self.act_when_stopped(process, meanwhile)
        try:
            output, errors = process.communicate(timeout=TIME_LIMIT)
            code = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, errors = process.communicate()
            code = None
        is_met, descriptor, _ = self.read_counts()
        return Run(code, output, errors, is_met, descriptor)

    def act_when_stopped(self, process, meanwhile):
        stopped = None
        while stopped is None and process.poll() is None:
            time.sleep(0.002)
            stopped = stopped_process_of(process.pid) if self.read_counts()[0] else None
        if stopped:
            try:
                meanwhile()
            finally:
                os.kill(stopped, signal.SIGCONT)

    def run_undisturbed(self, arguments):
        run = self.run(arguments)
        if run.code != 0:
            sys.exit(f"{' '.join(arguments)}, undisturbed: {run.code}\n{run.errors}")


def plain_output(text):
    return re.sub(r"[0-9a-f]{64}", "", text)


def judge(place, command, fault, run):
    """What the run broke of the promises; empty: nothing."""
    expected_run, expected_state = place.expected[command.name]
    if run.code is None:
        return "it hung"
    is_killed = fault.effect == "kill" and fault.process == 0
    if run.code < 0 and not is_killed:
        return f"it crashed with signal {-run.code}"
    if state_of(place.path("evidence")) != place.evidence:
        return "the evidence was touched"
    if run.code == 0:
        if re.search("^error: ", run.errors, re.MULTILINE):
            return "an error is told, and the code is 0"
        difference = differences(case_state(place.path("case")), expected_state)
        if difference:
            return f"the code is 0, and the case is another: {difference}"
        if plain_output(run.output) != plain_output(expected_run.output):
            return f"the code is 0, and the output is another: {run.output}"
    elif not run.errors and not is_killed and not (fault.call == "write" and run.descriptor == 2):
        return f"the code is {run.code}, and nothing is said"
    again = place.run(command.again)
    if again.code != 0:
        return f"the code was {run.code}, and the next run ends with {again.code}: {again.errors}"
    difference = differences(case_state(place.path("case")), expected_state)
    return f"the code was {run.code}, and the next run leaves another case: {difference}" if difference else ""


def numbers_of(call, count):
    if call != "malloc" or count <= MOST_ALLOCATIONS:
        return range(1, count + 1)
    return sorted({1 + number * count // MOST_ALLOCATIONS for number in range(MOST_ALLOCATIONS)})


def groups_of(place, options):
    """What can fail, by command, process and call: lists of faults."""
    groups = []
    for command in COMMANDS:
        if options.commands and command.name not in options.commands.split(","):
            continue
        for (process, call), count in place.counts[command.name].items():
            if count == 0 or (options.calls and call not in options.calls.split(",")):
                continue
            effects = ["kill"] if options.kill else EFFECTS[call]
            groups.append([Fault(command, process, call, number, effect)
                           for number in numbers_of(call, count) for effect in effects])
    for group in groups:
        for fault in group:
            fault.command = fault.command.name
    return groups


def chosen(groups, options):
    """All of them, or a sample in which each group has its turn."""
    if not options.sample:
        return [fault for group in groups for fault in group]
    pick = random.Random(options.seed)
    return [pick.choice(pick.choice(groups)) for _ in range(options.sample)]


def attack(places, fault):
    place = places.get()
    try:
        command = next(command for command in COMMANDS if command.name == fault.command)
        place.prepare(command)
        run = place.run(command.arguments, fault)
        return fault, run, judge(place, command, fault, run)
    finally:
        places.put(place)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("shim")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--commands")
    parser.add_argument("--calls")
    parser.add_argument("--kill", action="store_true")
    parser.add_argument("--one", help="COMMAND PROCESS CALL NUMBER EFFECT, and show what is said")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--json", help="file for the figures")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory() as folder:
        places = queue.Queue()
        all_places = []
        for number in range(1 if options.one else options.jobs):
            all_places.append(Place(os.path.abspath(options.program), os.path.abspath(options.shim),
                                    os.path.join(os.path.realpath(folder), f"place{number}")))
            places.put(all_places[-1])
        if options.one:
            command, process, call, number, effect = options.one.split()
            effect = effect if effect in ("short", "zero", "kill") or effect.endswith("+") else getattr(errno, effect)
            fault = Fault(command, int(process), call, int(number), effect)
            _, run, problem = attack(places, fault)
            print(f"{fault}\ncode {run.code}, met {run.is_met}\n{run.output}{run.errors}\n{problem or 'held'}")
            return
        faults = chosen(groups_of(all_places[0], options), options)
        results = {}
        broken = 0
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            for fault, run, problem in pool.map(lambda fault: attack(places, fault), faults):
                entry = results.setdefault(fault.command, {"tried": 0, "met": 0, "held": 0})
                entry["tried"] += 1
                entry["met"] += run.is_met
                entry["held"] += not problem
                if problem:
                    broken += 1
                    print(f"{fault}: {problem}", flush=True)
        for name, entry in results.items():
            print(f"{name}: {entry['tried']} tried, {entry['met']} met, {entry['held']} held")
        if options.json:
            with open(options.json, "w", encoding="utf-8") as file:
                json.dump(results, file, indent=1)
        sys.exit(1 if broken else 0)


if __name__ == "__main__":
    main()
