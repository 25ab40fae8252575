#!/usr/bin/python3
"""Writes a delivery of drawings with known faults, the way a CAD manager receives one, for
`veltarn check` to be tested against: every kind of finding the check reports is planted, and a
manifest says which object should give which finding.

Usage: gen_delivery.py FOLDER

FOLDER receives:
  delivery.classes.txt  the classifier: class groups, classes of one and of two tables, fields
                        with lists, ranges, a constant, notempty and required fields, and graphic
                        properties (layer, colour, linetype)
  north.dxf, south.dxf, "east side.dxf"
                        drawings with valid objects, objects without data, records of a table the
                        classifier does not know and records whose key names no class, and one
                        object for each fault of values, records and properties; an entity on a
                        layer the drawing does not define (an AUDIT finding); a faulty object in
                        paper space, which the check passes over. south.dxf lacks a layer a
                        class names, which the classifier's reader warns about
  old-roads.dxf         a drawing whose own definition of a table disagrees with the classifier's:
                        the reader stops on it, and its objects are not checked
  cut-short.dxf         a drawing cut off half-way, which cannot be read
  manifest.json         what the check must find, as JSON:
    "classifier": the classifier's file name;
    "drawings": one entry a drawing, in the order to name them: "drawing", "state" ("checked",
        "unchecked" when the classifier could not be read against it, "unreadable"), and the
        summary's counts the state has: "objects", "valid", "faulty", "unclassified", "foreign"
        (checked), "objects" (unchecked), "audit" (both);
    "findings": every finding, as "drawing", "handle" (upper-case hexadecimal, empty for the
        drawing as a whole), "code", "class" (the class the finding is about, else empty) and
        "subject": TABLE.FIELD for a value or record finding, the property keyword ("layer",
        "color", "linetype", "type") for a property finding, the table of a foreign record, the
        name a classifier message quotes; empty for the others. A value finding may also have
        "found": the value its message must quote, as the drawing holds it.

Every run writes the same files, byte for byte. Object data is laid out as gen_dxf.py lays it
out, through its helpers.
"""
import json
import os
import random
import sys

import ezdxf

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from gen_dxf import Table, add_foreign_data, attach_records, basic_kinds, setup_resources  # noqa: E402

CLASSIFIER = "delivery.classes.txt"
MATERIALS = ["PVC", "PE", "Steel", "Cast iron"]
SURFACES = ["Asphalt", "Concrete", "Gravel", "Paving"]

# The tables as the drawings define them; fields as (name, group code, list or (low, high) or None).
ROADS = Table("ROADS", [("ID", 1, None), ("NAME", 1, None), ("SURFACE", 1, SURFACES), ("WIDTH", 40, (2.0, 30.0)),
                        ("LANES", 90, (1, 6))])
PIPES = Table("PIPES", [("ID", 1, None), ("MATERIAL", 1, MATERIALS), ("DIAMETER", 40, (50.0, 1200.0)),
                        ("NETWORK", 1, None), ("OWNER", 1, None)])
VALVES = Table("VALVES", [("ID", 1, None), ("KIND", 1, ["Gate", "Butterfly", "Check"])])
ASSET = Table("ASSET", [("ID", 1, None), ("OWNER", 1, None), ("INSTALLED", 90, (1900, 2100))])
CABLES = Table("CABLES", [("ID", 1, None), ("VOLTAGE", 90, [230, 400, 11000])])
# A table of another department's: the classifier does not know it.
SURVEY = Table("SURVEY", [("POINT_ID", 1, None), ("ACCURACY", 40, None)])
# An older ROADS, defined otherwise than the classifier defines it.
OLD_ROADS = Table("ROADS", [("ID", 1, None), ("WIDTH", 40, None)])

