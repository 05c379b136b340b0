# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Puts a folder into a volume that mkfs.exfat made, which Debian has nothing to write to with but by mounting it.

Structures: https://learn.microsoft.com/windows/win32/fileio/exfat-specification. Every file and folder gets clusters that
follow each other, so that nothing stands in the file allocation table.
"""

import pathlib
import struct

entry_bytes = 32
folder_attribute, file_attribute = 0x10, 0x20
contiguous = 3  # allocation is possible, and the table says nothing of it


def sum_of(values, skipped=()):
    total = 0
    for place, value in enumerate(values):
        if place not in skipped:
            total = ((total & 1) << 15 | total >> 1) + value & 0xFFFF
    return total


def entry_set(name, attributes, cluster, size):
    letters = name.encode("utf-16-le")
    parts = [letters[i:i + 30].ljust(30, b"\0") for i in range(0, len(letters), 30)]
    date = (2024 - 1980) << 25 | 5 << 21 | 17 << 16
    file = struct.pack("<BBHHHIIIBBBBB7x", 0x85, 1 + len(parts), 0, attributes, 0, date, date, date, 0, 0, 128, 128, 128)
    stream = struct.pack("<BBBBHHQIIQ", 0xC0, contiguous if size else 1, 0, len(name),
                         sum_of(name.upper().encode("utf-16-le")), 0, size, 0, cluster, size)
    entries = bytearray(file + stream + b"".join(b"\xC1\0" + part for part in parts))
    struct.pack_into("<H", entries, 2, sum_of(entries, skipped=(2, 3)))
    return bytes(entries)


class exfat_image:
    def __init__(self, path):
        self.bytes = bytearray(pathlib.Path(path).read_bytes())
        self.path = path
        table, _, heap, _, root = struct.unpack_from("<IIIII", self.bytes, 80)
        sector = 1 << self.bytes[108]
        self.cluster_bytes = sector << self.bytes[109]
        self.table, self.heap, self.root = table * sector, heap * sector, root
        entry = next(place for place in range(self.place(root), self.place(root) + self.cluster_bytes, entry_bytes)
                     if self.bytes[place] == 0x81)
        self.bitmap = self.place(struct.unpack_from("<I", self.bytes, entry + 20)[0])
        self.next = 2
        while self.is_used(self.next):
            self.next += 1

    def place(self, cluster):
        return self.heap + (cluster - 2) * self.cluster_bytes

    def is_used(self, cluster):
        return self.bytes[self.bitmap + (cluster - 2) // 8] >> (cluster - 2) % 8 & 1

    def store(self, content):
        """The first of the clusters that got the content."""
        first, count = self.next, -(-len(content) // self.cluster_bytes)
        for cluster in range(first, first + count):
            self.bytes[self.bitmap + (cluster - 2) // 8] |= 1 << (cluster - 2) % 8
        self.bytes[self.place(first):self.place(first) + len(content)] = content
        self.next += count
        return first if count else 0

    def entries_of(self, folder):
        entries = b""
        for path in sorted(folder.iterdir()):
            if path.is_dir():
                content = self.entries_of(path)
                content += bytes(-len(content) % self.cluster_bytes or self.cluster_bytes)
            else:
                content = path.read_bytes()
            entries += entry_set(path.name, folder_attribute if path.is_dir() else file_attribute, self.store(content),
                                 len(content))
        return entries

    def add_folder(self, folder):
        """What is in a folder, into the root of the volume."""
        end = self.place(self.root)
        while self.bytes[end]:
            end += entry_bytes
        entries = self.entries_of(pathlib.Path(folder))
        self.bytes[end:end + len(entries)] = entries
        pathlib.Path(self.path).write_bytes(self.bytes)
