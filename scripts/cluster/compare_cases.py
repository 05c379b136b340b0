#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# compare_cases.py CASE CASE: whether two runs of the same sources gave the same. Manifests may differ in times and
# options; result databases, working copies, ios_lines.jsonl and wal_changes.jsonl in no byte. Tells what differs, code 1.

import filecmp
import json
import pathlib
import sys

names_with_times = ("/plugin.log", "/source.json")
compared_names = ("Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite", "ios_lines.jsonl", "wal_changes.jsonl")


def differences(one, other, place):
    """The places in which two JSON values differ."""
    if isinstance(one, dict) and isinstance(other, dict):
        for name in sorted(one.keys() | other.keys()):
            yield from differences(one.get(name), other.get(name), f"{place}.{name}")
    elif isinstance(one, list) and isinstance(other, list) and len(one) == len(other):
        for number, pair in enumerate(zip(one, other)):
            yield from differences(*pair, f"{place}[{number}]")
    elif one != other:
        yield f"{place}: {one!r} and {other!r}"


def timeless_manifest(case):
    manifest = json.loads((case / "manifest.json").read_text())
    del manifest["options"]
    for part in (manifest, *manifest["sources"]):
        del part["started"], part["finished"]
    for source in manifest["sources"]:
        for file in source["files"]:
            if file["path"].endswith(names_with_times):
                del file["size"], file["sha256"]
    return manifest


def compared_files(case):
    files = set()
    for source in case.glob("Source*"):
        paths = [source / name for name in compared_names] + list((source / "Evidence").rglob("*"))
        files.update(path.relative_to(case) for path in paths if path.is_file())
    return files


cases = [pathlib.Path(argument) for argument in sys.argv[1:3]]
manifests = [timeless_manifest(case) for case in cases]
found = list(differences(*manifests, "manifest"))
files = [compared_files(case) for case in cases]
found += [f"only in one case: {path}" for path in sorted(files[0] ^ files[1])]
found += [f"different bytes: {path}" for path in sorted(files[0] & files[1])
          if not filecmp.cmp(cases[0] / path, cases[1] / path, shallow=False)]
print(*found, sep="\n", end="\n" if found else "")
if found:
    sys.exit(1)
print(f"equal: {len(manifests[0]['sources'])} sources in the manifests, {len(files[0])} files byte for byte")
