#!/usr/bin/python3
"""Writes test drawings with ezdxf, an independent DXF library, for the tests and benchmarks.

Usage: gen_dxf.py COUNT OUT [options]

COUNT entities go into model space, kinds taken in turn, each on one of the layers LAYER_00...
Blocks MARK (plain geometry) and TAG (with attribute definitions) are defined and referenced.
The same arguments and seed always give the same file, byte for byte.

Options:
  --version V      R12, R2000, R2004, R2007, R2010, R2013 or R2018 (default R2018)
  --binary         binary DXF instead of ASCII
  --kinds K        basic: lines, circles, arcs, polylines, texts, block references and points;
                   all: every kind the version can hold (default basic)
  --layers N       number of layers LAYER_00... (default 20)
  --sortents N     a draw-order table that moves the first N entities (default 0)
  --seed S         seed of the coordinates and values (default 1)
  --data WHICH     object data, laid out as the store keeps it: "some" gives two of three
                   entities records, "all" every entity, "none" none (default some; R12 drawings
                   cannot hold it and get none)
  --tables N       object-data tables: ROADS, PIPES, then CLASS_03... (default 2)
  --faulty F       the share of records (0 to 1) given a value outside its list or range, or an
                   empty key, so that value checks have something to find (default 0)
  --keep-keys      faulty records keep their key: every record stays of its class, only its
                   values break the rules
  --one-record     one record for every entity that has data (by default every seventh has two)
  --classifier F   also write the classifier that defines the tables' classes, lists and ranges
  --duplicates F   the share (below 1) of entities that are copies of the entity before them,
                   for drawings without object data (--data none)
  --faulty-list F  also write the handles of the entities with a faulty record, one a line

Object data: the named objects dictionary holds "ODEMUDATA" with one table-definition xrecord
per table (a field name under group 1 and a value of the field's type per field); an entity's
extension dictionary holds one records xrecord per table, record after record. Some entities
also carry another application's xrecord, which the store must pass over.
"""
import argparse
import os
import random
import sys

import ezdxf
from ezdxf.math import Vec2

VERSIONS = {"R12": "R12", "R2000": "R2000", "R2004": "R2004", "R2007": "R2007",
            "R2010": "R2010", "R2013": "R2013", "R2018": "R2018"}

MATERIALS = ["PVC", "PE", "Steel", "Concrete", "Cast iron"]
SURFACES = ["Asphalt", "Concrete", "Gravel", "Paving"]


class Table:
    """One object-data table: its fields as (name, group code, allowed values or (low, high))."""

    def __init__(self, name, fields):
        self.name = name
        self.fields = fields

    def definition(self, first_record):
        values = []
        for (field, code, _), value in zip(self.fields, first_record):
            values += [(1, field), (code, value)]
        return values


def make_tables(count):
    # Only integer, real and character fields: a classifier line cannot name a point field.
    tables = [
        # ROADS keeps the shape older tests read: ID, a real WIDTH and an integer LANES.
        Table("ROADS", [("ID", 1, None), ("WIDTH", 40, (2.0, 30.0)), ("LANES", 90, (1, 6))]),
        Table("PIPES", [("ID", 1, None), ("MATERIAL", 1, MATERIALS), ("DIAMETER", 40, (50.0, 1200.0)),
                        ("DEPTH", 40, (0.0, 10.0)), ("SURFACE", 1, SURFACES)]),
    ]
    for n in range(3, count + 1):
        tables.append(Table(f"CLASS_{n:02d}", [("ID", 1, None), ("CODE", 90, (1, 100)), ("NOTE", 1, None)]))
    return tables[:count]


def display_name(table):
    return table.name.replace("_", " ").title()


def field_value(rng, table, index, faulty):
    """A value of the field: inside its list or range, or just outside when `faulty`."""
    field, code, allowed = table.fields[index]
    if index == 0:
        return "" if faulty else display_name(table)  # the key holds the class's name
    if isinstance(allowed, list):
        return "Unobtainium" if faulty else rng.choice(allowed)
    if isinstance(allowed, tuple):
        low, high = allowed
        if code == 90:
            return high + 1 if faulty else rng.randint(low, high)
        return round(high * 2 + 1, 3) if faulty else round(rng.uniform(low, high), 3)
    if code == 10:
        return (round(rng.uniform(0, 1000), 3), round(rng.uniform(0, 1000), 3), 0.0)
    if code == 90:
        return rng.randint(0, 1000)
    if code == 40:
        return round(rng.uniform(0, 100), 3)
    return f"{field.lower()} {rng.randint(1, 999)}"


