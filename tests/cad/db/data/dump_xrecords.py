#!/usr/bin/python3
"""Prints, as an independent reader sees them, the xrecords of every entity's extension
dictionary: one line per xrecord, "<entity handle> <key> code=value code=value ..."."""
import sys
import ezdxf

doc = ezdxf.readfile(sys.argv[1])
for e in doc.modelspace():
    if not e.has_extension_dict:
        continue
    xdict = e.get_extension_dict()
    for key, obj in xdict.items():
        if obj.dxftype() != "XRECORD":
            print(e.dxf.handle, key, obj.dxftype())
            continue
        values = []
        for tag in obj.tags:
            value = tag.value
            if isinstance(value, (bytes, bytearray)):
                value = value.hex().upper()
            elif isinstance(value, tuple) or hasattr(value, "x"):
                value = ",".join(repr(float(c)) for c in value)
            elif isinstance(value, float):
                value = repr(value)
            values.append(f"{tag.code}={value}")
        print(e.dxf.handle, key, " ".join(values))
