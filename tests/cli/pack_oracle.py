"""Reads .pack archives of the kinds PFH4 and PFH5 with nothing but Python's own modules, from docs/formats/pack.md."""

import collections
import lzma
import struct

Entry = collections.namedtuple("Entry", "path size offset flag time_stamp stored")
Archive = collections.namedtuple("Archive", "format names entries")


def archive(data):
    """Header, archive names and entries; everything must meet exactly at the file's end."""
    magic, flags, name_count, names_size, file_count, index_size = struct.unpack_from("<4s5I", data)
    if magic not in (b"PFH4", b"PFH5"):
        raise ValueError("magic %r" % magic)
    position = 28
    names = data[position:position + names_size].split(b"\0")[:-1]
    if len(names) != name_count:
        raise ValueError("%d archive names instead of %d" % (len(names), name_count))
    position += names_size
    offset = position + index_size
    entries = []
    for _ in range(file_count):
        size, = struct.unpack_from("<I", data, position)
        position += 4
        flag, stamp = 0, None
        if magic == b"PFH5":
            flag = data[position]
            position += 1
        if flags & 0x40:
            stamp, = struct.unpack_from("<I", data, position)
            position += 4
        end = data.index(b"\0", position)
        entries.append(Entry(data[position:end].decode("ascii"), size, offset, flag, stamp, data[offset:offset + size]))
        position = end + 1
        offset += size
    if position != 28 + names_size + index_size or offset != len(data):
        raise ValueError("the index ends at %d, the data at %d of %d" % (position, offset, len(data)))
    return Archive(magic.decode(), [name.decode("ascii") for name in names], entries)


def compression(entry):
    if not entry.flag:
        return "none"
    return {0xFD2FB528: "zstd", 0x184D2204: "lz4"}.get(struct.unpack_from("<I", entry.stored, 4)[0], "lzma")


def unpacked_size(entry):
    return struct.unpack_from("<I", entry.stored)[0] if entry.flag else entry.size


def content(entry):
    """The unpacked bytes; None for the compressions that Python does not know."""
    kind = compression(entry)
    if kind == "none":
        return entry.stored
    if kind != "lzma":
        return None
    properties, dictionary = struct.unpack_from("<BI", entry.stored, 4)
    filters = [{"id": lzma.FILTER_LZMA1, "dict_size": dictionary, "lc": properties % 9,
                "lp": properties // 9 % 5, "pb": properties // 45}]
    unpacker = lzma.LZMADecompressor(lzma.FORMAT_RAW, filters=filters)
    return unpacker.decompress(entry.stored[9:], unpacked_size(entry))
