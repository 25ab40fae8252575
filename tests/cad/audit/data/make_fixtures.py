#!/usr/bin/python3
"""Makes the broken drawings of the AUDIT tests: bad_<fault>.dxf, one fault each.

Usage: make_fixtures.py [OUTDIR]   (default: this script's folder)

Each starts from the same drawing of tests/tools/gen_dxf.py (8 entities on 3 layers, object data,
a draw-order table), edited as text so that the fault is exactly the one named, and opens with a
999 comment that says what is wrong. The same run always gives the same files.
"""
import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
GEN = os.path.join(HERE, "..", "..", "..", "tools", "gen_dxf.py")
MISSING = "FACE0"  # a handle no object of the base drawing has


class Drawing:
    """The file as (code, value) pairs, and the objects in it by their 0 tags."""

    def __init__(self, text):
        lines = text.split("\n")
        if lines and lines[-1] == "":
            lines.pop()
        self.tags = [[lines[i].strip(), lines[i + 1]] for i in range(0, len(lines) - 1, 2)]

    def text(self, comment):
        out = ["999", comment]
        for code, value in self.tags:
            out += [code.rjust(3), value]
        return "\n".join(out) + "\n"

    def objects(self, kind=None):
        """(start, end) of each object, the 0 tag included; only those of type `kind` when given."""
        starts = [i for i, (code, _) in enumerate(self.tags) if code == "0"]
        for n, start in enumerate(starts):
            end = starts[n + 1] if n + 1 < len(starts) else len(self.tags)
            if kind is None or self.tags[start][1] == kind:
                yield start, end

    def handle(self, start):
        return self.value(start, "5")

    def value(self, start, code):
        end = self.end(start)
        for i in range(start + 1, end):
            if self.tags[i][0] == code:
                return self.tags[i][1]
        return None

    def index(self, start, code, value=None):
        for i in range(start + 1, self.end(start)):
            if self.tags[i][0] == code and (value is None or self.tags[i][1] == value):
                return i
        raise LookupError(f"no group {code} in the object at tag {start}")

    def end(self, start):
        for i in range(start + 1, len(self.tags)):
            if self.tags[i][0] == "0":
                return i
        return len(self.tags)

    def find(self, kind, handle=None, where=None):
        for start, _ in self.objects(kind):
            if (handle is None or self.handle(start) == handle) and (where is None or where(start)):
                return start
        raise LookupError(f"no {kind} {handle or ''}")

    def entity_with_xdictionary(self, kind="LINE"):
        return self.find(kind, where=lambda s: any(t == ["102", "{ACAD_XDICTIONARY"] for t in self.tags[s:self.end(s)]))

    def xdictionary_of(self, start):
        return self.tags[self.index(start, "102", "{ACAD_XDICTIONARY") + 1][1]

    def odemudata(self):
        for start, _ in self.objects("DICTIONARY"):
            for i in range(start, self.end(start)):
                if self.tags[i] == ["3", "ODEMUDATA"]:
                    return self.find("DICTIONARY", self.tags[i + 1][1])
        raise LookupError("no ODEMUDATA")


def duplicate_handle(d):
    first, second = [s for s, _ in d.objects("CIRCLE")][:2]
    d.tags[d.index(second, "5")][1] = d.handle(first)
    return "a CIRCLE has the handle of the CIRCLE before it"


def missing_owner(d):
    line = d.find("LINE")
    d.tags[d.index(line, "330")][1] = MISSING
    return f"a LINE's owner (330) is {MISSING}, which does not exist"


def entity_owner_not_block(d):
    line = d.find("LINE")
    layer = d.find("LAYER", where=lambda s: d.value(s, "2") == "0")
    d.tags[d.index(line, "330")][1] = d.handle(layer)
    return "a LINE is owned by the LAYER record of layer 0 instead of its block record"


def missing_xdictionary(d):
    line = d.entity_with_xdictionary()
    d.tags[d.index(line, "102", "{ACAD_XDICTIONARY") + 1][1] = MISSING
    return f"a LINE's extension-dictionary pointer leads to {MISSING}, which does not exist"


def xdictionary_owner(d):
    line = d.entity_with_xdictionary()
    other = d.find("CIRCLE")
    dictionary = d.find("DICTIONARY", d.xdictionary_of(line))
    for i in range(dictionary, d.end(dictionary)):
        if d.tags[i][0] == "330":
            d.tags[i][1] = d.handle(other)
    return "a LINE's extension dictionary names a CIRCLE as its owner"