CLASSIFIER_TEXT = """\
# The classes of a delivery of network drawings. Columns are separated by tabs.
define	MATERIALS	{materials}

class	Transport	1	Roads and their data
	obj_name	Road	1	100	A road's centre line
		obj_type	Line,Polyline
		obj_prop	layer	ROADS
		obj_prop	color	ByLayer
		od_name	ROADS
			od_key	ID
			od_fld	NAME	Street name	required character
			od_fld	SURFACE	Surface	character	Asphalt	{surfaces}
			od_fld	WIDTH	Width (m)	real	7	2:30
			od_fld	LANES	Lanes	integer	2	1:6
/class
class	Water	1
	obj_name	Pipe	1	200
		obj_type	Line,Polyline,Arc
		obj_prop	layer	PIPES	PIPES_OLD
		obj_prop	linetype	DASHED
		od_name	PIPES
			od_key	ID
			od_fld	MATERIAL	Material	required character	PVC	$(MATERIALS)
			od_fld	DIAMETER	Diameter (mm)	real	100	50:1200
			od_fld	NETWORK	Network	const character	Water
			od_fld	OWNER	Owner	notempty character
	class	Fittings	1
		obj_name	Valve	1	210
			obj_type	BlockReference,Point
			obj_prop	layer	VALVES
			od_name	VALVES
				od_key	ID
				od_fld	KIND	Kind	character	Gate	Gate,Butterfly,Check
			od_name	ASSET
				od_key	ID
				od_fld	OWNER	Owner	character
				od_fld	INSTALLED	Year installed	integer	2000	1900:2100
		obj_name	Hydrant	1	220
			obj_type	Point,BlockReference,Circle
			od_name	ASSET
				od_key	ID
				od_fld	OWNER	Owner	character
				od_fld	INSTALLED	Year installed	integer	2000	1900:2100
	/class
/class
class	Power	1
	obj_name	Cable	1	300
		obj_type	Line,Polyline
		obj_prop	layer	CABLES
		od_name	CABLES
			od_key	ID
			od_fld	VOLTAGE	Voltage (V)	integer	400	230,400,11000
/class
""".format(materials=",".join(MATERIALS), surfaces=",".join(SURFACES))

LAYERS = ["ROADS", "PIPES", "PIPES_OLD", "VALVES", "CABLES"]
MAKERS = {maker.__name__: maker for maker in basic_kinds(True)}


def road(rng, key="Road"):
    return [key, f"Street {rng.randint(1, 99)}", rng.choice(SURFACES), round(rng.uniform(3, 25), 2), rng.randint(1, 6)]


def pipe(rng):
    return ["Pipe", rng.choice(MATERIALS), round(rng.uniform(60, 1000), 1), "Water", "Water board"]


def asset(rng, key):
    # An owner left empty is legal: the field is neither notempty nor required.
    return [key, rng.choice(["Council", ""]), rng.randint(1950, 2020)]


def replaced(row, index, value):
    row = list(row)
    row[index] = value
    return row


