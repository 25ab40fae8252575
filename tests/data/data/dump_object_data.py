#!/usr/bin/python3
"""Prints the object data of a drawing as an independent reader sees it: first each table
definition of "ODEMUDATA" ("table <name> code=value ..."), then each model-space entity's
extension-dictionary entries ("<layer> <key> code=value ..."), in stored order."""
import sys
import ezdxf


def values(xrecord):
    out = []
    for tag in xrecord.tags:
        value = tag.value
        if isinstance(value, tuple) or hasattr(value, "x"):
            value = ",".join(repr(float(c)) for c in value)
        elif isinstance(value, float):
            value = repr(value)
        out.append(f"{tag.code}={value}")
    return " ".join(out)


doc = ezdxf.readfile(sys.argv[1])
od = doc.rootdict.get("ODEMUDATA")
if od is not None:
    for key, obj in od.items():
        print("table", key, values(obj))
for e in doc.modelspace():
    if not e.has_extension_dict:
        continue
    for key, obj in e.get_extension_dict().items():
        if isinstance(obj, str) or obj.dxftype() != "XRECORD":
            print(e.dxf.layer, key, "not an xrecord")
        else:
            print(e.dxf.layer, key, values(obj))
