#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# test_parent_memory.py PROGRAM
# The process that watches the workers takes no more memory for many sources than for few; nor does collect.

import json
import pathlib
import sys
import time
import unittest

from case_in_a_folder import case_in_a_folder

if not pathlib.Path("/proc/self/status").exists():
    print("skipped: this system does not tell the peak memory of a process")
    sys.exit(77)

few, many = 30, 300
most_growth = 4096  # KiB: the plan keeps about 9 KiB for each source, and runs differ a little


class parent_memory(case_in_a_folder):
    def peak(self, *arguments):
        """The peak memory (KiB) of the program's own process, without its workers."""
        process = self.start(*arguments)
        peak = 0
        while process.poll() is None:
            lines = pathlib.Path(f"/proc/{process.pid}/status").read_text().splitlines()
            peak = max([peak] + [int(line.split()[1]) for line in lines if line.startswith("VmHWM:")])
            time.sleep(0.001)
        self.finish(process, 0)
        return peak

    def test_does_not_grow(self):
        peaks = {}
        for count in (few, many):
            for number in range(count):
                (self.folder / f"sources{count}/{number}/Windows/System32").mkdir(parents=True)
            (self.folder / "list.json").write_text(
                json.dumps({"sources": [{"path": f"sources{count}/{number}"} for number in range(count)]}))
            case = f"case{count}"
            peaks[count] = (self.peak("extract", "--sources", "list.json", "-o", case, "--quiet"),
                            self.peak("collect", case))
        print(f"peak memory in KiB of extract and of collect: {peaks}")
        for one, other in zip(peaks[few], peaks[many]):
            self.assertGreater(one, 1000)
            self.assertLess(other - one, most_growth)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