class Drawing:
    """One drawing being planted, with what the check must find in it."""

    def __init__(self, name, seed, layers=LAYERS, version="R2018"):
        self.name = name
        self.rng = random.Random(seed)
        self.doc = ezdxf.new(version, setup=True)
        setup_resources(self.doc, 4, True)
        for layer in layers:
            self.doc.layers.add(layer)
        self.msp = self.doc.modelspace()
        self.findings = []
        self.counts = dict.fromkeys(["objects", "valid", "faulty", "unclassified", "foreign", "audit"], 0)
        self.od = self.doc.rootdict.add_new_dict("ODEMUDATA")

    def define(self, table, first):
        self.od.add_xrecord(table.name).reset(table.definition(first))

    def expect(self, handle, code, class_name="", subject="", found=None):
        finding = {"drawing": self.name, "handle": handle, "code": code, "class": class_name, "subject": subject}
        if found is not None:
            finding["found"] = found
        self.findings.append(finding)
        if code.startswith("audit-"):
            self.counts["audit"] += 1

    def entity(self, kind, layer, **attribs):
        return MAKERS[kind](self.msp, self.rng, dict(attribs, layer=layer))

    def plant(self, kind, layer, records=(), status="valid", findings=(), attribs=None, foreign=False):
        """An entity of `kind` on `layer` with `records` ((table, rows) each), counted under `status`,
        and the findings (code, class, subject[, found]) the check must give it."""
        entity = self.entity(kind, layer, **(attribs or {}))
        for table, rows in records:
            attach_records(entity, table, rows)
        if foreign:
            add_foreign_data(entity)
        handle = entity.dxf.handle
        self.counts["objects"] += 1
        self.counts[status] += 1
        for finding in findings:
            self.expect(handle, *finding)
        return entity

    def raw_record(self, entity, table, tags):
        """A records xrecord of `table` holding `tags` as they are (a value of another type, a record
        cut short), which attach_records would not write. The audit finds the xrecord; the check
        reports that finding under the entity that carries it, whose handle this returns."""
        xdict = entity.get_extension_dict() if entity.has_extension_dict else entity.new_extension_dict()
        xrecord = xdict.add_xrecord(table.name)
        xrecord.reset(tags)
        return entity.dxf.handle

    def manifest_entry(self):
        return dict({"drawing": self.name, "state": "checked"}, **self.counts)


