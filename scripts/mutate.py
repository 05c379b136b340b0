#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Puts the faults of tests/mutations.txt into a copy of the tree, one at a time, and says which no test noticed.

Exit code: 0 all were noticed, 1 one lived, 2 the list does not fit the tree (a text that its definition does not have, an
unknown test, a fault that does not compile, a test that fails without a fault).
"""

import argparse
import dataclasses
import json
import os
import pathlib
import queue
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import cpp_definitions

PROJECT = pathlib.Path(__file__).resolve().parent.parent
ALL_CAUGHT, ONE_LIVED, LIST_IS_WRONG = 0, 1, 2


class WrongList(Exception):
    """The list of faults, or the tree without a fault, is not as it must be."""


@dataclasses.dataclass
class Fault:
    line: int
    file: str
    definition: str
    test: str
    what: str
    change: str

    def __str__(self):
        return f"mutations.txt:{self.line}: {self.file}: {self.definition} ({self.test}): {self.what}"


# ---- the list ----


def parse_list(text):
    faults, header = [], None
    for number, line in enumerate(text.split("\n"), 1):
        if line.startswith("#") or not line.strip():
            continue
        if not line.startswith(" "):
            header = number, line.split(maxsplit=3)
        elif header and len(header[1]) == 4:
            faults.append(Fault(header[0], *header[1], line.strip()))
            header = None
        else:
            raise WrongList(f"mutations.txt:{number}: a fault is a line with file, definition, test and a few words, and a "
                            f"line with what is changed: {line}")
    return faults


def with_fault(fault, tree):
    """The file's content with the fault in it."""
    path = tree / fault.file
    if not path.is_file():
        raise WrongList(f"{fault}: there is no such file")
    content = path.read_bytes().decode("utf-8")
    found = re.fullmatch(r"(?:without (?P<statement>.*?)|(?P<old>.*?))(?: #(?P<which>\d+))?(?: =>(?P<new>.*))?", fault.change)
    which = int(found["which"] or 0)
    try:
        if found["statement"]:
            changed = cpp_definitions.without(content, fault.definition, found["statement"], which)
        else:
            changed = cpp_definitions.replaced(content, fault.definition, found["old"], (found["new"] or "").strip(), which)
    except cpp_definitions.NotFound as error:
        raise WrongList(f"{fault}: {error}") from error
    if changed == content:
        raise WrongList(f"{fault}: nothing is changed")
    return changed


def check_list(faults, tree):
    """Raises one error that names all faults that do not fit the tree."""
    errors = []
    for fault in faults:
        try:
            with_fault(fault, tree)
        except WrongList as error:
            errors.append(str(error))
    if errors:
        raise WrongList("\n".join(errors))


# ---- the copy ----


def files_below(folder):
    """Files of the tree by relative path, without build folders and what begins with a dot."""
    for root, folders, names in os.walk(folder):
        folders[:] = [name for name in folders if name != "build" and not name.startswith(".")]
        for name in names:
            path = pathlib.Path(root, name)
            yield path.relative_to(folder), path


def write_if_different(path, content):
    """An unchanged file keeps its time, so that nothing is built anew for it."""
    if not path.is_file() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def copy_tree(source, target):
    wanted = dict(files_below(source))
    for relative, path in wanted.items():
        write_if_different(target / relative, path.read_bytes())
        shutil.copymode(path, target / relative)
    for relative, path in list(files_below(target)):
        if relative not in wanted:
            path.unlink()


