#!/usr/bin/python3
"""Writes the object-data fixture drawings with an independent DXF library, laid out as other
programs lay out object data: table definitions in the "ODEMUDATA" dictionary of the named
objects dictionary, records in an xrecord per table in each entity's extension dictionary.

Each entity sits on a layer named after its case, so that tests find it without handles.
Run from anywhere: python3 make_fixtures.py; the drawings are written beside this script."""
import os
import ezdxf

HERE = os.path.dirname(os.path.abspath(__file__))

ROADS = [(1, "NAME"), (1, ""), (1, "LANES"), (90, 0), (1, "WIDTH"), (40, 0.0), (1, "AXIS"), (10, (0, 0, 0))]
PARCELS = [(1, "ID"), (1, ""), (1, "AREA"), (40, 0.0)]


def new_drawing(tables):
    doc = ezdxf.new("R2010", setup=False)
    od = doc.rootdict.add_new_dict("ODEMUDATA")
    for name, definition in tables.items():
        od.add_xrecord(name).reset(definition)
    return doc


def entity(doc, layer, kind="LINE"):
    doc.layers.add(layer)
    msp = doc.modelspace()
    if kind == "CIRCLE":
        return msp.add_circle((0, 0), 5, dxfattribs={"layer": layer})
    return msp.add_line((0, 0), (10, 0), dxfattribs={"layer": layer})


def records(e, key, values):
    xdict = e.get_extension_dict() if e.has_extension_dict else e.new_extension_dict()
    xrecord = xdict.add_xrecord(key)
    xrecord.reset(values)
    return xrecord


def foreign(e):
    records(e, "OTHER_APP", [(1, "foreign data"), (70, 5)])


def save(doc, name, comment, edit=None):
    path = os.path.join(HERE, name)
    doc.saveas(path)
    with open(path, encoding="utf-8") as f:
        text = f.read()
    if edit:
        text = edit(text)
    with open(path, "w", encoding="utf-8", newline="\n") as f:
        f.write("999\n" + comment + "\n" + text)


def good_records():
    doc = new_drawing({"ROADS": ROADS, "PARCELS": PARCELS})
    e = entity(doc, "TWO_RECORDS")
    foreign(e)
    records(e, "ROADS", [(1, "Main street"), (90, 2), (40, 7.5), (10, (1, 2, 0)),
                         (1, "Side road"), (90, 1), (40, 3.25), (10, (5, 6, 7))])
    e = entity(doc, "OTHERS_ONLY")
    foreign(e)
    e = entity(doc, "TWO_TABLES", "CIRCLE")
    records(e, "PARCELS", [(1, "P-17"), (40, 120.5)])
    records(e, "ROADS", [(1, "Ring"), (90, 4), (40, 12.0), (10, (0, 0, 0))])
    entity(doc, "NO_XDICT")
    save(doc, "good_records.dxf", "object data written by another program: records, other data, two tables")


def bad_unknown_group_code():
    doc = new_drawing({"ROADS": ROADS})
    records(entity(doc, "RECORD"), "ROADS", [(1, "Odd"), (70, 3), (40, 2.5), (10, (1, 1, 1))])
    save(doc, "bad_unknown_group_code.dxf", "a record value under group code 70, which no field type uses")


def bad_fewer_definition_fields():
    doc = new_drawing({"ROADS": ROADS[:4]})
    records(entity(doc, "RECORD"), "ROADS", [(1, "Main street"), (90, 2), (40, 7.5), (10, (1, 2, 0))])
    save(doc, "bad_fewer_definition_fields.dxf", "the definition names two fields, the record holds four values")


def bad_odd_definition():
    doc = new_drawing({"ROADS": ROADS[:5]})
    records(entity(doc, "RECORD"), "ROADS", [(1, "A"), (90, 1), (1, "B"), (90, 2)])
    save(doc, "bad_odd_definition.dxf", "the definition holds five values: a field name without its value")


def bad_short_records():
    doc = new_drawing({"ROADS": ROADS})
    records(entity(doc, "RECORD"), "ROADS", [(1, "Stub"), (90, 3)])
    save(doc, "bad_short_records.dxf", "the records xrecord holds two values of a four-field table")


def bad_entry_not_xrecord():
    doc = new_drawing({"ROADS": ROADS})
    e = entity(doc, "RECORD")
    foreign(e)
    e.get_extension_dict().dictionary.add_new_dict("ROADS")
    save(doc, "bad_entry_not_xrecord.dxf", "the entity's ROADS entry is a dictionary, not an xrecord")


def bad_dangling_handle():
    doc = new_drawing({"ROADS": ROADS})
    e = entity(doc, "RECORD")
    foreign(e)
    xrecord = records(e, "ROADS", [(1, "Gone"), (90, 1), (40, 1.0), (10, (0, 0, 0))])
    handle = xrecord.dxf.handle

    def dangle(text):
        # Point the entity's ROADS entry at a handle that names nothing, and drop the xrecord.
        entry = "  3\nROADS\n350\n%s\n" % handle
        assert text.count(entry) == 1, "entry not found"
        text = text.replace(entry, "  3\nROADS\n350\nFFFFF\n")
        start = text.index("  0\nXRECORD\n  5\n%s\n" % handle)
        end = text.index("  0\n", start + 1)
        return text[:start] + text[end:]

    save(doc, "bad_dangling_handle.dxf", "the entity's ROADS entry names a handle that no object has", dangle)


if __name__ == "__main__":
    good_records()
    bad_unknown_group_code()
    bad_fewer_definition_fields()
    bad_odd_definition()
    bad_short_records()
    bad_entry_not_xrecord()
    bad_dangling_handle()
