#!/usr/bin/env python3
"""Writes the example drawings with ezdxf, an independent DXF library:

  resources/survey-symbols.dxf  the side drawing the example classifier takes resources from:
                                survey layers, a label text style, a dimension style and symbol
                                blocks (some with attributes);
  utility-survey.dxf            a small surveyed street to classify: kerbs, a building, pipes,
                                manholes, trees and spot levels on plain layers.

Run from the repository root: /usr/bin/python3 examples/make_drawings.py
The same script always writes the same bytes.
"""
import math
import os
import pathlib
import sys

import ezdxf

HERE = pathlib.Path(__file__).resolve().parent

LAYERS = [  # name, colour, linetype
    ("SV_ROAD_EDGE", 8, "Continuous"),
    ("SV_KERB", 9, "Continuous"),
    ("SV_FOOTPATH", 31, "Continuous"),
    ("SV_BUILDING", 7, "Continuous"),
    ("SV_WALL", 33, "Continuous"),
    ("SV_FENCE", 32, "Continuous"),
    ("SV_BOUNDARY", 6, "Continuous"),
    ("SV_WATER", 5, "Continuous"),
    ("SV_SEWER", 34, "Continuous"),
    ("SV_STORM", 4, "Continuous"),
    ("SV_GAS", 2, "Continuous"),
    ("SV_POWER", 1, "Continuous"),
    ("SV_TELECOM", 3, "Continuous"),
    ("SV_STREET_FURNITURE", 40, "Continuous"),
    ("SV_VEGETATION", 82, "Continuous"),
    ("SV_TREE", 94, "Continuous"),
    ("SV_LEVEL", 7, "Continuous"),
    ("SV_STATION", 1, "Continuous"),
    ("SV_TEXT", 7, "Continuous"),
    ("SV_DIMENSION", 140, "Continuous"),
    ("SV_AREA", 252, "Continuous"),
]


def symbol_blocks(doc):
    def circle_block(name, radius, extra=None):
        block = doc.blocks.new(name)
        block.add_circle((0, 0), radius)
        if extra:
            extra(block)
        return block

    circle_block("MANHOLE", 0.6, lambda b: b.add_line((-0.6, 0), (0.6, 0)))
    circle_block("GULLY", 0.3, lambda b: b.add_lwpolyline([(-0.3, -0.3), (0.3, 0.3)]))
    circle_block("VALVE", 0.25, lambda b: b.add_lwpolyline([(-0.25, -0.25), (0.25, 0.25), (0.25, -0.25), (-0.25, 0.25)], close=True))
    circle_block("HYDRANT", 0.3, lambda b: b.add_line((0, -0.3), (0, 0.3)))
    circle_block("LAMP_POST", 0.2, lambda b: b.add_line((0, 0.2), (0, 0.8)))
    circle_block("POLE", 0.15)
    circle_block("SIGN", 0.2, lambda b: b.add_lwpolyline([(-0.3, 0.4), (0.3, 0.4), (0, 0.9)], close=True))
    circle_block("BOLLARD", 0.1)
    circle_block("INSPECTION_CHAMBER", 0.4, lambda b: b.add_lwpolyline([(-0.4, -0.4), (0.4, -0.4), (0.4, 0.4), (-0.4, 0.4)], close=True))

    tree = doc.blocks.new("TREE")
    tree.add_circle((0, 0), 0.15)
    tree.add_circle((0, 0), 1.5)
    tree.add_attdef("SPECIES", (0.3, -0.3), dxfattribs={"height": 0.25, "prompt": "Species"})
    tree.add_attdef("CROWN", (0.3, -0.7), dxfattribs={"height": 0.25, "prompt": "Crown diameter"})

    level = doc.blocks.new("SPOT_LEVEL")
    level.add_line((-0.1, -0.1), (0.1, 0.1))
    level.add_line((-0.1, 0.1), (0.1, -0.1))
    level.add_attdef("LEVEL", (0.15, 0.05), dxfattribs={"height": 0.2, "prompt": "Level"})

    station = doc.blocks.new("STATION")
    station.add_lwpolyline([(0, 0.35), (0.3, -0.2), (-0.3, -0.2)], close=True)
    station.add_point((0, 0))
    station.add_attdef("NAME", (0.4, 0), dxfattribs={"height": 0.25, "prompt": "Station name"})


def side_drawing():
    doc = ezdxf.new("R2018", setup=False)
    for name, colour, linetype in LAYERS:
        doc.layers.add(name, color=colour, linetype=linetype)
    doc.styles.add("SV_Labels", font="romans.shx")
    doc.styles.add("SV_Titles", font="romanc.shx")
    dimstyle = doc.dimstyles.new("SV_Metric")
    dimstyle.dxf.dimtxt = 0.25
    dimstyle.dxf.dimasz = 0.2
    dimstyle.dxf.dimdec = 2
    symbol_blocks(doc)
    doc.saveas(HERE / "resources" / "survey-symbols.dxf")


def survey_drawing():
    doc = ezdxf.new("R2018", setup=False)
    for name, colour in (("ROADS", 8), ("BUILDINGS", 7), ("UTILITIES", 5), ("TREES", 3), ("LEVELS", 7)):
        doc.layers.add(name, color=colour)
    msp = doc.modelspace()
    # A street 60 m long, 7 m between kerbs, footpaths 2 m wide.
    for y in (0.0, 7.0):
        msp.add_line((0, y), (60, y), dxfattribs={"layer": "ROADS"})
    for y in (-2.0, 9.0):
        msp.add_lwpolyline([(0, y), (60, y)], dxfattribs={"layer": "ROADS"})
    msp.add_lwpolyline([(10, 11), (24, 11), (24, 20), (10, 20)], close=True, dxfattribs={"layer": "BUILDINGS"})
    msp.add_lwpolyline([(32, 11), (50, 11), (50, 22), (32, 22)], close=True, dxfattribs={"layer": "BUILDINGS"})
    # Water along one side, sewer along the middle, with manholes every 20 m.
    msp.add_lwpolyline([(0, 1.5), (60, 1.5)], dxfattribs={"layer": "UTILITIES"})
    msp.add_lwpolyline([(0, 3.5), (60, 3.5)], dxfattribs={"layer": "UTILITIES"})
    for x in (5, 25, 45):
        msp.add_circle((x, 3.5), 0.6, dxfattribs={"layer": "UTILITIES"})
    for i in range(6):
        x = 4 + i * 10
        msp.add_circle((x, -4), 1.5, dxfattribs={"layer": "TREES"})
    for i in range(8):
        x, y = 3 + i * 7.5, 3.5 + math.sin(i) * 2
        msp.add_point((x, y), dxfattribs={"layer": "LEVELS"})
        msp.add_text(f"{101.2 + i * 0.15:.2f}", dxfattribs={"layer": "LEVELS", "height": 0.2, "insert": (x + 0.2, y)})
    doc.saveas(HERE / "utility-survey.dxf")


if __name__ == "__main__":
    # ezdxf orders the CLASSES section by a set of names: the same bytes need the same string hashes.
    if os.environ.get("PYTHONHASHSEED") != "0":
        os.execve(sys.executable, [sys.executable] + sys.argv, dict(os.environ, PYTHONHASHSEED="0"))
    ezdxf.options.write_fixed_meta_data_for_testing = True  # no time stamps or random GUIDs
    side_drawing()
    survey_drawing()