def record(rng, table, faulty, keep_key=False):
    # Only a field with a list or a range can hold a wrong value; a free text never does.
    breakable = [i for i, (_, _, allowed) in enumerate(table.fields) if i > 0 and allowed is not None]
    bad = rng.choice(breakable) if faulty else -1
    # A faulty record breaks one field only; a key made empty breaks the key.
    if faulty and not keep_key and rng.random() < 0.25:
        bad = 0
    return [field_value(rng, table, i, i == bad) for i in range(len(table.fields))]


def define_tables(doc, tables, rng):
    od = doc.rootdict.add_new_dict("ODEMUDATA")
    for table in tables:
        first = record(rng, table, False)
        if table.name == "ROADS":
            first[1], first[2] = 5.5, 2  # values older tests read back
        od.add_xrecord(table.name).reset(table.definition(first))


def attach_records(entity, table, rows):
    xdict = entity.get_extension_dict() if entity.has_extension_dict else entity.new_extension_dict()
    values = []
    for row in rows:
        values += [(code, value) for (_, code, _), value in zip(table.fields, row)]
    xdict.add_xrecord(table.name).reset(values)


def add_foreign_data(entity):
    xdict = entity.get_extension_dict() if entity.has_extension_dict else entity.new_extension_dict()
    xdict.add_xrecord("OTHER_APP").reset([(1, "data of another program"), (70, 5)])


def setup_resources(doc, layers, modern):
    for n in range(layers):
        doc.layers.add(f"LAYER_{n:02d}", color=n % 7 + 1)
    if "DASHED" not in doc.linetypes:
        doc.linetypes.add("DASHED", [0.6, 0.5, -0.1], description="Dashed __ __ __")
    mark = doc.blocks.new("MARK", base_point=(0, 0))
    mark.add_circle((0, 0), 1)
    mark.add_line((-1, 0), (1, 0))
    mark.add_line((0, -1), (0, 1))
    tag = doc.blocks.new("TAG", base_point=(0, 0))
    tag.add_lwpolyline([(0, 0), (4, 0), (4, 1), (0, 1)], close=True) if modern else \
        tag.add_polyline2d([(0, 0), (4, 0), (4, 1), (0, 1)], close=True)
    tag.add_attdef("NUMBER", (0.2, 0.2), dxfattribs={"height": 0.5})
    tag.add_attdef("OWNER", (0.2, -0.8), dxfattribs={"height": 0.3})


def point(rng, spread=1000.0):
    return (round(rng.uniform(0, spread), 3), round(rng.uniform(0, spread), 3))


def offset(p, dx, dy, z=0.0):
    return (p[0] + dx, p[1] + dy, z)


# Each maker adds one entity of its kind at a place drawn from `rng` and returns it.
def basic_kinds(modern):
    def line(msp, rng, attribs):
        p = point(rng)
        return msp.add_line(p, offset(p, rng.uniform(1, 50), rng.uniform(1, 50)), dxfattribs=attribs)

    def circle(msp, rng, attribs):
        return msp.add_circle(point(rng), round(rng.uniform(0.5, 20), 3), dxfattribs=attribs)

    def arc(msp, rng, attribs):
        return msp.add_arc(point(rng), round(rng.uniform(0.5, 20), 3), rng.randrange(0, 180), rng.randrange(190, 360),
                           dxfattribs=attribs)

    def polyline(msp, rng, attribs):
        p = point(rng)
        shape = [(p[0], p[1], 0, 0, 0.5), (p[0] + 10, p[1], 0, 0, 0), (p[0] + 10, p[1] + 5, 0, 0, -0.3), (p[0], p[1] + 8, 0, 0, 0)]
        if modern:
            return msp.add_lwpolyline(shape, format="xyseb", close=rng.random() < 0.5, dxfattribs=attribs)
        return msp.add_polyline2d([s[:2] for s in shape], close=True, dxfattribs=attribs)

    def text(msp, rng, attribs):
        # Text outside the drawing's code page reaches older versions as \U+ escapes.
        return msp.add_text(f"Straße № {rng.randint(1, 999)}", dxfattribs=dict(attribs, height=2.5, insert=point(rng)))

    def insert(msp, rng, attribs):
        return msp.add_blockref("MARK", point(rng), dxfattribs=dict(attribs, rotation=rng.randrange(0, 360)))

    def point_entity(msp, rng, attribs):
        return msp.add_point(point(rng), dxfattribs=attribs)

    return [line, circle, arc, polyline, text, insert, point_entity]


