# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Puts folders with files into a container of APFS that mkapfs made, which Debian has nothing to write to with.

All structures are those of the Apple File System Reference. Objects are changed where they stand, in the one checkpoint
that the new container has: every record of a volume must fit into the one node that its tree has.
"""

import math
import pathlib
import struct
import uuid

block_size = 4096
header_bytes = 32  # checksum, object, transaction, type, subtype
node_start = 56  # of the table of contents of a node
info_bytes = 40  # at the end of a root node

# Types of the records of a volume, in the upper four bits of their key.
extent_of_blocks, inode, data_stream, file_extent, directory_entry = 2, 3, 6, 8, 9
# Kinds of a directory's entry, and of a mode.
folder_type, file_type = 4, 8

superblock_copies = (0, 2)  # the first block, and the checkpoint that mkapfs writes
spaceman_block_type = 0x80000005
volume_is_unencrypted = 1
first_free_inode = 16
root_folder = 2
no_resource_fork = 0x8000
transaction = 1


def checksum(block):
    """Fletcher's, over words of 32 bits, of all behind the checksum itself."""
    low = high = 0
    for (word,) in struct.iter_unpack("<I", block[8:]):
        low = (low + word) % 0xFFFFFFFF
        high = (high + low) % 0xFFFFFFFF
    first = 0xFFFFFFFF - (low + high) % 0xFFFFFFFF
    second = 0xFFFFFFFF - (low + first) % 0xFFFFFFFF
    return second << 32 | first


def name_hash(name):
    """CRC-32C of the UTF-32 of the name, letter case aside, its last 22 bits in front of the length."""
    crc = 0xFFFFFFFF
    for byte in name.lower().encode("utf-32-le"):
        crc ^= byte
        for _ in range(8):
            crc = crc >> 1 ^ (0x82F63B78 if crc & 1 else 0)
    return (crc & 0x3FFFFF) << 10 | len(name.encode()) + 1


def key(number, kind, more=b""):
    return struct.pack("<Q", number | kind << 60) + more


def extended_fields(*fields):
    """Each a type, flags and bytes."""
    heads = b"".join(struct.pack("<BBH", kind, flags, len(value)) for kind, flags, value in fields)
    values = b"".join(value + bytes(-len(value) % 8) for _, _, value in fields)
    return struct.pack("<HH", len(fields), len(values)) + heads + values


class node:
    """A root node that is a leaf, with keys and values of any length."""

    def __init__(self, block):
        self.block = bytearray(block)
        count, start, length = struct.unpack_from("<IHH", block, 36)
        keys, values = node_start + start + length, block_size - info_bytes
        self.records = []
        for place in range(count):
            at, size, value_at, value_size = struct.unpack_from("<HHHH", block, node_start + start + 8 * place)
            self.records.append((block[keys + at:keys + at + size],
                                 block[values - value_at:values - value_at + value_size]))

    @staticmethod
    def order(record):
        (head,) = struct.unpack_from("<Q", record[0])
        number, kind, rest = head & (1 << 60) - 1, head >> 60, record[0][8:]
        return (number, kind, struct.unpack("<Q", rest)[0] if kind == file_extent else
                struct.unpack_from("<I", rest)[0] >> 10 if kind == directory_entry else 0, rest)

    def written(self):
        records = sorted(self.records, key=self.order)
        table_bytes = max(128, 8 * len(records))
        keys, values, table = b"", b"", b""
        for record_key, value in records:
            values = value + values
            table += struct.pack("<HHHH", len(keys), len(record_key), len(values), len(value))
            keys += record_key
        room = block_size - node_start - info_bytes - table_bytes - len(keys) - len(values)
        if room < 0:
            raise ValueError("the records of the volume do not fit into one node")
        struct.pack_into("<IHHHHHHHH", self.block, 36, len(records), 0, table_bytes, len(keys), room, 0xFFFF, 0,
                         0xFFFF, 0)
        body = table + bytes(table_bytes - len(table)) + keys + bytes(room) + values
        self.block[node_start:block_size - info_bytes] = body
        struct.pack_into("<IIQ", self.block, block_size - info_bytes + 16, max(map(len, (k for k, _ in records))),
                         max(map(len, (v for _, v in records))), len(records))
        return self.block


