"""Makes and reads .anim files and poses skeletons with nothing but Python's own modules and its doubles; from
docs/formats/anim.md and from what interpolation along the shorter arc means. Shares nothing with the program."""

import math
import struct

NONE = 0xFFFFFFFF


def text(value):
    return struct.pack("<H", len(value)) + value


def make(version, bones, translation_map, rotation_map, frames, rate=20.0, end=None, skeleton=b"rig01",
         statics=((), ()), sub_name=None):
    """frames: pairs of lists, translations as triples of floats and rotations as quadruples of 16-bit numbers."""
    out = struct.pack("<IIf", version, 1, rate) + text(skeleton)
    if version == 7:
        out += struct.pack("<I", 0) if sub_name is None else struct.pack("<I", 1) + text(sub_name)
    out += struct.pack("<fI", (len(frames) - 1) / rate if end is None else end, len(bones))
    for name, parent in bones:
        out += text(name) + struct.pack("<i", parent)
    out += b"".join(struct.pack("<I", entry) for entry in list(translation_map) + list(rotation_map))
    if version == 7:
        out += struct.pack("<II", len(statics[0]), len(statics[1]))
        out += b"".join(struct.pack("<3f", *value) for value in statics[0])
        out += b"".join(struct.pack("<4h", *value) for value in statics[1])
    counts = [len(frames[0][i]) if frames else 0 for i in (0, 1)]
    out += struct.pack("<III", *counts, len(frames))
    for translations, rotations in frames:
        out += b"".join(struct.pack("<3f", *value) for value in translations)
        out += b"".join(struct.pack("<4h", *value) for value in rotations)
    return out


def quantised(axis, degrees):
    """The 16-bit numbers of a turn about an axis, which need not be of unit length."""
    length = math.sqrt(sum(c * c for c in axis))
    half = math.radians(degrees) / 2
    values = [c / length * math.sin(half) for c in axis] + [math.cos(half)]
    return tuple(int(value * 32767) for value in values)


class Anim:
    def __init__(self, data):
        self.data = data
        self.position = 0
        self.version, self.word, self.rate, size = self.take("<IIfH")
        self.skeleton = self.bytes(size)
        if self.version == 7 and self.take("<I")[0]:
            self.bytes(self.take("<H")[0])
        self.end, count = self.take("<fI")
        self.bones = []
        for _ in range(count):
            name = self.bytes(self.take("<H")[0])
            self.bones.append((name, self.take("<i")[0]))
        self.maps = [[self.take("<I")[0] for _ in range(count)] for _ in range(2)]
        if self.version == 7:
            moved, turned = self.take("<II")
            self.statics = self.bytes(12 * moved + 8 * turned)
        moved, turned, frames = self.take("<III")
        self.frames = []
        for _ in range(frames):
            translations = [self.take("<3f") for _ in range(moved)]
            rotations = [[c / 32767.0 for c in self.take("<4h")] for _ in range(turned)]
            self.frames.append(([(-x, y, z) for x, y, z in translations],
                                [(x, -y, -z, w) for x, y, z, w in rotations]))
        if self.position != len(data):
            raise ValueError("%d bytes are left" % (len(data) - self.position))

    def take(self, form):
        values = struct.unpack_from(form, self.data, self.position)
        self.position += struct.calcsize(form)
        return values

    def bytes(self, size):
        self.position += size
        return self.data[self.position - size:self.position]

    def tracks(self, which):
        """Bone by track, which is 0 for translations and 1 for rotations."""
        def signed(entry):
            return entry - (1 << 32) if entry >= 1 << 31 else entry
        return [bone for bone, entry in enumerate(self.maps[which]) if entry != NONE and signed(entry) < 9000]


def bind_pose(skeleton):
    """Track i of a skeleton is bone i."""
    translations, rotations = skeleton.frames[0]
    return [[translations[i] if i < len(translations) else (0.0, 0.0, 0.0),
             rotations[i] if i < len(rotations) else (0.0, 0.0, 0.0, 1.0)] for i in range(len(skeleton.bones))]


def frame_pose(skeleton, anim, frame):
    pose = bind_pose(skeleton)
    for which in (0, 1):
        for bone, value in zip(anim.tracks(which), anim.frames[frame][which]):
            if bone < len(pose):
                pose[bone][which] = value
    return pose


def blend(a, b, t):
    cosine = sum(x * y for x, y in zip(a, b))
    if cosine < 0:
        cosine, b = -cosine, [-x for x in b]
    if cosine >= 0.99999:
        return [x * (1 - t) + y * t for x, y in zip(a, b)]
    angle = math.acos(cosine)
    first, second = math.sin((1 - t) * angle) / math.sin(angle), math.sin(t * angle) / math.sin(angle)
    return [x * first + y * second for x, y in zip(a, b)]


def place(time, anim):
    """Frame and fraction; times go round at the end time."""
    at = time % anim.end * anim.rate
    return int(at), at - int(at)


def local_pose(skeleton, anim, frame, fraction):
    if anim is None or not anim.frames:
        return bind_pose(skeleton)
    last = len(anim.frames) - 1
    here = frame_pose(skeleton, anim, min(frame, last))
    there = frame_pose(skeleton, anim, frame + 1 if frame < last else 0)
    tracks = anim.tracks(0), anim.tracks(1)
    return [[[a + (b - a) * fraction for a, b in zip(here[i][0], there[i][0])] if i in tracks[0] else here[i][0],
             blend(here[i][1], there[i][1], fraction) if i in tracks[1] else here[i][1]]
            for i in range(len(here))]


def product(a, b):
    """Hamilton's: turns by b, then by a."""
    ax, ay, az, aw = a
    bx, by, bz, bw = b
    return (aw * bx + ax * bw + ay * bz - az * by, aw * by - ax * bz + ay * bw + az * bx,
            aw * bz + ax * by - ay * bx + az * bw, aw * bw - ax * bx - ay * by - az * bz)


def turned(vector, rotation):
    x, y, z, w = rotation
    return product(product(rotation, (*vector, 0.0)), (-x, -y, -z, w))[:3]


def world_pose(skeleton, pose):
    """Bones without a parent, or whose parent leads nowhere, stand alone."""
    parents = [parent for _, parent in skeleton.bones]

    def usable(bone):
        parent = parents[bone]
        if not 0 <= parent < len(parents):
            return False
        seen = set()
        while 0 <= parent < len(parents) and parent not in seen:
            if parent == bone:
                return False
            seen.add(parent)
            parent = parents[parent]
        return True

    def world(bone):
        translation, rotation = pose[bone]
        if not usable(bone):
            return translation, rotation
        above_translation, above_rotation = world(parents[bone])
        return ([a + b for a, b in zip(above_translation, turned(translation, above_rotation))],
                product(above_rotation, rotation))

    return [world(bone) for bone in range(len(pose))]


def sample(skeleton, anim, frame, fraction):
    """As the program prints it."""
    pose = local_pose(skeleton, anim, frame, fraction)
    return [{"name": name.decode("utf-8"), "translation": local[0], "rotation": local[1],
             "world_translation": world[0], "world_rotation": world[1]}
            for (name, _), local, world in zip(skeleton.bones, pose, world_pose(skeleton, pose))]
