#!/usr/bin/python3
"""Prints model space as an independent reader sees it, one entity a line:
"<handle> <type> layer=.. color=.. rgb=.. linetype=.. ltscale=.. lineweight=.." plus, per kind,
the values the database tests set (text, style, height, block name, closed, width, pattern)."""
import sys
import ezdxf

doc = ezdxf.readfile(sys.argv[1])
for e in doc.modelspace():
    d = e.dxf
    out = [d.handle, e.dxftype(), f"layer={d.layer}", f"color={d.get('color', 256)}"]
    if d.hasattr("true_color"):
        out.append(f"rgb={d.true_color:06X}")
    out += [f"linetype={d.get('linetype', 'BYLAYER')}", f"ltscale={d.get('ltscale', 1.0):g}", f"lineweight={d.get('lineweight', -1)}"]
    t = e.dxftype()
    if t == "TEXT":
        out += [f"text={d.text}", f"height={d.height:g}", f"halign={d.get('halign', 0)}", f"valign={d.get('valign', 0)}"]
    if t == "MTEXT":
        out += [f"text={e.text}", f"attach={d.attachment_point}"]
    if t == "LWPOLYLINE":
        out += [f"closed={int(e.closed)}", f"width={d.get('const_width', 0):g}", f"points={len(e)}"]
    if t == "INSERT":
        out += [f"name={d.name}", f"scale={d.get('xscale', 1):g}"]
    if t == "HATCH":
        out += [f"pattern={d.pattern_name}", f"solid={d.solid_fill}", f"paths={len(e.paths)}"]
    print(" ".join(out))
