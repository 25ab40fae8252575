#!/usr/bin/python3
"""Prints a drawing as an independent reader sees it: its version on the first line, then every
entity of every block (model and paper space first), one a line: "<block> <handle> <type>" and its
DXF attributes (owner, and values equal to their default, left out: readers of R12 and of 2018
drawings fill in different defaults), with the vertices and attributes that follow a POLYLINE or INSERT."""
import sys
import ezdxf


def value(v):
    if isinstance(v, float):
        return f"{v:.9g}"
    if hasattr(v, "x"):
        return ",".join(f"{c:.9g}" for c in v)
    return str(v)


def line(block, e):
    attribs = e.dxf.all_existing_dxf_attribs()
    parts = [block, attribs.pop("handle", "?"), e.dxftype()]
    attribs.pop("owner", None)
    for k, v in sorted(attribs.items()):
        definition = e.DXFATTRIBS.get(k)
        if definition is not None and definition.default is not None and v == definition.default:
            continue
        parts.append(f"{k}={value(v)}")
    return " ".join(parts)


doc = ezdxf.readfile(sys.argv[1])
print(doc.dxfversion)
spaces = {"$MODEL_SPACE": "*MODEL_SPACE", "$PAPER_SPACE": "*PAPER_SPACE"}
for layout in doc.blocks:
    name = layout.name.upper()
    name = spaces.get(name, name)
    for e in layout:
        print(line(name, e))
        subs = e.vertices if e.dxftype() == "POLYLINE" else e.attribs if e.dxftype() == "INSERT" else []
        for sub in subs:
            print(line(name, sub))
