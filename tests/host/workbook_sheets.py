# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Reads the sheets of a workbook as ECMA-376 describes them."""

import re
import xml.etree.ElementTree as xml
import zipfile

cell_name = re.compile(r"([A-Z]+)([0-9]+)")
sheet_namespace = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
escaped_character = re.compile(r"_x([0-9A-Fa-f]{4})_")


def unescaped(text):
    return escaped_character.sub(lambda match: chr(int(match[1], 16)), text)


def open_book(file):
    return zipfile.ZipFile(file)


def sheet_names(book):
    return [sheet.get("name") for sheet in xml.fromstring(book.read("xl/workbook.xml")).iter(sheet_namespace + "sheet")]


def rows_of_sheet(book, place):
    """The cells of a sheet as texts and numbers by row and column, and the sheet itself."""
    sheet = xml.fromstring(book.read(place))
    rows = []
    for row in sheet.iter(sheet_namespace + "row"):
        cells = {}
        for cell in row:
            column = cell_name.match(cell.get("r"))[1]
            assert cell.find(sheet_namespace + "f") is None, "a formula"
            if cell.get("t") == "inlineStr":
                cells[column] = unescaped("".join(part.text or "" for part in cell.iter(sheet_namespace + "t")))
            else:
                assert cell.get("t") is None, cell.attrib
                cells[column] = float(cell.find(sheet_namespace + "v").text)
        rows.append(cells)
    return rows, sheet
