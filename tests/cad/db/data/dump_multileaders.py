#!/usr/bin/python3
"""Prints every MULTILEADER of model space as an independent reader (ezdxf) sees it, numbers with
9 significant digits:
  <handle> <content> scale=.. base=x,y,z height=.. arrow=.. gap=.. plane=x,y,z
  text "<contents>" at=.. direction=.. rotation=.. attachment=..      (MTEXT content)
  block <handle> at=.. scale=.. rotation=..               (block content)
  leader <index> at=.. dogleg=.. <length>
  line <index> <vertex> <vertex> ...
  own type=<content type> scale=.. arrow=.. block=<344> block_scale=.. block_rotation=.. render=<kinds>
The last line holds the entity's own copies of context values and the kinds ezdxf renders it into."""
import sys
from collections import Counter

import ezdxf


def num(v):
    return f"{v:.9g}"


def pt(v):
    return ",".join(num(c) for c in v)


doc = ezdxf.readfile(sys.argv[1])
for e in doc.modelspace().query("MULTILEADER MLEADER"):
    c = e.context
    kind = "mtext" if c.mtext is not None else "block" if c.block is not None else "none"
    print(f"{e.dxf.handle} {kind} scale={num(c.scale)} base={pt(c.base_point)} height={num(c.char_height)} "
          f"arrow={num(c.arrow_head_size)} gap={num(c.landing_gap_size)} plane={pt(c.plane_origin)}")
    if c.mtext is not None:
        m = c.mtext
        print(f'text "{m.default_content}" at={pt(m.insert)} direction={pt(m.text_direction)} rotation={num(m.rotation)} '
              f'attachment={m.alignment}')
    if c.block is not None:
        b = c.block
        print(f"block {b.block_record_handle} at={pt(b.insert)} scale={pt(b.scale)} rotation={num(b.rotation)}")
    for leader in c.leaders:
        print(f"leader {leader.index} at={pt(leader.last_leader_point)} dogleg={pt(leader.dogleg_vector)} {num(leader.dogleg_length)}")
        for line in leader.lines:
            print(f"line {line.index} " + " ".join(pt(v) for v in line.vertices))
    kinds = Counter(v.dxftype() for v in e.virtual_entities())
    d = e.dxf
    print(f"own type={d.content_type} scale={num(d.scale)} arrow={num(d.arrow_head_size)} "
          f"block={d.get('block_record_handle', '-')} block_scale={pt(d.block_scale_vector)} "
          f"block_rotation={num(d.block_rotation)} render=" + ",".join(f"{k}{n}" for k, n in sorted(kinds.items())))