class Tree:
    """A copy of the tree with a build folder of its own."""

    def __init__(self, folder, compile_jobs):
        self.folder = folder
        self.build_folder = folder / "build"
        self.compile_jobs = compile_jobs
        self.runs = {}
        self.seconds = {}
        self.environment = dict(os.environ, CCACHE_BASEDIR=str(folder), CCACHE_NOHASHDIR="1")
        if shutil.which("ccache"):
            for language in ("CXX", "OBJCXX"):
                self.environment.setdefault(f"CMAKE_{language}_COMPILER_LAUNCHER", "ccache")

    def command(self, *arguments):
        return subprocess.run(arguments, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")

    def prepare(self):
        copy_tree(PROJECT, self.folder)
        configured = self.command("cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                                  "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DBLUETOOTH_LOGS_BUILD_TESTS=ON")
        if configured.returncode != 0:
            raise WrongList(f"the copy cannot be configured:\n{configured.stdout}")

    def list_runs(self):
        """ctest names the command of a run only once its program is there."""
        listed = self.command("ctest", "--test-dir", "build", "--show-only=json-v1")
        self.runs = {run["name"]: run for run in json.loads(listed.stdout)["tests"]}
        for run in self.runs.values():
            run["properties"] = {entry["name"]: entry["value"] for entry in run.get("properties", [])}
        self.runs = {name: run for name, run in self.runs.items() if not run["properties"].get("WILL_FAIL")}

    def runs_of(self, test):
        """The runs of a test that have to pass: itself and those in other zones and locales."""
        names = [name for name in self.runs if name == test or name.startswith(test + "@")]
        if not names:
            raise WrongList(f"ctest knows no test {test}")
        return names

    def build(self, tests):
        targets = sorted({test.partition("@")[0] for test in tests})
        return self.command("cmake", "--build", "build", "-j", str(self.compile_jobs), "--target", *targets)

    def run(self, name):
        """None if the run passed, else what it said. A run that takes far longer than without a fault has failed."""
        properties = self.runs[name]["properties"]
        environment = dict(self.environment)
        for setting in properties.get("ENVIRONMENT", []):
            key, _, value = setting.partition("=")
            environment[key] = value
        limit = 20 + 5 * self.seconds[name] if name in self.seconds else 600
        started = time.monotonic()
        process = subprocess.Popen(self.runs[name]["command"], env=environment, start_new_session=True,
                                   cwd=properties.get("WORKING_DIRECTORY", self.build_folder),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        try:
            output, _ = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return f"no end within {limit:.0f} seconds"
        self.seconds.setdefault(name, time.monotonic() - started)
        return None if process.returncode == 0 else output.decode("utf-8", "replace")

    def prove_tests_pass(self, tests):
        built = self.build(tests)
        if built.returncode != 0:
            raise WrongList(f"the copy does not build:\n{built.stdout}")
        self.list_runs()
        for test in tests:
            for name in self.runs_of(test):
                output = self.run(name)
                if output is not None:
                    raise WrongList(f"{name} fails without a fault:\n{output}")

    def is_caught(self, fault):
        path = self.folder / fault.file
        original = path.read_bytes()
        try:
            path.write_bytes(with_fault(fault, self.folder).encode("utf-8"))
            built = self.build([fault.test])
            if built.returncode != 0:
                raise WrongList(f"{fault}: does not compile\n{built.stdout}")
            return any(self.run(name) is not None for name in self.runs_of(fault.test))
        finally:
            path.write_bytes(original)


# ---- the work ----


class Work:
    """Faults that several copies of the tree take one after the other."""

    def __init__(self, faults):
        self.faults = queue.Queue()
        for fault in faults:
            self.faults.put(fault)
        self.caught = 0
        self.lived = []
        self.errors = []
        self.lock = threading.Lock()

    def report(self, words, fault, seconds):
        with self.lock:
            print(f"{words:7} {seconds:5.1f} s  {fault}", flush=True)

    def one(self, tree, fault):
        started = time.monotonic()
        try:
            is_caught = tree.is_caught(fault)
        except WrongList as error:
            self.errors.append(str(error))
            words = "wrong"
        else:
            words = "caught" if is_caught else "LIVED"
            if is_caught:
                self.caught += 1
            else:
                self.lived.append(fault)
        self.report(words, fault, time.monotonic() - started)

    def by(self, tree, tests):
        try:
            tree.prepare()
            tree.prove_tests_pass(tests)
            while True:
                self.one(tree, self.faults.get_nowait())
        except queue.Empty:
            pass
        except (WrongList, OSError) as error:
            self.errors.append(str(error))


def test_faults(faults, folder, jobs):
    work = Work(faults)
    tests = sorted({fault.test for fault in faults})
    compile_jobs = max(1, (os.cpu_count() or 1) // jobs)
    threads = [threading.Thread(target=work.by, args=(Tree(folder / str(number), compile_jobs), tests))
               for number in range(jobs)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()

    for fault in work.lived:
        print(f"\nlived: {fault}\n  {fault.change}")
    untried = len(faults) - work.caught - len(work.lived)
    print(f"\n{len(faults)} faults: {work.caught} caught, {len(work.lived)} lived, {untried} could not be tried")
    if untried:
        raise WrongList("\n".join(work.errors))
    return ONE_LIVED if work.lived else ALL_CAUGHT


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--list", type=pathlib.Path, default=PROJECT / "tests" / "mutations.txt",
                         help="the faults (default: tests/mutations.txt)")
    options.add_argument("--filter", default="", metavar="REGEXP",
                         help="only faults whose file, test or description matches")
    options.add_argument("--jobs", type=int, default=1, help="copies of the tree that work side by side")
    options.add_argument("--folder", type=pathlib.Path, default=PROJECT / "build" / "mutations",
                         help="where the copies stand; they are kept, which makes the next call faster")
    options.add_argument("--check", action="store_true", help="only see whether each fault fits the tree")
    arguments = options.parse_args()

    try:
        faults = [fault for fault in parse_list(arguments.list.read_text("utf-8"))
                  if re.search(arguments.filter, f"{fault.file} {fault.test} {fault.what}")]
        if not faults:
            raise WrongList("no fault matches")
        check_list(faults, PROJECT)
        if arguments.check:
            print(f"{len(faults)} faults fit the tree")
            return ALL_CAUGHT
        return test_faults(faults, arguments.folder.resolve(), arguments.jobs)
    except WrongList as error:
        print(f"error: {error}", file=sys.stderr)
        return LIST_IS_WRONG


if __name__ == "__main__":
    sys.exit(main())
