# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

program = sys.argv[1]
patience = 120  # seconds; sanitizers and a busy machine take their time


class case_in_a_folder(unittest.TestCase):
    """The program in a temporary folder with a sample without its write-ahead logs, of which every run would warn; the
    program is the script's first argument."""

    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.folder = pathlib.Path(place.name)
        self.environment = {**os.environ, "BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER": str(self.folder)}
        self.run_program("sample", "sample")
        for log in (self.folder / "sample/macos/Library/Bluetooth").glob("*.db-wal"):
            log.unlink()

    def start(self, *arguments):
        return subprocess.Popen([program, *arguments], cwd=self.folder, env=self.environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def finish(self, process, code):
        output, errors = process.communicate(timeout=patience)
        self.assertEqual(process.returncode, code, output + errors)
        return errors

    def run_program(self, *arguments, code=0):
        return self.finish(self.start(*arguments), code)