def missing_layer(d):
    line = d.find("LINE")
    d.tags[d.index(line, "8")][1] = "GHOST"
    return "a LINE lies on layer GHOST, which the LAYER table does not define"


def handseed_too_low(d):
    at = next(i for i, t in enumerate(d.tags) if t == ["9", "$HANDSEED"])
    d.tags[at + 1][1] = "10"
    return "$HANDSEED is 10, below handles in use"


def missing_dictionary_entry(d):
    data = d.odemudata()
    at = d.index(data, "3")
    d.tags[at:at] = [["3", "LOST"], ["350", MISSING]]
    return f"the ODEMUDATA dictionary has an entry LOST leading to {MISSING}, which does not exist"


def missing_sortents_entity(d):
    table = d.find("SORTENTSTABLE")
    d.tags[d.index(table, "331")][1] = MISSING
    return f"the draw-order table lists entity {MISSING}, which does not exist"


def recursive_block(d):
    # The block MARK gets a reference to itself, next to its geometry.
    block = d.find("BLOCK", where=lambda s: d.value(s, "2") == "MARK")
    record = d.value(block, "330")
    end = d.find("ENDBLK", where=lambda s: s > block)
    d.tags[end:end] = [["0", "INSERT"], ["5", "FACE1"], ["330", record], ["100", "AcDbEntity"], ["8", "0"],
                       ["100", "AcDbBlockReference"], ["2", "MARK"], ["10", "0.0"], ["20", "0.0"], ["30", "0.0"]]
    seed = next(i for i, t in enumerate(d.tags) if t == ["9", "$HANDSEED"])
    d.tags[seed + 1][1] = "FACE2"
    return "the block MARK holds an INSERT of MARK"


def dictionary_cycle(d):
    # ODEMUDATA, an entry of the named objects dictionary, gets an entry leading back to it.
    root = next(s for s, _ in d.objects("DICTIONARY") if d.value(s, "330") == "0")
    data = d.odemudata()
    at = d.index(data, "3")
    d.tags[at:at] = [["3", "BACK"], ["350", d.handle(root)]]
    return "the ODEMUDATA dictionary has an entry BACK leading to the named objects dictionary that holds it"


def missing_class(d):
    for start, end in d.objects("CLASS"):
        if d.value(start, "1") == "SORTENTSTABLE":
            del d.tags[start:end]
            return "the CLASSES section has no entry for SORTENTSTABLE, which the drawing uses"
    raise LookupError("no SORTENTSTABLE class")


def od_table_definition(d):
    data = d.odemudata()
    pipes = d.tags[d.index(data, "3", "PIPES") + 1][1]
    xrecord = d.find("XRECORD", pipes)
    del d.tags[d.end(xrecord) - 1]
    return "the object-data table PIPES has a field name without its type value (an odd number of values)"


def _records(d, table):
    """The first records xrecord of `table` in an entity's extension dictionary."""
    data = d.odemudata()
    definitions = {d.tags[i + 1][1] for i in range(data, d.end(data)) if d.tags[i][0] in ("350", "360")}
    for start, _ in d.objects("XRECORD"):
        if d.handle(start) not in definitions and d.tags[d.index(start, "280") + 1] == ["1", table]:
            return start
    raise LookupError(f"no records of {table}")


def od_record_length(d):
    xrecord = _records(d, "Roads")
    del d.tags[d.end(xrecord) - 1]
    return "a records xrecord of table ROADS lacks its last value (not a whole number of records)"


def od_value_type(d):
    xrecord = _records(d, "Roads")
    at = d.index(xrecord, "90")
    d.tags[at] = ["1", "two"]
    return "a records xrecord of table ROADS has text where the LANES field is an integer (90)"


FAULTS = [duplicate_handle, missing_owner, entity_owner_not_block, missing_xdictionary, xdictionary_owner,
          missing_layer, handseed_too_low, missing_dictionary_entry, missing_sortents_entity, recursive_block,
          dictionary_cycle, missing_class, od_table_definition, od_record_length, od_value_type]


def main(outdir):
    with tempfile.TemporaryDirectory() as tmp:
        base = os.path.join(tmp, "base.dxf")
        subprocess.run([sys.executable, GEN, "8", base, "--layers", "3", "--sortents", "3"], check=True)
        with open(base, encoding="utf-8") as f:
            text = f.read()
    for fault in FAULTS:
        d = Drawing(text)
        comment = fault(d)
        with open(os.path.join(outdir, f"bad_{fault.__name__}.dxf"), "w", encoding="utf-8", newline="\n") as f:
            f.write(d.text(comment))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else HERE)
