#!/usr/bin/python3
"""Writes a drawing with one HATCH whose boundary is an edge path of a line, an arc, an elliptic
arc and a spline, plus a second polyline path with a bulge: every boundary kind in one hatch."""
import sys
import ezdxf

doc = ezdxf.new("R2018")
hatch = doc.modelspace().add_hatch(color=3)
edges = hatch.paths.add_edge_path()
edges.add_line((0, 0), (10, 0))
edges.add_arc((10, 5), radius=5, start_angle=270, end_angle=90)
edges.add_ellipse((5, 10), major_axis=(5, 0), ratio=0.5, start_angle=0, end_angle=180)
edges.add_spline(fit_points=[(0, 10), (-2, 5), (0, 0)], control_points=[(0, 10), (-3, 7), (-3, 3), (0, 0)],
                 knot_values=[0, 0, 0, 0, 1, 1, 1, 1], degree=3)
hatch.paths.add_polyline_path([(2, 2, 0.5), (4, 2, 0), (4, 4, 0)], is_closed=True)
doc.saveas(sys.argv[1])
