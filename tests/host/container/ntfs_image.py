# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Puts a folder into a volume of NTFS: ntfscp writes files, and its own library makes the folders, which no tool does."""

import ctypes
import pathlib
import stat

library_name = "libntfs-3g.so.89"


def has_library():
    try:
        ctypes.CDLL(library_name)
    except OSError:
        return False
    return True


def make_folders(image, paths):
    """`paths`: relative to the root of the volume, each behind the one that it is in."""
    library = ctypes.CDLL(library_name, use_errno=True)
    pointer, text = ctypes.c_void_p, ctypes.c_char_p
    library.ntfs_mount.argtypes, library.ntfs_mount.restype = (text, ctypes.c_ulong), pointer
    library.ntfs_umount.argtypes = (pointer, ctypes.c_int)
    library.ntfs_pathname_to_inode.argtypes, library.ntfs_pathname_to_inode.restype = (pointer, pointer, text), pointer
    library.ntfs_create.argtypes = (pointer, ctypes.c_uint32, text, ctypes.c_uint8, ctypes.c_uint)
    library.ntfs_create.restype = pointer
    library.ntfs_inode_close.argtypes = (pointer,)

    volume = library.ntfs_mount(str(image).encode(), 0)
    if not volume:
        raise OSError(ctypes.get_errno(), "the volume cannot be opened", str(image))
    for path in map(pathlib.PurePosixPath, paths):
        above = "" if str(path.parent) == "." else str(path.parent)
        folder = library.ntfs_pathname_to_inode(volume, None, ("/" + above).encode())
        made = library.ntfs_create(folder, 0, path.name.encode("utf-16-le"), len(path.name), stat.S_IFDIR)
        if not made:
            raise OSError(ctypes.get_errno(), "the folder cannot be made", str(path))
        library.ntfs_inode_close(made)
        library.ntfs_inode_close(folder)
    library.ntfs_umount(volume, 0)
