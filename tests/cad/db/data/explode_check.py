#!/usr/bin/python3
"""Compares our explode with an independent one. Usage: explode_check.py BEFORE.dxf AFTER.dxf H1,H2...
Constant attribute definitions are compared as texts; hatches by their boundaries (in any
order), multilines placed by a reference by their pieces. The entities H1, H2... of BEFORE's model space are exploded by ezdxf (virtual entities); the entities
of AFTER's model space that BEFORE does not have are ours. Each piece is reduced to where it shows:
curves to their end points (in either order) and the point half way along, texts to their insertion
point, height and the directions their glyphs run, block references to their placement matrix.
Prints the pieces only one side has, or nothing."""
import math
import sys
import ezdxf
from ezdxf import path as ezpath
from ezdxf.math import Vec3

def r(v):
    return tuple(round(c, 6) + 0.0 for c in v)

def curve(p):
    pts = list(p.flattening(1e-4))
    total = sum((b - a).magnitude for a, b in zip(pts, pts[1:]))
    walked, mid = 0.0, pts[0]
    for a, b in zip(pts, pts[1:]):
        step = (b - a).magnitude
        if walked + step >= total / 2:
            mid = a.lerp(b, (total / 2 - walked) / step if step else 0)
            break
        walked += step
    if total < 1e-9:
        return None  # a segment between two equal vertices shows nothing
    if p.start.isclose(p.end):  # closed: where it starts is a matter of representation
        box = ezdxf.math.BoundingBox(pts)
        return ("CLOSED", tuple(round(c, 2) + 0.0 for c in box.center), round(total, 2))
    ends = sorted([r(p.start), r(p.end)])
    return ("CURVE", ends[0], ends[1], tuple(round(c, 3) + 0.0 for c in mid))

def signature(e):
    t = e.dxftype()
    if t == "HATCH":  # its boundary paths where they lie, and the fill's colour
        return ("HATCH", e.dxf.color, tuple(sorted((curve(p) for p in ezpath.from_hatch(e)), key=repr)))
    if t == "WIPEOUT":
        return ("WIPEOUT", tuple(r(v) for v in e.boundary_path_wcs()))
    if t == "INSERT":
        return ("INSERT", e.dxf.name, tuple(round(x, 6) + 0.0 for x in e.matrix44()))
    if t in ("TEXT", "ATTDEF"):
        ocs = e.ocs()
        a = math.radians(e.dxf.get("rotation", 0))
        x = Vec3(ocs.to_wcs(Vec3.from_angle(a)))
        y = Vec3(ocs.to_wcs(Vec3.from_angle(a + math.pi / 2)))
        if e.dxf.get("text_generation_flag", 0) & 2: x = -x
        if e.dxf.get("text_generation_flag", 0) & 4: y = -y
        return ("TEXT", e.dxf.text, r(ocs.to_wcs(e.dxf.insert)), round(e.dxf.height, 6), r(x), r(y))
    return curve(ezpath.make_path(e))

before = ezdxf.readfile(sys.argv[1])
after = ezdxf.readfile(sys.argv[2])
exploded = set(sys.argv[3].split(","))
theirs, ours = [], []
old = set()
for e in before.modelspace():
    old.add(e.dxf.handle)
    if e.dxf.handle in exploded:
        theirs += [signature(v) for v in e.virtual_entities() if v.dxftype() not in ("ATTDEF", "MLINE")]
        if e.dxftype() == "INSERT":
            # A multiline in the block is compared exploded (AFTER holds its pieces): its own pieces
            # placed by the reference. ezdxf's placing of a multiline keeps the element offsets
            # unscaled when the reference turns, and draws the caps of a tilted one in the wrong plane.
            for m in before.blocks[e.dxf.name].query("MLINE"):
                theirs += [signature(v.copy().transform(e.matrix44())) for v in m.virtual_entities()]
            # Constant attribute definitions show as texts, placed as the reference places them.
            for d in before.blocks[e.dxf.name].query("ATTDEF"):
                if d.is_const and not d.is_invisible:
                    c = d.copy()
                    c.transform(e.matrix44())
                    theirs.append(signature(c))
            theirs += [("TEXT-ATTRIB", a.dxf.text) for a in e.attribs if not a.is_invisible]
for e in after.modelspace():
    if e.dxf.handle not in old:
        ours.append(signature(e))
        if e.dxftype() == "TEXT" and e.dxf.text.startswith("attr:"):
            ours.append(("TEXT-ATTRIB", e.dxf.text))
# Attribute texts are compared by value only: ezdxf has no TEXT for them among virtual entities.
ours = [s for s in ours if not (s[0] == "TEXT" and s[1].startswith("attr:"))]
def count(items):
    out = {}
    for s in items:
        if s is not None: out[s] = out.get(s, 0) + 1
    return out
a, b = count(theirs), count(ours)
for s in sorted(set(a) | set(b), key=repr):
    if a.get(s, 0) != b.get(s, 0):
        print(f"theirs {a.get(s, 0)} ours {b.get(s, 0)}: {s}")
