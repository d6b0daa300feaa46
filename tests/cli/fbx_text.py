"""Writes small FBX files of the text form for tests, out of nodes and keys; from docs/formats/fbx.md."""

TICKS = 46186158000


def properties(pairs):
    lines = ['P: "%s", "", "", "A",%s' % (name, ",".join(map(str, values))) for name, values in pairs]
    return "Properties70: {\n%s\n}\n" % "\n".join(lines)


def array(name, values):
    return "%s: *%d {\na: %s\n}\n" % (name, len(values), ",".join(map(str, values)))


def curve(number, keys):
    return 'AnimationCurve: %d, "AnimCurve::", "" {\n%s%s%s%s%s}\n' % (
        number, array("KeyTime", [round(time * TICKS) for time, _ in keys]),
        array("KeyValueFloat", [value for _, value in keys]), array("KeyAttrFlags", [4]),
        array("KeyAttrDataFloat", [0] * 4), array("KeyAttrRefCount", [len(keys)]))


def text(nodes, keys, unit=1.0, rate=20, axes=(("Coord", 0, 1), ("Up", 1, 1), ("Front", 2, 1)), takes=("walk",),
         has_layers=True):
    """nodes: (name, class, index of the parent or None, T, R in degrees, S). keys: {(node, "T" or "R"): [(seconds,
    triple)]}. Straight lines between keys."""
    settings = [("UnitScaleFactor", [unit]), ("TimeMode", [14]), ("CustomFrameRate", [rate])]
    for name, axis, sign in axes:
        settings += [(name + "Axis", [axis]), (name + "AxisSign", [sign])]
    objects, links = "", []
    for i, (name, kind, parent, moved, turned, scaled) in enumerate(nodes):
        objects += 'Model: %d, "Model::%s", "%s" {\n%s}\n' % (100 + i, name, kind, properties(
            [("InheritType", [1]), ("Lcl Translation", moved), ("Lcl Rotation", turned), ("Lcl Scaling", scaled)]))
        links.append('"OO",%d,%d' % (100 + i, 0 if parent is None else 100 + parent))
    for i, take in enumerate(takes):
        objects += 'AnimationStack: %d, "AnimStack::%s", "" {\n}\n' % (200 + i, take)
        if has_layers:
            objects += 'AnimationLayer: %d, "AnimLayer::Base", "" {\n}\n' % (300 + i)
            links.append('"OO",%d,%d' % (300 + i, 200 + i))
    for i, ((node, channel), frames) in enumerate(keys.items()):
        number = 1000 + 10 * i
        objects += 'AnimationCurveNode: %d, "AnimCurveNode::%s", "" {\n%s}\n' % (number, channel, properties(
            [("d|" + axis, [0]) for axis in "XYZ"]))
        full = {"T": "Lcl Translation", "R": "Lcl Rotation"}[channel]
        links += ['"OO",%d,300' % number, '"OP",%d,%d, "%s"' % (number, 100 + node, full)]
        for j, axis in enumerate("XYZ"):
            objects += curve(number + 1 + j, [(time, value[j]) for time, value in frames])
            links.append('"OP",%d,%d, "d|%s"' % (number + 1 + j, number, axis))
    return ("; FBX 7.4.0 project file\nFBXHeaderExtension: {\nFBXVersion: 7400\n}\nGlobalSettings: {\n%s}\n"
            "Objects: {\n%s}\nConnections: {\n%s}\n" % (
                properties(settings), objects, "".join("C: %s\n" % link for link in links))).encode()
