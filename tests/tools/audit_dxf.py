#!/usr/bin/python3
"""Checks a DXF file with ezdxf, an independent reader: its strict loader, then its auditor.

Usage: audit_dxf.py DRAWING...

Prints one line per finding, "error CODE: message" for what the auditor found and could not fix,
"fixed CODE: message" for what it had to repair, or "unreadable: why" when the strict loader
refuses the file; each line starts with "DRAWING: " when several drawings are checked. Exit status: 0 when no file has a finding, 1 when one
has, 2 on a usage error.
"""
import sys

import ezdxf
from ezdxf.audit import AuditError
from ezdxf.lldxf.const import DXFError


def reader_artefact(doc, finding):
    """True for what ezdxf reports of its own R12 loading rather than of the file: R12 has no owner
    handles, and ezdxf 0.18 gives the SEQEND that closes a block reference's attributes none, then
    deletes it as owned by nothing."""
    return (doc.dxfversion == "AC1009" and finding.code == AuditError.INVALID_OWNER_HANDLE
            and finding.message.startswith("Deleted SEQEND("))


def findings(path):
    """The findings of one file, as lines; empty when ezdxf finds nothing."""
    try:
        doc = ezdxf.readfile(path)
    except (DXFError, OSError, UnicodeError, ValueError) as error:
        return [f"unreadable: {type(error).__name__}: {error}"]
    auditor = doc.audit()
    lines = [f"error {e.code}: {e.message}" for e in auditor.errors if not reader_artefact(doc, e)]
    lines += [f"fixed {f.code}: {f.message}" for f in auditor.fixes if not reader_artefact(doc, f)]
    return lines


def main(paths):
    if not paths:
        sys.stderr.write(__doc__)
        return 2
    found = False
    for path in paths:
        # The path leads a line only when several files are checked, so that the findings of
        # one file compare equal to those of its copy.
        for line in findings(path):
            print(f"{path}: {line}" if len(paths) > 1 else line)
            found = True
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
