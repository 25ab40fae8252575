#!/usr/bin/python3
"""Writes a resource drawing with an independent DXF library: a linetype, a layer that uses it, a
text style, a dimension style with its text style and arrow block, blocks (one nested), a multiline
style, a multileader style and a layout with its own paper space. Usage: make_resources.py OUT.dxf"""
import sys
import ezdxf

doc = ezdxf.new("R2018")
doc.linetypes.add("DASHED", pattern=[0.75, 0.5, -0.25], description="Dashed __ __ __")
doc.layers.add("ROADS", color=3, linetype="DASHED")
doc.layers.add("TREES", color=2)
doc.styles.add("ROMANS", font="romans.shx")
arch = doc.dimstyles.add("ARCH")
arch.dxf.dimtxsty = "ROMANS"
arch.set_arrows(blk="ARCHTICK")
leaf = doc.blocks.new("LEAF")
leaf.add_circle((0, 0), 0.2, dxfattribs={"layer": "TREES"})
tree = doc.blocks.new("TREE", base_point=(1, 1))
tree.add_line((0, 0), (0, 2), dxfattribs={"layer": "TREES"})
tree.add_blockref("LEAF", (0, 2))
tree.add_text("oak", dxfattribs={"style": "ROMANS", "height": 0.3})
tree.add_lwpolyline([(0, 0), (1, 0), (1, 1)], dxfattribs={"layer": "ROADS"})
double = doc.mline_styles.new("DOUBLE")
double.elements.append(0.5, 1, "DASHED")
double.elements.append(-0.5, 1, "BYLAYER")
doc.mleader_styles.duplicate_entry("Standard", "CALLOUT")
plan = doc.layouts.new("Plan")
plan.add_line((0, 0), (100, 50), dxfattribs={"layer": "ROADS"})
doc.modelspace().add_blockref("TREE", (5, 5))
doc.saveas(sys.argv[1])
