#!/usr/bin/python3
"""Writes a drawing for explode: a polyface and a polygon mesh (closed one way), multilines (a style with miters, square, round and inner-arc caps,
elements of different colours) in model space and in a block, and a block holding hatches of every
boundary kind (lines, counter-clockwise and clockwise arcs, an elliptic arc, a spline, a polyline
path with bulges) with a pattern, a solid hatch and a wipeout; the block is referenced rotated and
scaled, mirrored, and in a tilted plane. Usage: make_explode_kinds.py OUT.dxf"""
import math
import sys
import ezdxf

doc = ezdxf.new("R2018")
msp = doc.modelspace()
for layer in ("WALLS", "MESH"):
    doc.layers.add(layer)  # entities on a layer the drawing does not define are an audit finding
capped = doc.mline_styles.new("CAPPED")
capped.elements.append(0.5, 1, "BYLAYER")
capped.elements.append(0.2, 2, "BYLAYER")
capped.elements.append(-0.2, 2, "BYLAYER")
capped.elements.append(-0.5, 3, "BYLAYER")
capped.dxf.flags = capped.MITER | capped.START_SQUARE | capped.START_INNER_ARC | capped.END_ROUND | capped.END_INNER_ARC
doc.header["$CMLSTYLE"] = "CAPPED"

msp.add_mline([(0, 0), (10, 0), (10, 6), (16, 9)], dxfattribs={"style_name": "CAPPED", "layer": "WALLS"})
msp.add_mline([(20, 0), (30, 0), (25, 8)], close=True, dxfattribs={"style_name": "CAPPED", "color": 5})
faces = msp.add_polyface(dxfattribs={"layer": "MESH"})
faces.append_faces([[(100, 0, 0), (102, 0, 0), (102, 2, 1), (100, 2, 1)], [(102, 0, 0), (104, 0, 0), (102, 2, 1)]], dxfattribs={"color": 4})
faces.optimize()
tube = msp.add_polymesh(size=(3, 4))
for m in range(3):
    for n in range(4):
        tube.set_mesh_vertex((m, n), (110 + 2 * m, 2 * math.cos(n * math.pi / 2), 2 * math.sin(n * math.pi / 2)))
tube.close(False, True)

block = doc.blocks.new("HB", base_point=(1, 1))
edges = block.add_hatch(color=3)
edges.set_pattern_fill("ANSI31", scale=0.5, angle=15)
path = edges.paths.add_edge_path()
path.add_line((0, 0), (10, 0))
path.add_arc((10, 5), radius=5, start_angle=270, end_angle=90)
path.add_arc((5, 10), radius=5, start_angle=180, end_angle=360, ccw=False)  # a bite, clockwise
path.add_ellipse((0, 7.5), major_axis=(0, 2.5), ratio=0.5, start_angle=0, end_angle=180)
path.add_spline(control_points=[(0, 5), (-1, 3), (-1, 2), (0, 0)], knot_values=[0, 0, 0, 0, 1, 1, 1, 1], degree=3)
edges.paths.add_polyline_path([(2, 2, 0.5), (4, 2, 0), (4, 4, -0.3)], is_closed=True)
solid = block.add_hatch(color=1)
solid.paths.add_polyline_path([(12, 0), (14, 0), (14, 2), (12, 2)], is_closed=True)
block.add_mline([(0, -2), (6, -2), (6, -5)], dxfattribs={"style_name": "CAPPED"})
block.add_wipeout([(15, 5), (18, 5), (18, 8)])

msp.add_blockref("HB", (40, 0), dxfattribs={"xscale": 2, "yscale": 2, "zscale": 2, "rotation": 30})
msp.add_blockref("HB", (60, 10), dxfattribs={"xscale": -1.5, "yscale": 1.5, "zscale": 1.5, "rotation": 45})
msp.add_blockref("HB", (80, 0, 2), dxfattribs={"rotation": 60, "extrusion": (0.6, 0, 0.8)})
doc.saveas(sys.argv[1])