def network_drawing(name, seed, with_cables=True, version="R2018"):
    """A drawing with every fault of values, records and properties, one an object, among valid
    objects, objects without data and foreign records."""
    d = Drawing(name, seed, LAYERS if with_cables else [layer for layer in LAYERS if layer != "CABLES"], version)
    rng = d.rng
    d.define(ROADS, road(rng))
    d.define(PIPES, pipe(rng))
    d.define(VALVES, ["Valve", "Gate"])
    d.define(ASSET, asset(rng, "Hydrant"))
    d.define(CABLES, ["Cable", 400])
    d.define(SURVEY, ["P1", 0.02])
    if not with_cables:
        d.expect("", "classifier-message", "", "CABLES")  # warning: layer 'CABLES' not found

    # Valid: the key's case does not matter; another program's xrecord is passed over.
    d.plant("line", "ROADS", [(ROADS, [road(rng)])])
    d.plant("polyline", "ROADS", [(ROADS, [road(rng, key="ROAD")])], foreign=True)
    d.plant("arc", "PIPES_OLD", [(PIPES, [pipe(rng)])], attribs={"linetype": "DASHED"})
    d.plant("point_entity", "VALVES", [(VALVES, [["Valve", "Butterfly"]]), (ASSET, [asset(rng, "Valve")])])
    d.plant("circle", "LAYER_01", [(ASSET, [asset(rng, "Hydrant")])])
    if with_cables:
        d.plant("line", "CABLES", [(CABLES, [["Cable", 11000]])])
    # Paper space is not checked: a faulty road there is neither counted nor reported.
    attach_records(MAKERS["line"](d.doc.layout("Layout1"), rng, {"layer": "ROADS"}), ROADS, [replaced(road(rng), 3, 99.0)])
    # Valid at the edges of the rules: a range's ends, a list in another case, an empty text in a
    # field that is not required (legal whatever its list or constant).
    d.plant("line", "ROADS", [(ROADS, [["Road", "Hauptstraße", "gravel", 30.0, 6]])])
    d.plant("polyline", "ROADS", [(ROADS, [["Road", "Ring road", "", 2.0, 1]])])
    d.plant("arc", "PIPES", [(PIPES, [["Pipe", "pvc", 50.0, "", "Council"]])], attribs={"linetype": "DASHED"})
    # Without data, and with records of no class only.
    d.plant("text", "LAYER_02", status="unclassified", findings=[("unclassified", "", "")])
    d.plant("insert", "LAYER_00", status="unclassified", findings=[("unclassified", "", "")])
    # Another program's xrecord is no object data.
    d.plant("circle", "LAYER_01", status="unclassified", findings=[("unclassified", "", "")], foreign=True)
    d.plant("text", "LAYER_03", [(SURVEY, [["P7", 0.05]])], status="foreign",
            findings=[("foreign-record", "", "SURVEY")])
    d.plant("line", "ROADS", [(ROADS, [road(rng, key="Avenue")])], status="foreign",
            findings=[("foreign-record", "", "ROADS")])
    d.plant("arc", "ROADS", [(ROADS, [road(rng, key="")])], status="foreign", findings=[("foreign-record", "", "ROADS")])
    # Two records in one xrecord, the first of no class: the second's class holds.
    d.plant("polyline", "ROADS", [(ROADS, [road(rng, key="Avenue"), road(rng)])], status="faulty",
            findings=[("foreign-record", "", "ROADS")])
    # A valid hydrant that also carries a survey record: faulty for the record of no class.
    d.plant("point_entity", "LAYER_02", [(ASSET, [asset(rng, "Hydrant")]), (SURVEY, [["P9", 0.01]])], status="faulty",
            findings=[("foreign-record", "", "SURVEY")])
    # A valid hydrant on a layer the drawing does not define: AUDIT finds it.
    d.plant("point_entity", "GHOST", [(ASSET, [asset(rng, "Hydrant")])], findings=[("audit-missing-layer", "", "")])

    # Values: one rule broken an object. An empty required field is that finding only.
    faulty = "faulty"
    d.plant("line", "ROADS", [(ROADS, [replaced(road(rng), 1, "")])], faulty,
            [("empty-required", "Road", "ROADS.NAME")])
    # A value with a comma, quotes and letters outside ASCII, which the CSV report must quote and
    # the JSON escape, and a drawing older than 2007 holds in its code page.
    lava = 'Lava, "hot" – glühend'
    d.plant("polyline", "ROADS", [(ROADS, [replaced(road(rng), 2, lava)])], faulty,
            [("not-in-list", "Road", "ROADS.SURFACE", lava)])
    d.plant("line", "ROADS", [(ROADS, [replaced(road(rng), 3, 45.5)])], faulty,
            [("out-of-range", "Road", "ROADS.WIDTH")])
    d.plant("arc", "PIPES", [(PIPES, [replaced(pipe(rng), 3, "Gas")])], faulty,
            [("const-changed", "Pipe", "PIPES.NETWORK")], attribs={"linetype": "DASHED"})
    d.plant("line", "PIPES", [(PIPES, [replaced(pipe(rng), 4, "")])], faulty,
            [("empty-value", "Pipe", "PIPES.OWNER")], attribs={"linetype": "DASHED"})
    d.plant("polyline", "PIPES", [(PIPES, [replaced(pipe(rng), 1, "Lead")])], faulty,
            [("not-in-list", "Pipe", "PIPES.MATERIAL")], attribs={"linetype": "DASHED"})
    if with_cables:
        d.plant("polyline", "CABLES", [(CABLES, [["Cable", 500]])], faulty, [("not-in-list", "Cable", "CABLES.VOLTAGE")])
    # A value stored as text in an integer field, and a record cut short: the check finds the
    # value, AUDIT the xrecord.
    entity = d.plant("line", "ROADS", status=faulty, findings=[("wrong-type", "Road", "ROADS.LANES")])
    row = road(rng)
    d.expect(d.raw_record(entity, ROADS, [(1, row[0]), (1, row[1]), (1, row[2]), (40, row[3]), (1, "2")]),
             "audit-od-value-type")
    entity = d.plant("arc", "PIPES", status=faulty, findings=[("missing-value", "Pipe", "PIPES.OWNER")],
                     attribs={"linetype": "DASHED"})
    row = pipe(rng)
    d.expect(d.raw_record(entity, PIPES, [(1, row[0]), (1, row[1]), (40, row[2]), (1, row[3])]),
             "audit-od-record-length")

    # Records: a class of two tables missing one, or holding another class's record of it.
    d.plant("point_entity", "VALVES", [(VALVES, [["Valve", "Check"]])], faulty, [("no-record", "Valve", "ASSET.ID")])
    d.plant("insert", "VALVES", [(VALVES, [["Valve", "Gate"]]), (ASSET, [asset(rng, "Hydrant")])], faulty,
            [("key-mismatch", "Valve", "ASSET.ID")])

    # Type and graphic properties.
    d.plant("circle", "ROADS", [(ROADS, [road(rng)])], faulty, [("wrong-entity-type", "Road", "type")])
    d.plant("line", "PIPES", [(ROADS, [road(rng)])], faulty, [("wrong-property", "Road", "layer")])
    d.plant("polyline", "ROADS", [(ROADS, [road(rng)])], faulty, [("wrong-property", "Road", "color")],
            attribs={"color": 1})
    d.plant("line", "PIPES", [(PIPES, [pipe(rng)])], faulty, [("wrong-property", "Pipe", "linetype")])
    return d


