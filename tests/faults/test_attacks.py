# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Attacks the program by what it reads and by what it runs in: case files and evidence that somebody altered, full disks,
limits of the system, and what changes under its hands. Which of each kind are tried follows from the seed. Ends with 1 if a promise was broken.
"""

import argparse
import json
import os
import random
import shutil
import sqlite3
import subprocess
import sys
import tempfile

from test_faults import COMMANDS, SOURCES, Fault, Place, case_state, judge
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
    renew_evidence(place)
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


# What anybody may have made of a table {t} with a column {c}.
WIDE = ", ".join(f"c{number}" for number in range(1999))
HOSTILE_SQL = [
    "DROP TABLE {t}",
    "DELETE FROM {t}",
    "INSERT INTO {t} SELECT * FROM {t}",
    "ALTER TABLE {t} RENAME TO other; CREATE VIEW {t} AS SELECT * FROM other",
    "ALTER TABLE {t} RENAME COLUMN {c} TO other",
    "CREATE TRIGGER g AFTER INSERT ON {t} BEGIN DELETE FROM {t}; END",
    "DROP TABLE {t}; CREATE VIRTUAL TABLE {t} USING fts5(uuid, {c})",
    "DROP TABLE {t}; CREATE TABLE {t}(uuid PRIMARY KEY, {c}) WITHOUT ROWID; INSERT INTO {t} VALUES(1, 2)",
    "DROP TABLE {t}; CREATE TABLE {t}(" + WIDE + ", {c}); INSERT INTO {t} DEFAULT VALUES",
    "DROP TABLE {t}; CREATE VIEW {t} AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) SELECT i AS {c} FROM n",
    "ALTER TABLE {t} RENAME COLUMN {c} TO other; ALTER TABLE {t} ADD COLUMN {c} AS (hex(zeroblob(300000000)))",
    "ALTER TABLE {t} RENAME COLUMN {c} TO other; ALTER TABLE {t} ADD COLUMN {c} AS (abs(rowid - 9223372036854775807 - 2))",
    "ALTER TABLE {t} ADD COLUMN more AS (zeroblob(300000000))",
    "UPDATE {t} SET {c} = zeroblob(3000000)",
    "UPDATE {t} SET {c} = replace(hex(zeroblob(300000)), '00', '<b>')",
    "UPDATE {t} SET {c} = x'ff00fe'",
    "UPDATE {t} SET {c} = CAST(x'610062' AS TEXT)",
    "UPDATE {t} SET {c} = 9e999",
    "UPDATE {t} SET {c} = -9223372036854775807 - 1",
    "UPDATE {t} SET {c} = char(0x202e, 0x1b) || '[2J</script>'",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = 0",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = 1",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = 2147483647",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql = 'x'",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql = 'CREATE TABLE {t}(a CHECK(1/0), a)'",
    "PRAGMA writable_schema=ON; UPDATE sqlite_master SET type = 'view'",
    "CREATE INDEX i ON {t}({c}); PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = 2 WHERE name = 'i'",
    "PRAGMA page_size=65536; VACUUM",
    "PRAGMA page_size=512; VACUUM",
    "PRAGMA journal_mode=WAL; DELETE FROM {t}",
    "PRAGMA user_version=-1; PRAGMA application_id=-1",
]


def damage(path, pick):
    """Bytes of the header, of the schema or of any page are others."""
    with open(path, "r+b") as file:
        size = os.path.getsize(path)
        for _ in range(pick.randrange(1, 9)):
            file.seek(pick.randrange(min(size, pick.choice([100, 4096, size]))))
            file.write(bytes([pick.choice([0, 1, 0x7f, 0x80, 0xff, pick.randrange(256)])]))


def make_hostile(path, table, column, pick):
    if pick.randrange(3) == 0:
        damage(path, pick)
        return "damaged"
    statements = pick.choice(HOSTILE_SQL).format(t=table, c=column)
    database = sqlite3.connect(path, isolation_level=None)
    try:
        database.executescript(statements)
    except sqlite3.Error:
        pass  # half of it is hostile, too
    database.close()
    return statements[:60]


TIGHT = ["--memory-limit", "256", "--timeout", "20"]
RESULT = os.path.join("Source1", "Artifacts_Result", "Bluetooth_Logs", "Bluetooth_Logs.sqlite")
START = os.path.join("mac", "Library", "Bluetooth", "com.apple.MobileBluetooth.ledevices.")


def attack_databases(place, pick):
    """A result database of a case, or a database of the evidence."""
    if pick.randrange(2) == 0:
        command = pick.choice(READERS)
        place.prepare(command)
        path = place.path("case", RESULT)
        state = content_of_bytes(path)
        what = make_hostile(path, *pick.choice([("devices", "device_name"), ("paired_devices", "address")]), pick)
        run = place.run(command.arguments + TIGHT)
        may_be_done = command.name != "verify" or content_of_bytes(path) == state
        return f"{command.name}: {what}", run, objection(place, run, place.evidence, may_be_done)
    renew_evidence(place)
    name, table = pick.choice([("other.db", "OtherDevices"), ("paired.db", "PairedDevices")])
    what = make_hostile(place.path("evidence", START + name), table, "Name", pick)
    evidence = state_of(place.path("evidence"))
    shutil.rmtree(place.path("case"), ignore_errors=True)
    run = place.run(["extract", *SOURCES, *TIGHT])
    problem = objection(place, run, evidence)
    renew_evidence(place)
    place.evidence = state_of(place.path("evidence"))
    return f"extract: {what}", run, problem


def content_of_bytes(path):
    with open(path, "rb") as file:
        return file.read()


def renew_evidence(place):
    shutil.rmtree(place.path("evidence"))
    shutil.copytree(place.path("kept"), place.path("evidence"))


def take_away(path):
    if os.path.isdir(path) and not os.path.islink(path):
        shutil.rmtree(path)
    elif os.path.lexists(path):
        os.remove(path)


# What is exchanged for a link to the evidence while a command writes.
PLANTED = [
    ("Source1", "mac"), ("Source1/plugin.log", "log.txt"), ("Source1/source.json", "log.txt"),
    ("Source1/source.json.new", "log.txt"), ("Source1/Artifacts_Result", "mac"), ("Source1/Evidence", "mac"),
    ("Source1/Artifacts_Result/Bluetooth_Logs", "mac/Library/Bluetooth"),
    ("Source1/Artifacts_Result/Bluetooth_Logs/Logs", "mac/Library/Bluetooth"),
    (RESULT, START + "other.db"), (RESULT + "-journal", "log.txt"),
    ("Source1/Evidence/Library/Bluetooth", "mac/Library/Bluetooth"), ("Source1/tmp", "mac/Library"),
    ("Source1/host_devices.jsonl.new", "log.txt"), ("Source1/wal_changes.jsonl.new", "log.txt"),
    ("Source2/ios_lines.jsonl.new", "log.txt"), ("manifest.json", "log.txt"), ("manifest.json.new", "log.txt"),
    ("Report", "mac"), ("Report/report.sqlite.new", START + "other.db"), ("Report/devices.csv.new", "log.txt"),
]


def plant(place, name, target):
    path = place.path("case", name)
    if os.path.isdir(os.path.dirname(path)):
        take_away(path)
        os.symlink(place.path("evidence", target), path)


def moment_of(place, command, pick):
    """Before one of the calls that the command makes."""
    groups = [(process, call) for (process, call), count in place.counts[command].items() if count and call != "malloc"]
    process, call = pick.choice(groups)
    return Fault(command, process, call, pick.randrange(1, place.counts[command][process, call] + 1), "stop")


def attack_by_link(place, pick):
    wanted = pick.choice(["extract", "report", "collect"])
    command = next(command for command in COMMANDS if command.name == wanted)
    moment = moment_of(place, command.name, pick)
    name, target = pick.choice(PLANTED)
    place.prepare(command)
    run = place.run(command.arguments, moment, lambda: plant(place, name, target))
    return f"{moment}: a link to {target} at {name}", run, objection(place, run, place.evidence)


def exchange_evidence(place, name):
    path = place.path("evidence", name)
    other = place.path("exchanged")
    shutil.copyfile(place.path("other", name), other)
    os.rename(other, path)


def attack_by_exchange(place, pick):
    """0 is lawful where all comes from the one evidence, or all from the other."""
    if not os.path.exists(place.path("other")):
        make_other_evidence(place)
    moment = moment_of(place, "extract", pick)
    name = pick.choice([START + "other.db", "log.txt"])
    renew_evidence(place)
    shutil.rmtree(place.path("case"), ignore_errors=True)
    after = []

    def exchange():
        exchange_evidence(place, name)
        after.append(state_of(place.path("evidence")))

    before = state_of(place.path("evidence"))
    run = place.run(["extract", *SOURCES], moment, exchange)
    problem = objection(place, run, after[0] if after else before)
    lawful = [place.expected["extract"][1], place.expected[name]]
    if not problem and run.code == 0 and case_state(place.path("case")) not in lawful:
        problem = "the code is 0, and the case is neither of the one evidence nor of the other"
    renew_evidence(place)
    place.evidence = state_of(place.path("evidence"))
    return f"{moment}: {name} exchanged", run, problem


def make_other_evidence(place):
    """The same files with something missing, and what undisturbed runs make of evidence with one of them."""
    shutil.copytree(place.path("kept"), place.path("other"))
    database = sqlite3.connect(place.path("other", START + "other.db"))
    database.execute("UPDATE OtherDevices SET Name = 'Exchanged'")
    database.commit()
    database.close()
    with open(place.path("other", "log.txt"), "r+", encoding="utf-8") as file:
        lines = file.readlines()
        file.seek(0)
        file.truncate()
        file.writelines(line.replace("Kitchen", "Exchanged") for line in lines)
    for name in (START + "other.db", "log.txt"):
        renew_evidence(place)
        exchange_evidence(place, name)
        shutil.rmtree(place.path("case"), ignore_errors=True)
        place.run_undisturbed(["extract", *SOURCES])
        place.expected[name] = case_state(place.path("case"))


def attack_races(place, pick):
    return pick.choice([attack_by_link, attack_by_exchange])(place, pick)


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
    # Libraries prepare themselves before main(), where the program's own words for want of memory come from.
    if name == "KiB of address space" and run.errors.startswith("terminate called after throwing an instance of 'std::bad"):
        return what, run, ""
    return what, run, judge(place, command, Fault(command.name, 0, "limit", 0, name), run)


ATTACKS = {
    "case files": attack_case_files,
    "evidence": attack_evidence,
    "full disk": attack_full_disk,
    "limits": attack_limits,
    "databases": attack_databases,
    "races": attack_races,
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
                renew_evidence(place)
                place.evidence = state_of(place.path("evidence"))
            print(f"{name}: {entry['tried']} tried, {entry['met']} told by the code, {entry['held']} held", flush=True)
    if options.json:
        with open(options.json, "w", encoding="utf-8") as file:
            json.dump(results, file, indent=1)
    sys.exit(0 if all(entry["held"] == entry["tried"] for entry in results.values()) else 1)


if __name__ == "__main__":
    main()
