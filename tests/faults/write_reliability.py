# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""write_reliability.py PROGRAM FOLDER: the figures of the attacks, JSON files in the folder, as docs/reliability.md."""

import json
import os
import platform
import subprocess
import sys

HEAD = """<!-- SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers -->
<!-- SPDX-License-Identifier: MIT -->

# What the program was attacked with

`scripts/check.sh` writes this document from what it tried; `--long` tries every fault. A sample is drawn by a seed. An
attack is held when the program neither crashes nor hangs, leaves the evidence untouched, ends with 0 only if the result is
that of an undisturbed run, else says why, and gives the undisturbed result when it is run again. What is altered, by others
or by a full disk, has no undisturbed result: there the last point is left out, and `verify` may not end with 0. Where
evidence is exchanged while it is read, 0 is lawful only for the result of the one or of the other. A process of its own that
reads a source or a case may crash: the source or the command then says so, and does not end with 0.

{version}, {machine}.

| attack | on | tried | met | held |
|---|---|---|---|---|
"""
TAIL = """
*Met*: the call that was to fail was made, the program was killed there, or an altered file or a limit was told by another
exit code than 0. A limit that is met before the program itself begins, while its libraries are loaded, counts as held.
"""
OTHERS = {
    "case files": ("a file of the case is altered, or is a FIFO, a link, a folder, or 64 GiB large",
                   "report, show, verify, collect"),
    "evidence": ("a file of the evidence is altered", "extract"),
    "full disk": ("the disk of the case is full at some point", "extract, report, collect"),
    "databases": ("a result database or a database of the evidence is hostile: views, generated columns, forged schemas, damage",
                  "report, show, verify, collect, extract"),
    "races": ("while it works, evidence is exchanged, or a link to the evidence planted in the case",
              "extract, report, collect"),
    "limits": ("a limit of the shell: file size, open files, address space, stack", "every command"),
}


def row(attack, command, entry):
    return f"| {attack} | {command} | {entry['tried']:,} | {entry['met']:,} | {entry['held']:,} |\n"


def machine():
    processors = os.cpu_count()
    return f"{platform.system()} {platform.release()}, {platform.machine()}, {processors} processors"


def main():
    program, folder = sys.argv[1:]
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    text = HEAD.format(version=version, machine=machine())
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            figures = json.load(file)
        for entry_name, entry in figures.items():
            attack, command = OTHERS.get(entry_name, (name.removesuffix(".json"), entry_name))
            text += row(attack, command, entry)
    sys.stdout.write(text + TAIL)


if __name__ == "__main__":
    main()
