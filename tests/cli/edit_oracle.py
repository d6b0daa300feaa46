"""What saving and patching must write, computed from docs/formats/rigid_model_v2.md alone."""

import struct

from model_oracle import u16, u32


def header_size(version):
    return 28 if version >= 7 else 20


def table(version):
    return 268 if version == 5 else 140


def places(data, version=None):
    """For each LOD its groups as (offsets of the texture paths, offset of the alpha mode)."""
    version = version or u32(data, 4)
    wide = version == 5
    lods = []
    for i in range(u16(data, 8)):
        header = table(version) + i * header_size(version)
        start, groups = u32(data, header + 12), []
        for _ in range(u32(data, header)):
            at = start + 48
            while data[at] != 0 or (wide and data[at + 1] != 0):
                at += 2 if wide else 1
            at += 2 if wide else 1
            attachments, textures = u32(data, at + 732), u32(data, at + 736)
            at += 880 + attachments * (116 if wide else 84)
            width = 4 + (512 if wide else 256)
            groups.append(([at + j * width + 4 for j in range(textures)], at + textures * width + 4))
            start += u32(data, start + 4)
        lods.append(groups)
    return lods


def field(old, path, version):
    """A path as it stands in the file, in place of an old one."""
    if version != 5:
        return path.encode()[:255].ljust(256, b"\0")
    if old[0] != 0 and old[1] == 0:  # 16-bit characters
        return path.encode("utf-16-le")[:510].ljust(512, b"\0")
    return path.encode()[:511].ljust(512, b"\0")


def edited(data, paths, alphas, version=None):
    """data after --texture and --alpha: {(lod, group, texture): path}, {(lod, group): value}."""
    version = version or u32(data, 4)
    result, lods = bytearray(data), places(data, version)
    for (lod, group, texture), path in paths.items():
        at = lods[lod][group][0][texture]
        text = field(data[at:], path, version)
        result[at:at + len(text)] = text
    for (lod, group), value in alphas.items():
        textures, at = lods[lod][group]
        if textures:  # else it is never written
            struct.pack_into("<I", result, at, value & 0xFFFFFFFF)
    return bytes(result)


def patched(data):
    """Version 7 of a version 6 model."""
    lods = u16(data, 8)
    headers = b""
    for i in range(lods):
        header = bytearray(data[140 + 20 * i:160 + 20 * i])
        struct.pack_into("<I", header, 12, u32(header, 12) + 8 * lods)
        headers += bytes(header) + struct.pack("<II", i, 0)
    return data[:4] + struct.pack("<I", 7) + data[8:140] + headers + data[140 + 20 * lods:]


def unpatched(data):
    """Version 6 of a version 7 model: the other way round."""
    lods = u16(data, 8)
    headers = b""
    for i in range(lods):
        header = bytearray(data[140 + 28 * i:160 + 28 * i])
        struct.pack_into("<I", header, 12, u32(header, 12) - 8 * lods)
        headers += bytes(header)
    return data[:4] + struct.pack("<I", 6) + data[8:140] + headers + data[140 + 28 * lods:]


def with_version_word(data, version):
    return data[:4] + struct.pack("<I", version) + data[8:]
