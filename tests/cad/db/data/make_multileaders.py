#!/usr/bin/python3
"""Writes a drawing with multileaders made by an independent writer (ezdxf), in the given version:
an MTEXT multileader with two leaders (the left one with two lines), a block multileader (scale 2,
rotated 30 degrees) and a second MTEXT multileader with one leader.

Usage: make_multileaders.py OUT.dxf [VERSION]"""
import sys

import ezdxf
from ezdxf.math import Vec2
from ezdxf.render.mleader import BlockAlignment, ConnectionSide

doc = ezdxf.new(sys.argv[2] if len(sys.argv) > 2 else "R2018", setup=True)
msp = doc.modelspace()
for name, radius in (("B", 1), ("C", 2)):
    doc.blocks.new(name).add_circle((0, 0), radius)

ml = msp.add_multileader_mtext("Standard")
ml.set_content("first\\Psecond ĐŽČ", char_height=1.5)
ml.add_leader_line(ConnectionSide.left, [Vec2(1, 2), Vec2(3, 4)])
ml.add_leader_line(ConnectionSide.left, [Vec2(2, -3)])
ml.add_leader_line(ConnectionSide.right, [Vec2(40, 2)])
ml.build(insert=Vec2(10, 10))

mb = msp.add_multileader_block("Standard")
mb.set_content(name="B", scale=2, alignment=BlockAlignment.center_extents)
mb.add_leader_line(ConnectionSide.left, [Vec2(40, 2)])
mb.build(insert=Vec2(50, 10), rotation=30)

mt = msp.add_multileader_mtext("Standard")
mt.set_content("third", char_height=2)
mt.add_leader_line(ConnectionSide.left, [Vec2(-20, -20)])
mt.build(insert=Vec2(-10, -10))

doc.saveas(sys.argv[1])