def old_roads_drawing(name, seed):
    """Roads recorded under an older definition of ROADS: reading the classifier against the
    drawing stops there, so its objects are counted and not checked."""
    d = Drawing(name, seed)
    d.define(OLD_ROADS, ["Road", 7.0])
    for _ in range(3):
        attach_records(d.entity("line", "ROADS"), OLD_ROADS, [["Road", round(d.rng.uniform(3, 20), 1)]])
    d.entity("circle", "LAYER_00")
    d.expect("", "classifier-message", "", "ROADS")  # error: table 'ROADS' does not match existing definition
    return d


def main(argv):
    if len(argv) != 1:
        sys.stderr.write(__doc__)
        return 2
    folder = argv[0]
    os.makedirs(folder, exist_ok=True)
    ezdxf.options.write_fixed_meta_data_for_testing = True  # no time stamps or random GUIDs

    with open(os.path.join(folder, CLASSIFIER), "w", encoding="utf-8", newline="\n") as f:
        f.write(CLASSIFIER_TEXT)

    drawings = [network_drawing("north.dxf", 1), network_drawing("south.dxf", 2, with_cables=False),
                network_drawing("east side.dxf", 3, version="R2000")]
    old = old_roads_drawing("old-roads.dxf", 4)
    entries, findings = [], []
    for d in drawings:
        d.doc.saveas(os.path.join(folder, d.name))
        entries.append(d.manifest_entry())
        findings += d.findings
    old.doc.saveas(os.path.join(folder, old.name))
    entries.append({"drawing": old.name, "state": "unchecked", "objects": len(old.msp), "audit": 0})
    findings += old.findings

    # Half of a good drawing: the file ends inside its entities.
    with open(os.path.join(folder, drawings[0].name), "rb") as f:
        whole = f.read()
    cut = "cut-short.dxf"
    with open(os.path.join(folder, cut), "wb") as f:
        f.write(whole[:len(whole) // 2])
    entries.append({"drawing": cut, "state": "unreadable"})
    findings.append({"drawing": cut, "handle": "", "code": "unreadable-drawing", "class": "", "subject": ""})

    # One drawing or finding a line, for a person comparing it with a report.
    def listed(items):
        return "[\n  " + ",\n  ".join(json.dumps(item, ensure_ascii=False) for item in items) + "\n ]"
    with open(os.path.join(folder, "manifest.json"), "w", encoding="utf-8", newline="\n") as f:
        f.write(f'{{"classifier": {json.dumps(CLASSIFIER)},\n "drawings": {listed(entries)},\n'
                f' "findings": {listed(findings)}}}\n')
    return 0


if __name__ == "__main__":
    # ezdxf orders the CLASSES section by a set of names: the same bytes need the same string hashes.
    if os.environ.get("PYTHONHASHSEED") != "0":
        os.execve(sys.executable, [sys.executable] + sys.argv, dict(os.environ, PYTHONHASHSEED="0"))
    sys.exit(main(sys.argv[1:]))
