#!/usr/bin/python3
"""Checks drawings the workbench wrote against an independent reader, Debian's ezdxf.

Usage: dxf_tags.py LIST AUDITOR [--inherit]
LIST holds lines "ORIGINAL<TAB>WRITTEN". Each pair must hold the same tags for ezdxf's low-level
loaders, texts compared as the workbench reads them (\\U+XXXX and \\M+nXXXX resolved, bytes that are
no text in the file's encoding as U+FFFD). AUDITOR, a script that exits 0 when ezdxf finds nothing
in a file, must pass WRITTEN or, with --inherit, find exactly what it finds in ORIGINAL. Prints a
line per problem and a summary; exits 1 when there is a problem.
"""
import contextlib
import io
import re
import runpy
import struct
import sys

from ezdxf.filemanagement import dxf_file_info
from ezdxf.lldxf.tagger import ascii_tags_loader, binary_tags_loader

ESCAPE = re.compile(r"\\U\+([0-9A-Fa-f]{4})|\\M\+([1-5])([0-9A-Fa-f]{4})")
MULTIBYTE = {"1": "cp932", "2": "cp950", "3": "cp949", "4": "johab", "5": "cp936"}


def as_read(value):
    if isinstance(value, float):
        return struct.pack("<d", value)  # bit for bit: -0.0 is not 0.0
    if not isinstance(value, str):
        return value
    text = ESCAPE.sub(lambda m: chr(int(m[1], 16)) if m[1] else
                      int(m[3], 16).to_bytes(2, "big").decode(MULTIBYTE[m[2]], "replace"), value)
    # Two escapes of a surrogate pair are one character, half a pair and undecodable bytes none.
    return text.encode("utf-16", "surrogatepass").decode("utf-16", "replace")


def tags(path):
    with open(path, "rb") as f:
        data = f.read()
    if data.startswith(b"AutoCAD Binary DXF\r\n\x1a\x00"):
        loaded = binary_tags_loader(data)
    else:
        with open(path, "rt", encoding=dxf_file_info(path).encoding, errors="surrogateescape") as f:
            loaded = list(ascii_tags_loader(f, skip_comments=False))
    return [(tag.code, as_read(tag.value)) for tag in loaded]


def difference(original, written):
    a, b = tags(original), tags(written)
    for i, (x, y) in enumerate(zip(a, b)):
        if x != y:
            return f"tag {i}: {x!r} became {y!r}"
    return None if len(a) == len(b) else f"{len(a)} tags became {len(b)}"


def audit(auditor, path):
    """The auditor's findings, or None; run in this process so that ezdxf loads once."""
    sys.argv = [auditor, path]
    out, code = io.StringIO(), 0
    with contextlib.redirect_stdout(out):
        try:
            runpy.run_path(auditor, run_name="__main__")
        except SystemExit as e:
            code = e.code or 0
    return out.getvalue().strip() if code else None


def main(pairs_file, auditor, inherit=False):
    with open(pairs_file, encoding="utf-8") as f:
        pairs = [line.rstrip("\n").split("\t") for line in f if line.strip()]
    problems, inherited = [], 0
    for original, written in pairs:
        if (found := difference(original, written)):
            problems.append(f"{written}: not the tags of {original}: {found}")
        if (findings := audit(auditor, written)) and inherit and findings == audit(auditor, original):
            inherited += 1
        elif findings:
            problems.append(f"{written}: the auditor finds: {findings}")
    for problem in problems:
        print(problem)
    print(f"{len(pairs)} drawings compared and audited: {len(problems)} problems, "
          f"{inherited} with no findings but their original's")
    return 1 if problems else 0


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2], sys.argv[3:] == ["--inherit"]))
