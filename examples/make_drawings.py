#!/usr/bin/env python3
"""Writes the example drawings with ezdxf, an independent DXF library:

  resources/survey-symbols.dxf  the side drawing the example classifier takes resources from:
                                survey layers, a label text style, a dimension style and symbol
                                blocks (some with attributes);
  utility-survey.dxf            a small surveyed street half way through classification: kerbs,
                                buildings, pipes, manholes, trees and spot levels, some on survey
                                layers with object data, the rest on plain layers.

Run from the repository root: /usr/bin/python3 examples/make_drawings.py
The same script always writes the same bytes.
"""
import math
import os
import pathlib
import re
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


# Object-data tables as the classifier defines them, fields in order as (name, group code): 1 text,
# 40 real, 90 integer. The first field is the key: it holds the display name of the record's class.
TABLES = {
    "Road": [("id", 1), ("name", 1), ("surface", 1), ("width", 40)],
    "Building": [("id", 1), ("address", 1), ("storeys", 90), ("use", 1)],
    "Pipe": [("id", 1), ("material", 1), ("diameter", 90), ("depth", 40), ("owner", 1)],
    "Chamber": [("id", 1), ("cover_level", 40), ("invert_level", 40), ("cover", 1), ("owner", 1)],
    "Tree": [("id", 1), ("species", 1), ("crown", 40), ("height", 40), ("condition", 1)],
    "Level": [("id", 1), ("level", 40), ("method", 1)],
    # Left from the tree register of an earlier survey: the classifier has no such table.
    "Tree_register": [("id", 1), ("species", 1), ("girth", 40)],
}


def define_tables(doc):
    """The ODEMUDATA dictionary: per table, pairs of a field name and an empty value of its type."""
    empty = {1: "", 40: 0.0, 90: 0}
    od = doc.rootdict.add_new_dict("ODEMUDATA")
    for name, fields in TABLES.items():
        values = []
        for field, code in fields:
            values += [(1, field), (code, empty[code])]
        od.add_xrecord(name).reset(values)


def attach(entity, table, *values):
    """One record of `table` in the entity's extension dictionary, under the table's name."""
    fields = TABLES[table]
    assert len(values) == len(fields), table
    xdict = entity.new_extension_dict()
    xdict.add_xrecord(table).reset([(code, value) for (_, code), value in zip(fields, values)])
    return entity


def add_linetypes(doc, names):
    """The named linetypes of the classifier's .lin file, as that file defines them."""
    lines = [line.strip() for line in (HERE / "resources" / "survey.lin").read_text().splitlines()]
    lines = [line for line in lines if line and not line.startswith(";")]
    for header, pattern in zip(lines, lines[1:]):
        name, _, description = header.lstrip("*").partition(",")
        if not header.startswith("*") or name not in names:
            continue
        # The pattern's length: its dashes and gaps, not the numbers inside a text's brackets.
        length = sum(abs(float(item)) for item in re.sub(r"\[.*?\]", "", pattern).split(",")[1:] if item)
        doc.linetypes.add(name, pattern, description=description, length=length)