class apfs_image:
    """The container in an image; `offset`: bytes before it."""

    def __init__(self, path, offset=0):
        self.file = open(path, "r+b")
        self.offset = offset

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.file.close()

    def read(self, number):
        self.file.seek(self.offset + number * block_size)
        return self.file.read(block_size)

    def write(self, number, block):
        self.file.seek(self.offset + number * block_size)
        self.file.write(block)

    def write_object(self, number, block):
        struct.pack_into("<Q", block, 0, checksum(block))
        self.write(number, block)

    def change(self, number, *fields):
        """Each field a place, a format and a value, or what makes one of the value that is there."""
        block = bytearray(self.read(number))
        for place, form, value in fields:
            (before,) = struct.unpack_from(form, block, place)
            struct.pack_into(form, block, place, value(before) if callable(value) else value)
        self.write_object(number, block)

    def superblock(self, place, form="<Q"):
        return struct.unpack_from(form, self.read(0), place)[0]

    def spaceman(self):
        """The block of the space manager, among the data of the checkpoint."""
        start, count = self.superblock(0x78), self.superblock(0x6C, "<I")
        return next(number for number in range(start, start + count)
                    if struct.unpack_from("<I", self.read(number), 24)[0] == spaceman_block_type)

    def allocate(self, count):
        """The first of so many free blocks of the first chunk."""
        manager = self.spaceman()
        (chunk_infos_at,) = struct.unpack_from("<I", self.read(manager), 0x50)
        (chunk_infos,) = struct.unpack_from("<Q", self.read(manager), chunk_infos_at)
        (bitmap_at,) = struct.unpack_from("<Q", self.read(chunk_infos), 0x40)
        bitmap = int.from_bytes(self.read(bitmap_at), "little")
        wanted, first = (1 << count) - 1, 0
        while bitmap >> first & wanted:
            first += 1
        self.write(bitmap_at, (bitmap | wanted << first).to_bytes(block_size, "little"))
        self.change(chunk_infos, (0x3C, "<I", lambda free: free - count))
        self.change(manager, (0x48, "<Q", lambda free: free - count))
        return first

    def map_tree(self, map_block):
        return struct.unpack_from("<Q", self.read(map_block), 0x30)[0]

    def mapped(self, map_block):
        """The block of each object of a map, by its number; the map's tree is one leaf with fixed sizes."""
        block = self.read(self.map_tree(map_block))
        count, start, length = struct.unpack_from("<IHH", block, 36)
        found = {}
        for place in range(count):
            at, value_at = struct.unpack_from("<HH", block, node_start + start + 4 * place)
            (number,) = struct.unpack_from("<Q", block, node_start + start + length + at)
            found[number] = struct.unpack_from("<Q", block, block_size - info_bytes - value_at + 8)[0]
        return found

    def set_mapped(self, map_block, objects):
        tree = self.map_tree(map_block)
        block = bytearray(self.read(tree))
        start, length = struct.unpack_from("<HH", block, 40)
        keys = node_start + start + length
        for place, (number, target) in enumerate(sorted(objects.items())):
            struct.pack_into("<HH", block, node_start + start + 4 * place, 16 * place, 16 * (place + 1))
            struct.pack_into("<QQ", block, keys + 16 * place, number, transaction)
            struct.pack_into("<IIQ", block, block_size - info_bytes - 16 * (place + 1), 0, block_size, target)
        used = 16 * len(objects)
        struct.pack_into("<I", block, 36, len(objects))
        struct.pack_into("<HHHHHH", block, 44, used, block_size - info_bytes - keys - 2 * used, 0xFFFF, 0, 0xFFFF, 0)
        struct.pack_into("<Q", block, block_size - info_bytes + 24, len(objects))
        self.write_object(tree, block)

    def volume(self, index):
        """The block of a volume's superblock."""
        return self.mapped(self.superblock(0xA0))[self.superblock(0xB8 + 8 * index)]

    def add_volume(self, name):
        """One more volume, empty as the first must still be."""
        container_map = self.superblock(0xA0)
        index = next(i for i in range(100) if self.superblock(0xB8 + 8 * i) == 0)
        number = self.superblock(0x58)
        first = self.volume(0)
        volume, object_map, map_tree, root, extents, snapshots = range(start := self.allocate(6), start + 6)
        fields = [struct.unpack_from("<Q", self.read(first), place)[0] for place in (0x80, 0x90, 0x98)]
        (old_root,) = self.mapped(fields[0]).values()
        for old, new, own in ((first, volume, number), (fields[0], object_map, object_map),
                              (self.map_tree(fields[0]), map_tree, map_tree), (old_root, root, number + 1),
                              (fields[1], extents, extents), (fields[2], snapshots, snapshots)):
            self.write(new, self.read(old))
            self.change(new, (8, "<Q", own))
        self.change(object_map, (0x30, "<Q", map_tree))
        self.set_mapped(object_map, {number + 1: root})
        self.change(volume, (0x24, "<I", index), (0x80, "<Q", object_map), (0x88, "<Q", number + 1),
                    (0x90, "<Q", extents), (0x98, "<Q", snapshots), (0xF0, "16s", uuid.uuid4().bytes),
                    (0x2C0, "256s", name.encode()))
        self.set_mapped(container_map, {**self.mapped(container_map), number: volume})
        for copy in superblock_copies:
            self.change(copy, (0x58, "<Q", number + 2), (0xB8 + 8 * index, "<Q", number))
        return index

    def claim_encryption(self, index):
        """The volume says that it is encrypted; nothing of it is."""
        self.change(self.volume(index), (0x108, "<Q", lambda flags: flags & ~volume_is_unencrypted))

    def add_folder(self, index, folder):
        """What is in a folder, into the root of a volume."""
        self.index = index
        volume = self.volume(index)
        map_block, extents = (struct.unpack_from("<Q", self.read(volume), place)[0] for place in (0x80, 0x90))
        (root,) = self.mapped(map_block).values()
        self.tree, self.extents = node(self.read(root)), node(self.read(extents))
        self.next, self.files, self.folders, self.blocks = first_free_inode, 0, 0, 0
        children = self.add_children(root_folder, pathlib.Path(folder))
        self.tree.records = [(k, v[:56] + struct.pack("<I", children) + v[60:]) if k == key(root_folder, inode)
                             else (k, v) for k, v in self.tree.records]
        self.write_object(root, self.tree.written())
        if self.extents.records:
            self.write_object(extents, self.extents.written())
        self.change(volume, (0x58, "<Q", lambda count: count + self.blocks), (0xB0, "<Q", self.next),
                    (0xB8, "<Q", self.files), (0xC0, "<Q", self.folders))

    def add_children(self, parent, folder):
        entries = sorted(folder.iterdir())
        for path in entries:
            number, self.next = self.next, self.next + 1
            time = path.stat().st_mtime_ns
            kind = folder_type if path.is_dir() else file_type
            self.tree.records.append(
                (key(parent, directory_entry, struct.pack("<I", name_hash(path.name)) + path.name.encode() + b"\0"),
                 struct.pack("<QQH", number, time, kind)))
            fields = [(4, 2, path.name.encode() + b"\0")]
            if path.is_dir():
                self.folders += 1
                count, flags, mode = self.add_children(number, path), 0, 0o040755
            else:
                self.files += 1
                count, flags, mode = 1, no_resource_fork, 0o100644
                fields.append((8, 0x20, self.add_content(number, path.read_bytes())))
            self.tree.records.append(
                (key(number, inode),
                 struct.pack("<QQQQQQQIIIIIIHHQ", parent, number, time, time, time, time, flags, count, 0, 0, 0, 0, 0,
                             mode, 0, 0) + extended_fields(*fields)))
        return len(entries)

    def add_content(self, number, content):
        """The bytes of a file in one stretch; what its inode says of them."""
        blocks = math.ceil(len(content) / block_size)
        first = self.allocate(blocks)
        self.write(first, content + bytes(-len(content) % block_size))
        self.blocks += blocks
        self.tree.records.append((key(number, data_stream), struct.pack("<I", 1)))
        self.tree.records.append((key(number, file_extent, struct.pack("<Q", 0)),
                                  struct.pack("<QQQ", blocks * block_size, first, 0)))
        self.extents.records.append((key(first, extent_of_blocks),
                                     struct.pack("<QQI", blocks | 1 << 60, number, 1)))
        return struct.pack("<QQQQQ", len(content), blocks * block_size, 0, len(content), 0)
