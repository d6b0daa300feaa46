"""A second, independent reading of rigid_model_v2 files for tests: a plain evaluation of the tables in
docs/formats/rigid_model_v2.md in binary32 steps, without any of the program's code. It expects well-formed files."""

import struct


def f32(value):
    """Rounds to binary32. One operation on binary32 values in double, rounded once more, is correctly rounded."""
    return struct.unpack("<f", struct.pack("<f", value))[0]


def half(data, at):
    return struct.unpack_from("<e", data, at)[0]


def u16(data, at):
    return struct.unpack_from("<H", data, at)[0]


def u32(data, at):
    return struct.unpack_from("<I", data, at)[0]


def floats(data, at, count):
    return list(struct.unpack_from("<%df" % count, data, at))


def text(field, wide=False):
    if wide and len(field) > 1 and field[0] != 0 and field[1] == 0:
        units = field.decode("utf-16-le")
        return units.split("\0")[0]
    field = field.split(b"\0")[0]
    try:
        return field.decode("utf-8")
    except UnicodeDecodeError:
        return field.decode("latin-1")


def n(byte):
    return f32(f32(byte / 127.0) - 1.0)


def mirrored(v, at):
    return [-n(v[at]), n(v[at + 1]), n(v[at + 2])]


def flipped(value):
    return f32(1.0 - value)


def vertex(format_id, v, p):
    """The record of one raw vertex v with the pivot p."""
    zero = [0.0, 0.0, 0.0]
    record = {"position": zero, "uv": [0.0, 0.0], "bones": [0] * 4, "weights": [0.0] * 4, "normal": zero,
              "bitangent": zero, "tangent": zero}
    x, y, z = half(v, 0), half(v, 2), half(v, 4)
    if format_id in (0, 6, 7):
        record["position"] = [-f32(x + p[0]), f32(y + p[1]), f32(z + p[2])]
        record["uv"] = [half(v, 8), flipped(half(v, 10))]
        record["normal"] = mirrored(v, 16)
        record["tangent"] = mirrored(v, 24)
        record["bitangent"] = [-f32(v[20] / 126.0), f32(v[22] / 126.0), f32(v[21] / 126.0)]
    elif format_id == 1:
        record["position"] = [f32(x + p[0]), f32(y + p[1]), -f32(z + p[2])]
        record["uv"] = [half(v, 6), half(v, 8)]
        record["normal"] = mirrored(v, 10)
    elif format_id == 3:
        record["position"] = [f32(-x + p[0]), f32(y + p[1]), f32(z + p[2])]
        record["uv"] = [half(v, 16), flipped(half(v, 18))]
        first = f32(v[10] / 255.0)
        record["bones"] = [v[8], v[9], 0, 0]
        record["weights"] = [first, f32(1.0 - first), 0.0, 0.0]
        record["normal"] = mirrored(v, 12)
        record["tangent"] = mirrored(v, 20)
        record["bitangent"] = mirrored(v, 24)
    elif format_id == 4:
        record["position"] = [f32(-x + p[0]), f32(y + p[1]), f32(z + p[2])]
        record["uv"] = [half(v, 20), flipped(half(v, 22))]
        record["bones"] = list(v[8:12])
        record["weights"] = [f32(b / 255.0) for b in v[12:16]]
        unit = [f32(f32(2.0 * b / 255.0) - 1.0) for b in v[16:19]]
        record["normal"] = [-unit[0], unit[1], unit[2]]
        record["bitangent"] = mirrored(v, 24)
        record["tangent"] = mirrored(v, 28)
    elif format_id == 5:
        record["position"] = [x, y, z]
        u, w = floats(v, 8, 2)
        record["uv"] = [u, flipped(w)]
        record["normal"] = [n(v[16]), n(v[17]), n(v[18])]
    return record


def group(data, start, running, version):
    """Returns the group at start, and where the next one begins."""
    wide = version == 5
    g = dict(zip(("material_id", "group_size", "vertex_offset", "vertex_count", "index_offset", "index_count"),
                 struct.unpack_from("<6I", data, start)))
    g["bbox_min"], g["bbox_max"] = floats(data, start + 24, 3), floats(data, start + 36, 3)
    at = start + 48
    end = at
    while data[end] != 0 or (wide and data[end + 1] != 0):
        end += 2 if wide else 1
    g["shader_name"] = text(data[at:end], wide)
    at = end + (2 if wide else 1)
    g["vertex_format"] = u16(data, at + 20)
    g["group_name"] = text(data[at + 22:at + 54])
    g["texture_directory"] = text(data[at + 54:at + 310])
    g["pivot"] = floats(data, at + 568, 3)
    attachments, textures = u32(data, at + 732), u32(data, at + 736)
    at += 880
    g["attachments"], g["textures"] = [], []
    width = 64 if wide else 32
    for _ in range(attachments):
        g["attachments"].append({"name": text(data[at:at + width], wide), "matrix": floats(data, at + width, 12)})
        at += width + 52
    width = 512 if wide else 256
    for _ in range(textures):
        g["textures"].append({"type": u32(data, at), "path": text(data[at + 4:at + 4 + width], wide)})
        at += 4 + width
    g["material_flags"], g["alpha_mode"] = u32(data, at), u32(data, at + 4)

    count, format_id = g["vertex_count"], g["vertex_format"]
    stride = (g["index_offset"] - g["vertex_offset"]) // count if count else -1
    g["vertex_size"] = stride
    at = running + g["vertex_offset"]
    g["vertices"] = []
    if format_id in (0, 1, 3, 4, 5, 6, 7):
        for _ in range(count):
            at += 4 if format_id == 1 else 0
            g["vertices"].append(vertex(format_id, data[at:at + stride], g["pivot"]))
            at += stride
    indices = list(struct.unpack_from("<%dH" % g["index_count"], data, at))
    for i in range(0, len(indices) - 2, 3):
        indices[i + 1], indices[i + 2] = indices[i + 2], indices[i + 1]
    g["indices"] = indices
    return g, start + g["group_size"]


def model(data):
    version = u32(data, 4)
    m = {"magic": data[:4].decode(), "version": version, "lod_count": u16(data, 8),
         "skeleton_id": text(data[12:140], version == 5), "lods": []}
    table, size = (268 if version == 5 else 140), (28 if version >= 7 else 20)
    running = u32(data, table + 12) if m["lod_count"] else 0
    for i in range(m["lod_count"]):
        at = table + i * size
        start = u32(data, at + 12)
        lod = {"index": i, "group_count": u32(data, at), "start_offset": start,
               "lod_distance": floats(data, at + 16, 1)[0], "groups": []}
        for _ in range(lod["group_count"]):
            g, start = group(data, start, running, version)
            running += g["group_size"]
            lod["groups"].append(g)
        m["lods"].append(lod)
    return m