def survey_drawing():
    """A surveyor's drawing half way through classification: some objects moved to the survey
    layers with their object data (most of it right, some of it not), the rest still on the
    plain layers they were drawn on. examples/README.md lists what each check finds."""
    doc = ezdxf.new("R2018", setup=False)
    for name, colour in (("ROADS", 8), ("BUILDINGS", 7), ("UTILITIES", 5), ("TREES", 3), ("LEVELS", 7)):
        doc.layers.add(name, color=colour)
    # The survey layers in use so far, as the side drawing defines them, and the pipe linetypes.
    in_use = ("SV_ROAD_EDGE", "SV_BUILDING", "SV_WATER", "SV_SEWER", "SV_TREE", "SV_LEVEL")
    for name, colour, linetype in LAYERS:
        if name in in_use:
            doc.layers.add(name, color=colour, linetype=linetype)
    add_linetypes(doc, ("WATER_PIPE", "SEWER_PIPE"))
    define_tables(doc)
    msp = doc.modelspace()

    # A street 60 m long, 7 m between kerbs, footpaths 2 m wide. The surface of the north edge
    # is not filled in yet (a required field).
    south = msp.add_line((0, 0), (60, 0), dxfattribs={"layer": "SV_ROAD_EDGE"})
    attach(south, "Road", "Road edge", "Station Street", "Asphalt", 7.0)
    north = msp.add_line((0, 7), (60, 7), dxfattribs={"layer": "SV_ROAD_EDGE"})
    attach(north, "Road", "Road edge", "Station Street", "", 7.0)
    for y in (-2.0, 9.0):
        msp.add_lwpolyline([(0, y), (60, y)], dxfattribs={"layer": "ROADS"})

    # Two buildings; "Retail" is not one of the uses the classifier lists (a field not required).
    outline = {"layer": "SV_BUILDING", "const_width": 0.1}
    first = msp.add_lwpolyline([(10, 11), (24, 11), (24, 20), (10, 20)], close=True, dxfattribs=outline)
    attach(first, "Building", "Building outline", "12 Station Street", 2, "Residential")
    second = msp.add_lwpolyline([(32, 11), (50, 11), (50, 22), (32, 22)], close=True, dxfattribs=outline)
    attach(second, "Building", "Building outline", "14 Station Street", 3, "Retail")

    # Water along one side, in a material the classifier does not list; sewer along the middle,
    # its diameter typed as 3000 mm where 300 was meant (the range is 15 to 2000).
    water = msp.add_lwpolyline([(0, 1.5), (60, 1.5)], dxfattribs={"layer": "SV_WATER", "linetype": "WATER_PIPE"})
    attach(water, "Pipe", "Water main", "Asbestos cement", 100, 1.2, "Water board")
    sewer = msp.add_lwpolyline([(0, 3.5), (60, 3.5)], dxfattribs={"layer": "SV_SEWER", "linetype": "SEWER_PIPE"})
    attach(sewer, "Pipe", "Foul sewer", "Vitrified clay", 3000, 2.4, "Council")

    # Manholes every 20 m: the second's owner is not known yet (a field not required); the third
    # still names its class as an earlier classifier did, "Sewer manhole", now "Manhole".
    manholes = [("Manhole", 101.35, 98.95, "Round", "Council"), ("Manhole", 101.62, 99.1, "Square", ""),
                ("Sewer manhole", 101.9, 99.3, "Round", "Council")]
    for x, row in zip((5, 25, 45), manholes):
        attach(msp.add_circle((x, 3.5), 0.6, dxfattribs={"layer": "SV_SEWER"}), "Chamber", *row)

    # Trees: the first classified, the second without its species (required), the third with a
    # record of the earlier tree register only, the rest not classified yet.
    trees = [msp.add_circle((4 + i * 10, -4), 1.5, dxfattribs={"layer": "TREES"}) for i in range(6)]
    for tree, row in zip(trees, [("Tree", "London plane", 6.0, 12.0, "Good"), ("Tree", "", 4.0, 7.5, "Fair")]):
        tree.dxf.layer = "SV_TREE"
        attach(tree, "Tree", *row)
    attach(trees[2], "Tree_register", "Tree", "Lime", 1.4)

    # Spot levels with their texts: three levels classified, the third still on its old layer.
    for i in range(8):
        x, y = 3 + i * 7.5, 3.5 + math.sin(i) * 2
        level = round(101.2 + i * 0.15, 2)
        spot = msp.add_point((x, y), dxfattribs={"layer": "SV_LEVEL" if i < 2 else "LEVELS"})
        if i < 3:
            attach(spot, "Level", "Spot level", level, "GNSS" if i != 1 else "Total station")
        msp.add_text(f"{level:.2f}", dxfattribs={"layer": "LEVELS", "height": 0.2, "insert": (x + 0.2, y)})
    doc.saveas(HERE / "utility-survey.dxf")


if __name__ == "__main__":
    # ezdxf orders the CLASSES section by a set of names: the same bytes need the same string hashes.
    if os.environ.get("PYTHONHASHSEED") != "0":
        os.execve(sys.executable, [sys.executable] + sys.argv, dict(os.environ, PYTHONHASHSEED="0"))
    ezdxf.options.write_fixed_meta_data_for_testing = True  # no time stamps or random GUIDs
    side_drawing()
    survey_drawing()