def every_kind(modern):
    kinds = basic_kinds(modern)

    def tag_insert(msp, rng, attribs):
        ref = msp.add_blockref("TAG", point(rng), dxfattribs=attribs)
        ref.add_auto_attribs({"NUMBER": str(rng.randint(1, 99)), "OWNER": "Council"})
        return ref

    def polyline2d(msp, rng, attribs):
        p = point(rng)
        return msp.add_polyline2d([p, offset(p, 5, 0)[:2], offset(p, 5, 5)[:2]], dxfattribs=attribs)

    def polyline3d(msp, rng, attribs):
        p = point(rng)
        return msp.add_polyline3d([offset(p, 0, 0, 0), offset(p, 4, 0, 1), offset(p, 4, 4, 2)], dxfattribs=attribs)

    def polyface(msp, rng, attribs):
        p = point(rng)
        mesh = msp.add_polyface(dxfattribs=attribs)
        mesh.append_face([offset(p, 0, 0), offset(p, 2, 0), offset(p, 2, 2), offset(p, 0, 2)])
        return mesh

    def face3d(msp, rng, attribs):
        p = point(rng)
        return msp.add_3dface([offset(p, 0, 0), offset(p, 3, 0), offset(p, 3, 3, 1), offset(p, 0, 3, 1)], dxfattribs=attribs)

    def solid(msp, rng, attribs):
        p = point(rng)
        return msp.add_solid([offset(p, 0, 0), offset(p, 2, 0), offset(p, 0, 2), offset(p, 2, 2)], dxfattribs=attribs)

    kinds += [tag_insert, polyline2d, polyline3d, polyface, face3d, solid]
    if not modern:
        return kinds

    def ellipse(msp, rng, attribs):
        return msp.add_ellipse(point(rng), major_axis=(6, 2, 0), ratio=0.4, dxfattribs=attribs)

    def spline(msp, rng, attribs):
        p = point(rng)
        return msp.add_spline([offset(p, 0, 0), offset(p, 3, 4), offset(p, 7, 1), offset(p, 10, 6)], dxfattribs=attribs)

    def xline(msp, rng, attribs):
        return msp.add_xline(point(rng), (1, 1, 0), dxfattribs=attribs)

    def ray(msp, rng, attribs):
        return msp.add_ray(point(rng), (1, 0, 0), dxfattribs=attribs)

    def mtext(msp, rng, attribs):
        return msp.add_mtext(f"Line one\\PLine {rng.randint(2, 99)}", dxfattribs=dict(attribs, insert=point(rng), char_height=1.5))

    def hatch(msp, rng, attribs):
        p = point(rng)
        h = msp.add_hatch(color=rng.randint(1, 7), dxfattribs=attribs)
        if rng.random() < 0.5:
            h.set_pattern_fill("ANSI31", scale=0.5)
        h.paths.add_polyline_path([p, offset(p, 6, 0)[:2], offset(p, 6, 4)[:2], offset(p, 0, 4)[:2]], is_closed=True)
        return h

    def dimension(msp, rng, attribs):
        p = point(rng)
        dim = msp.add_linear_dim(base=offset(p, 0, 3), p1=offset(p, 0, 0), p2=offset(p, 8, 0), dxfattribs=attribs)
        dim.render()
        return dim.dimension

    def mline(msp, rng, attribs):
        p = point(rng)
        return msp.add_mline([p, offset(p, 10, 0)[:2], offset(p, 10, 6)[:2]], dxfattribs=attribs)

    def multileader(msp, rng, attribs):
        p = point(rng)
        builder = msp.add_multileader_mtext("Standard", dxfattribs=attribs)
        builder.set_content(f"note {rng.randint(1, 99)}")
        builder.add_leader_line(ezdxf.render.mleader.ConnectionSide.left, [Vec2(p[0] - 5, p[1] - 5)])
        builder.build(insert=Vec2(p))
        return builder.multileader

    def wipeout(msp, rng, attribs):
        p = point(rng)
        return msp.add_wipeout([p, offset(p, 4, 0)[:2], offset(p, 4, 3)[:2]], dxfattribs=attribs)

    def mesh(msp, rng, attribs):
        p = point(rng)
        m = msp.add_mesh(dxfattribs=attribs)
        with m.edit_data() as data:
            data.vertices = [offset(p, 0, 0), offset(p, 2, 0), offset(p, 2, 2), offset(p, 0, 2)]
            data.faces = [[0, 1, 2, 3]]
        return m

    return kinds + [ellipse, spline, xline, ray, mtext, hatch, dimension, mline, multileader, wipeout, mesh]


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("count", type=int)
    parser.add_argument("out")
    parser.add_argument("--version", default="R2018", choices=sorted(VERSIONS))
    parser.add_argument("--binary", action="store_true")
    parser.add_argument("--kinds", default="basic", choices=["basic", "all"])
    parser.add_argument("--layers", type=int, default=20)
    parser.add_argument("--sortents", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--data", default="some", choices=["none", "some", "all"])
    parser.add_argument("--tables", type=int, default=2)
    parser.add_argument("--faulty", type=float, default=0.0)
    parser.add_argument("--keep-keys", action="store_true")
    parser.add_argument("--one-record", action="store_true")
    parser.add_argument("--classifier")
    parser.add_argument("--faulty-list")
    parser.add_argument("--duplicates", type=float, default=0.0)
    args = parser.parse_args(argv)
    if args.count < 0 or args.layers < 1 or args.tables < 1 or not 0 <= args.faulty <= 1:
        parser.error("COUNT must not be negative, --layers and --tables at least 1, --faulty between 0 and 1")
    if not 0 <= args.duplicates < 1 or (args.duplicates and args.data != "none"):
        parser.error("--duplicates is a share below 1, for drawings without object data")
    # Every k-th entity is a copy of the one before it: same kind, layer and geometry.
    copy_every = round(1 / args.duplicates) if args.duplicates else 0

    ezdxf.options.write_fixed_meta_data_for_testing = True  # no time stamps or random GUIDs
    rng = random.Random(args.seed)
    modern = args.version != "R12"
    doc = ezdxf.new(VERSIONS[args.version], setup=True)
    setup_resources(doc, args.layers, modern)
    msp = doc.modelspace()

    with_data = modern and args.data != "none"
    tables = make_tables(args.tables)
    if with_data:
        define_tables(doc, tables, rng)
    kinds = every_kind(modern) if args.kinds == "all" else basic_kinds(modern)
    entities = []
    faulty_handles = []
    for i in range(args.count):
        if copy_every and i % copy_every == copy_every - 1 and entities:
            twin = entities[-1].copy()
            msp.add_entity(twin)
            entities.append(twin)
            continue
        attribs = {"layer": f"LAYER_{i % args.layers:02d}"}
        if i % 5 == 1:
            attribs["color"] = i % 255 + 1
        if i % 11 == 3:
            attribs["linetype"] = "DASHED"
        entity = kinds[i % len(kinds)](msp, rng, attribs)
        entities.append(entity)
        if with_data and (args.data == "all" or i % 3 != 2):
            table = tables[(i // 3) % len(tables)]
            rows, faulty = [], False
            for _ in range(2 if i % 7 == 0 and not args.one_record else 1):
                fault = rng.random() < args.faulty  # drawn before the record's own values
                rows.append(record(rng, table, fault, args.keep_keys))
                faulty = faulty or fault
            attach_records(entity, table, rows)
            if faulty:
                faulty_handles.append(entity.dxf.handle)
            if i % 13 == 0:
                add_foreign_data(entity)

    if args.sortents:
        moved = entities[:args.sortents]
        sort_handles = [e.dxf.handle for e in moved]
        rng.shuffle(sort_handles)
        msp.set_redraw_order({e.dxf.handle: s for e, s in zip(moved, sort_handles)})

    doc.saveas(args.out, fmt="bin" if args.binary else "asc")
    if args.classifier:
        write_classifier(args.classifier, tables)
    if args.faulty_list:
        with open(args.faulty_list, "w", encoding="ascii", newline="\n") as f:
            f.writelines(handle + "\n" for handle in faulty_handles)
    return 0


def write_classifier(path, tables):
    """A classifier of one class per table, whose lists and ranges are the generator's."""
    lines = ["# Classes of the generated drawings: one per object-data table.", ""]
    for table in tables:
        lines += [f"class\t{table.name.title()}\t1", f"\tobj_name\t{display_name(table)}\t1\t100",
                  "\t\tobj_type\tLine,Circle,Arc,Polyline,Text,BlockReference,Point",
                  f"\t\tod_name\t{table.name}", f"\t\t\tod_key\t{table.fields[0][0]}"]
        for field, code, allowed in table.fields[1:]:
            kind = {1: "character", 40: "real", 90: "integer", 10: "point"}[code]
            line = f"\t\t\tod_fld\t{field}\t{field.title()}\t{kind}"
            if isinstance(allowed, list):
                line += f"\t{allowed[0]}\t{','.join(allowed)}"
            elif isinstance(allowed, tuple):
                line += f"\t{allowed[0]}\t{allowed[0]}:{allowed[1]}"
            lines.append(line)
        lines.append("/class")
    with open(path, "w", encoding="utf-8", newline="\n") as f:
        f.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    # ezdxf orders the CLASSES section by a set of names: the same bytes need the same string hashes.
    if os.environ.get("PYTHONHASHSEED") != "0":
        os.execve(sys.executable, [sys.executable] + sys.argv, dict(os.environ, PYTHONHASHSEED="0"))
    sys.exit(main(sys.argv[1:]))
