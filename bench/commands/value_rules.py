#!/usr/bin/python3
"""Counts the entities of a drawing whose object data break the classifier's value rules.

Usage: value_rules.py DRAWING CLASSIFIER [--handles]

An independent reading, with ezdxf, of what VELTARN_ASSERT 1 checks: every field, required or not.
The tables are the xrecords of "ODEMUDATA" in the named objects dictionary (a field name under
group 1, then a value whose group code gives the field's type); an entity's records are the
xrecord of its extension dictionary named after a table, record after record. A value is illegal
when the record has none for a field of the classifier, when its type is not the classifier's
(1 text, 40 real, 90 integer), when it is empty where it must not be (the key, and fields marked
notempty or required; an empty text is legal anywhere else), or when it is not one of its list or
lies outside its range. Lists compare text without regard to case and numbers by value; ranges
compare numbers by value and text in lower-case order; reals are equal within a relative 1e-9.
Const fields are not checked.

The classifier is read as far as the rules need: od_name, od_key and od_fld lines (tab-separated,
"#" starts a comment); macros are not expanded. Tables the classifier does not name are passed
over, as are other applications' xrecords, and so are records whose key names no class of their
table (a record belongs to the class whose name its key holds, without regard to case; an empty
or unknown key makes it another program's record, which VELTARN_SEL_CLASSIFIED 0 finds instead).

Prints the count of entities with an illegal value, and how many values broke each rule; with
--handles, first the handle of each such entity, one a line.
"""
import argparse
import sys

import ezdxf

TYPES = {"character": 1, "real": 40, "integer": 90}


class Field:
    def __init__(self, name, code, key=False, must_fill=False, kind=None, items=()):
        self.name = name
        self.code = code  # the group code a value of the field's type is stored under
        self.key = key
        self.must_fill = must_fill
        self.kind = kind  # "list", "range" or None
        self.items = items  # the list's values, or (low, high)


def columns(line):
    """The line's tab-separated columns, a comment and empty columns dropped."""
    return [c.strip() for c in line.split("#", 1)[0].split("\t") if c.strip()]


def split_values(text):
    """The items of a values column, split at ":" and ","; a backslash keeps either as text."""
    items, colons, i = [""], 0, 0
    while i < len(text):
        c = text[i]
        if c == "\\" and i + 1 < len(text) and text[i + 1] in ":,":
            items[-1] += text[i + 1]
            i += 1
        elif c in ":,":
            colons += c == ":"
            items.append("")
        else:
            items[-1] += c
        i += 1
    return items, colons


def number(code, text):
    try:
        return int(text) if code == 90 else float(text)
    except ValueError:
        return None


def read_classifier(path, classes=None):
    """Table name (upper case) -> field name (upper case) -> Field; with `classes` (a dict), also
    fills it with table name (upper case) -> the lower-case names of the classes that carry it."""
    tables, fields, class_name = {}, None, None
    with open(path, encoding="utf-8-sig") as f:
        for line in f:
            c = columns(line)
            if not c:
                continue
            keyword = c[0].lower()
            if keyword == "obj_name" and len(c) >= 2:
                class_name = c[1].lower()
            elif keyword == "od_name" and len(c) == 2:
                fields = tables.setdefault(c[1].upper(), {})
                if classes is not None and class_name is not None:
                    classes.setdefault(c[1].upper(), set()).add(class_name)
            elif keyword == "od_key" and len(c) == 2 and fields is not None:
                fields[c[1].upper()] = Field(c[1], 1, key=True)
            elif keyword == "od_fld" and 4 <= len(c) <= 6 and fields is not None:
                words = c[3].lower().split()
                if not words or words[-1] not in TYPES:
                    continue
                field = Field(c[1], TYPES[words[-1]], must_fill=bool({"notempty", "required"} & set(words)))
                if len(c) == 6:
                    items, colons = split_values(c[5])
                    field.kind = "range" if colons == 1 and len(items) == 2 else "list"
                    field.items = items
                fields[c[1].upper()] = field
    return tables


def same(code, a, b):
    return a == b or (code == 40 and abs(a - b) <= 1e-9 * max(1.0, abs(a), abs(b)))


def broken_rule(field, code, value):
    """The rule that the stored (code, value) breaks, or None when it is legal; code None: no value."""
    if code is None:
        return "empty key" if field.key else "missing"
    if code != field.code:
        return "wrong type"
    if code == 1 and value == "":
        return "empty key" if field.key else "empty" if field.must_fill else None
    if field.kind == "list":
        if code == 1:
            return None if value.lower() in (item.lower() for item in field.items) else "not in list"
        items = [number(code, item) for item in field.items]
        return None if any(item is not None and same(code, item, value) for item in items) else "not in list"
    if field.kind == "range":
        low, high = field.items
        if code == 1:
            return None if low.lower() <= value.lower() <= high.lower() else "out of range"
        low, high = number(code, low), number(code, high)
        if low is None or high is None:
            return "out of range"
        return None if (low <= value or same(code, low, value)) and (value <= high or same(code, value, high)) \
            else "out of range"
    return None


def definitions(doc):
    """Table name (upper case) -> the field names of its definition, in order."""
    od = doc.rootdict.get("ODEMUDATA")
    if od is None:
        return {}
    result = {}
    for name, xrecord in od.items():
        if xrecord.dxftype() == "XRECORD":
            result[name.upper()] = [tag.value for tag in list(xrecord.tags)[0::2]]
    return result


def check(doc, rules, classes=None):
    """The handles of the entities with an illegal value, and the count of values by broken rule.
    With `classes` (from read_classifier), records whose key names none of their table's classes
    are passed over."""
    tables = definitions(doc)
    broken = []
    by_rule = dict.fromkeys(["wrong type", "not in list", "out of range", "empty", "empty key", "missing",
                             "foreign"], 0)
    for entity in doc.modelspace():
        if not entity.has_extension_dict:
            continue
        illegal = False
        for name, xrecord in entity.get_extension_dict().dictionary.items():
            names = tables.get(name.upper())
            fields = rules.get(name.upper())
            if not names or fields is None or xrecord.dxftype() != "XRECORD":
                continue
            values = list(xrecord.tags)
            for start in range(0, len(values), len(names)):
                # By field name: a short last record has no value for the fields past its end.
                stored = {field_name.upper(): values[start + i] for i, field_name in enumerate(names)
                          if start + i < len(values)}
                if classes is not None:
                    key = next((stored.get(n) for n, f in fields.items() if f.key), None)
                    if key is None or str(key.value).lower() not in classes.get(name.upper(), ()):
                        by_rule["foreign"] += 1
                        continue
                for field_name, field in fields.items():
                    tag = stored.get(field_name)
                    rule = broken_rule(field, tag.code if tag else None, tag.value if tag else None)
                    if rule:
                        by_rule[rule] += 1
                        illegal = True
        if illegal:
            broken.append(entity.dxf.handle)
    return broken, by_rule


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("drawing")
    parser.add_argument("classifier")
    parser.add_argument("--handles", action="store_true")
    parser.add_argument("--every-record", action="store_true",
                        help="check records whose key names no class too (the generator's own count)")
    args = parser.parse_args(argv)
    classes = None if args.every_record else {}
    rules = read_classifier(args.classifier, classes)
    broken, by_rule = check(ezdxf.readfile(args.drawing), rules, classes)
    if args.handles:
        sys.stdout.writelines(handle + "\n" for handle in broken)
    print(f"illegal: {len(broken)}")
    print("values: " + ", ".join(f"{rule} {count}" for rule, count in by_rule.items()))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
