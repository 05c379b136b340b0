#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""A workbook of hostile texts, read back by another program.

test_workbook.py WRITER"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
from workbook_sheets import open_book, rows_of_sheet, sheet_names, sheet_namespace  # noqa: E402

writer = sys.argv[1]
longest = 32767  # UTF-16 units that a cell takes
without_workbooks = 77


class workbook(unittest.TestCase):
    def written(self, texts, rows_of_sheet_at_most=1048576):
        """The sheets of a workbook of these texts, each a list of rows, and what the writer says of them."""
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "report.xlsx"
            lines = "".join((text if isinstance(text, bytes) else text.encode()).hex() + "\n" for text in texts)
            process = subprocess.run([writer, file, str(rows_of_sheet_at_most)], input=lines.encode(),
                                     stdout=subprocess.PIPE)
            if process.returncode == without_workbooks:
                self.skipTest("built without libxlsxwriter")
            self.assertEqual(process.returncode, 0)
            self.assertEqual([path.name for path in pathlib.Path(folder).iterdir()], ["report.xlsx"])
            with open_book(file) as book:
                names = sheet_names(book)
                sheets = {name: rows_of_sheet(book, f"xl/worksheets/sheet{number}.xml")[0]
                          for number, name in enumerate(names, 1)}
        return sheets, process.stdout.decode()

    def read_back(self, *texts):
        sheets, notes = self.written(texts)
        rows = sheets["devices"]
        self.assertEqual(rows[0], {"A": "number", "B": "text"})
        return [row.get("B") for row in rows[1:]], notes

    def test_texts_stay_texts(self):
        texts = ["=1+1", "+1", "-1", "@SUM(A1)", "\t=1", "00017", "1e5", "2024-05-17", "TRUE", "'quoted", "<b>&amp;\"",
                 " both ends ", "two\nlines", "one\r\ntwo\rthree", "\x01\x02\x1b[31m\x7f", "_x0041_", "_x0041_x0042_", "__x005f_", "_x005F_", "_xZZZZ_",
                 "\u202eevil", "\u0085\u2028", "👍", "\ud7ff\ue000\ufffd", "http://example.invalid", "mailto:a@b.invalid"]
        self.assertEqual(self.read_back(*texts), (texts, "0 0\n"))

    def test_characters_without_a_form(self):
        self.assertEqual(self.read_back("a\0b", "\ufffe", "\uffff\ufffe", b"\xff\xfe", b"\xed\xa0\x80"),
                         (["a\\u{0}b", "\\u{fffe}", "\\u{ffff}\\u{fffe}", "x'fffe'", "x'eda080'"], "0 3\n"))

    def test_long_texts(self):
        thumbs = "👍" * (longest // 2)
        cut = "…"
        cases = {"x" * longest: "x" * longest, "x" * (longest + 1): "x" * (longest - 1) + cut, thumbs: thumbs,
                 thumbs + "👍": thumbs + cut, "x" + thumbs + "👍": "x" + thumbs[:-1] + cut,
                 "\0" * longest: ("\\u{0}" * longest)[:longest - 1] + cut}
        self.assertEqual(self.read_back(*cases), (list(cases.values()), "4 1\n"))

    def test_long_texts_with_escapes(self):
        """What is written longer than it is has less room."""
        texts = ["\x01" * longest, "_x0041_" * (longest // 14)]
        self.assertEqual(self.read_back(*texts), (texts, "0 0\n"))
        (text,), notes = self.read_back("_x0041_" * (longest // 7))
        self.assertTrue(("_x0041_" * longest).startswith(text[:-1]) and text.endswith("…") and len(text) > 16000, text)
        self.assertEqual(notes, "1 0\n")

    def test_further_sheets(self):
        sheets, _ = self.written([str(row) for row in range(1, 8)], rows_of_sheet_at_most=4)
        self.assertEqual(list(sheets), ["devices", "devices (2)", "devices (3)"])
        heading = {"A": "number", "B": "text"}
        row = lambda number: {"A": float(number), "B": str(number)}  # noqa: E731
        self.assertEqual(list(sheets.values()), [[heading, row(1), row(2), row(3)], [heading, row(4), row(5), row(6)],
                                                 [heading, row(7)]])

    def test_full_sheet(self):
        sheets, _ = self.written(["a", "b", "c"], rows_of_sheet_at_most=4)
        self.assertEqual(list(sheets), ["devices"])

    def test_values(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "values.xlsx"
            if subprocess.run([writer, file], stdin=subprocess.DEVNULL).returncode == without_workbooks:
                self.skipTest("built without libxlsxwriter")
            with open_book(file) as book:
                self.assertEqual(sheet_names(book), ["values", "nothing"])
                rows, sheet = rows_of_sheet(book, "xl/worksheets/sheet1.xml")
                nothing, empty_sheet = rows_of_sheet(book, "xl/worksheets/sheet2.xml")
                properties = book.read("docProps/core.xml").decode()
        self.assertEqual(rows, [{"A": "value", "B": "=text"}, {"A": 2.0**53, "B": "largest exact"},
                                {"A": "9007199254740993", "B": "beyond it"}, {"A": -2.0**53, "B": "least exact"},
                                {"A": "-9007199254740993", "B": "below it"}, {"A": 0.5, "B": "real"},
                                {"A": "inf", "B": "infinite"}, {"A": "x'6162'", "B": "blob"}, {"B": "null"}])
        self.assertEqual(nothing, [{"A": "a", "B": "b", "C": "c"}])
        self.assertIn(">1970-01-01T00:00:01Z</dcterms:created>", properties)
        for one, filtered, columns in (sheet, "A1:B10", "2"), (empty_sheet, "A1:C1", "3"):
            (pane,) = one.iter(sheet_namespace + "pane")
            self.assertEqual((pane.get("ySplit"), pane.get("xSplit"), pane.get("state")), ("1", None, "frozen"))
            (wide,) = one.iter(sheet_namespace + "col")
            self.assertEqual((wide.get("min"), wide.get("max"), round(float(wide.get("width")))), ("1", columns, 21))
            self.assertEqual([part.get("ref") for part in one.iter(sheet_namespace + "autoFilter")], [filtered])
            bold = {cell.get("s") for row in list(one.iter(sheet_namespace + "row"))[:1] for cell in row}
            self.assertEqual(bold, {"1"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
