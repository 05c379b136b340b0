# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Attacks the program by what it reads and by what it runs in: case files and evidence that somebody altered, full disks,
limits of the system. Which of each kind are tried follows from the seed. Ends with 1 if a promise was broken.
"""

import argparse
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile

from test_faults import COMMANDS, SOURCES, Fault, Place, judge
from small_evidence import state_of

READERS = [command for command in COMMANDS if command.name in ("report", "collect", "show", "verify")]
TEXT_PARTS = [b"2147483647", b"-1", b"1e999", b"null", b"[]", b"{}", b'"../../evidence/log.txt"', b'"\\ud800"', b"[" * 5000,
              b'"running"', b'"done"', b"\xff\xfe", b"\x00"]


def altered(content, pick):
    """Bytes cut, repeated, exchanged, or replaced by what readers stumble over."""
    place = pick.randrange(len(content) + 1)
    end = min(len(content), place + pick.choice([1, 2, 4, 16, 256]))
    way = pick.randrange(5)
    if way == 0:
        return content[:place]
    if way == 1:
        return content[:place] + content[end:]
    if way == 2:
        return content[:place] + bytes(pick.randrange(256) for _ in range(end - place)) + content[end:]
    if way == 3:
        return content[:end] + content[place:]
    return content[:place] + pick.choice(TEXT_PARTS) + content[end:]


def alter_file(path, pick):
    with open(path, "rb") as file:
        content = file.read()
    changed = altered(content, pick)
    with open(path, "wb") as file:
        file.write(changed)
    return changed != content


def exchange_file(place, path, pick):
    """Something else of the same name."""
    os.remove(path)
    way = pick.randrange(5)
    if way == 0:
        os.mkfifo(path)
    elif way == 1:
        os.symlink(place.path("evidence", "log.txt"), path)
    elif way == 2:
        os.mkdir(path)
    elif way == 3:
        with open(path, "wb") as file:
            file.truncate(1 << 36)
    return True


def files_below(folder):
    return sorted(os.path.join(place, name) for place, _, names in os.walk(folder) for name in names if name != ".lock")


def objection(place, run, evidence, may_be_done=True):
    """What no attack may bring about."""
    if run.code is None:
        return "it hung"
    if run.code < 0:
        return f"it crashed with signal {-run.code}"
    if state_of(place.path("evidence")) != evidence:
        return "the evidence was touched"
    if run.code != 0 and not run.errors:
        return f"the code is {run.code}, and nothing is said"
    if run.code == 0 and not may_be_done:
        return "the code is 0"
    return ""


def attack_case_files(place, pick):
    command = pick.choice(READERS)
    place.prepare(command)
    path = pick.choice(files_below(place.path("case")))
    is_exchanged = pick.randrange(4) == 0
    is_changed = exchange_file(place, path, pick) if is_exchanged else alter_file(path, pick)
    run = place.run(command.arguments)
    what = f"{command.name}: {os.path.relpath(path, place.folder)} {'exchanged' if is_exchanged else 'altered'}"
    return what, run, objection(place, run, place.evidence, command.name != "verify" or not is_changed)


def attack_evidence(place, pick):
    shutil.rmtree(place.path("case"), ignore_errors=True)
    shutil.rmtree(place.path("evidence"))
    shutil.copytree(place.path("kept"), place.path("evidence"))
    path = pick.choice(files_below(place.path("evidence")))
    alter_file(path, pick)
    evidence = state_of(place.path("evidence"))
    run = place.run(["extract", *SOURCES])
    return f"extract: {os.path.relpath(path, place.folder)} altered", run, objection(place, run, evidence)


def attack_full_disk(place, pick):
    """The case lies on a file system of its own, which the system forgets when the command has ended."""
    size = pick.randrange(4, 600)
    shutil.rmtree(place.path("case"), ignore_errors=True)
    os.mkdir(place.path("case"))
    script = (f"mount -t tmpfs -o size={size}k none case || exit 99; \"$0\" \"$@\"; code=$?; "
              "[ $code = 0 ] || exit $code; \"$0\" -q verify case")
    arguments = ["extract", *SOURCES]
    if pick.randrange(2) == 0:
        script = script.replace("\"$0\" \"$@\"", "cp -r whole/. case/ && \"$0\" \"$@\"")
        arguments = pick.choice([command for command in READERS if command.name in ("report", "collect")]).arguments
    program, place.program = place.program, "/usr/bin/unshare"
    try:
        run = place.run(["--mount", "sh", "-c", script, program, *arguments])
    finally:
        place.program = program
    return f"{arguments[0]}: a disk of {size} KiB", run, objection(place, run, place.evidence)


# The shell's option, and which values are tried.
LIMITS = {
    "blocks of a file": ("-f", 0, 400),
    "open files": ("-n", 3, 40),
    "KiB of address space": ("-v", 40000, 700000),
    "KiB of stack": ("-s", 256, 1024),
}


def attack_limits(place, pick):
    command = pick.choice(COMMANDS)
    name = pick.choice(sorted(LIMITS))
    option, least, most = LIMITS[name]
    value = pick.randrange(least, most)
    place.prepare(command)
    program, shim = place.program, place.shim
    place.program, place.shim = "/bin/sh", ""  # what fails before main is not the program's
    try:
        run = place.run(["-c", f'ulimit {option} {value}; exec "$0" "$@"', program, *command.arguments])
    finally:
        place.program, place.shim = program, shim
    what = f"{command.name}: {name} {value}"
    if run.code == 127 or "error while loading shared libraries" in run.errors:
        return what, run, ""  # the system could not start it
    return what, run, judge(place, command, Fault(command.name, 0, "limit", 0, name), run)


ATTACKS = {
    "case files": attack_case_files,
    "evidence": attack_evidence,
    "full disk": attack_full_disk,
    "limits": attack_limits,
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("shim")
    parser.add_argument("--attacks", default=",".join(ATTACKS))
    parser.add_argument("--sample", type=int, default=20, help="of each kind")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--json", help="file for the figures")
    options = parser.parse_args()

    results = {}
    with tempfile.TemporaryDirectory() as folder:
        place = Place(os.path.abspath(options.program), os.path.abspath(options.shim),
                      os.path.join(os.path.realpath(folder), "place"))
        shutil.copytree(place.path("evidence"), place.path("kept"))
        can_mount = subprocess.run(["unshare", "--mount", "true"], capture_output=True, check=False).returncode == 0
        for name in options.attacks.split(","):
            if name == "full disk" and not can_mount:
                print("full disk: skipped, no file system can be mounted here")
                continue
            pick = random.Random(options.seed)
            entry = results.setdefault(name, {"tried": 0, "met": 0, "held": 0})
            for _ in range(options.sample):
                what, run, problem = ATTACKS[name](place, pick)
                entry["tried"] += 1
                entry["met"] += run.code != 0
                entry["held"] += not problem
                if problem:
                    print(f"{what}: {problem}", flush=True)
            if name == "evidence":
                shutil.rmtree(place.path("evidence"))
                shutil.copytree(place.path("kept"), place.path("evidence"))
                place.evidence = state_of(place.path("evidence"))
            print(f"{name}: {entry['tried']} tried, {entry['met']} told by the code, {entry['held']} held", flush=True)
    if options.json:
        with open(options.json, "w", encoding="utf-8") as file:
            json.dump(results, file, indent=1)
    sys.exit(0 if all(entry["held"] == entry["tried"] for entry in results.values()) else 1)


if __name__ == "__main__":
    main()
