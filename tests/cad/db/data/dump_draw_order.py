#!/usr/bin/python3
"""Prints the handles of model space in the order an independent reader draws them, bottom first."""
import sys
import ezdxf

doc = ezdxf.readfile(sys.argv[1])
print(" ".join(e.dxf.handle for e in doc.modelspace().entities_in_redraw_order()))
