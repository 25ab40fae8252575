#!/usr/bin/python3
"""Checks DXF files written by the workbench against an independent reader (Debian's ezdxf).

  dxf_tags.py print FILE            prints the tags of FILE as ezdxf's low-level loader reads them
  dxf_tags.py check LIST AUDITOR    LIST holds lines "ORIGINAL<TAB>WRITTEN": for each pair, the two
                                    files must hold the same tags, and AUDITOR (a script that exits
                                    0 when ezdxf finds nothing in a file) must pass WRITTEN, or find
                                    exactly what it finds in ORIGINAL when given --inherit

Text values are compared as text: \\U+XXXX and \\M+nXXXX escapes resolved, bytes that are not
text in the file's encoding counted as U+FFFD, as the workbench reads them. Prints one line per
problem and exits 1 when there is any. Run with /usr/bin/python3, which sees Debian's ezdxf.
"""
import contextlib
import io
import re
import runpy
import struct
import sys

from ezdxf.filemanagement import dxf_file_info
from ezdxf.lldxf.tagger import ascii_tags_loader, binary_tags_loader

BINARY_SENTINEL = b"AutoCAD Binary DXF\r\n\x1a\x00"
ESCAPE = re.compile(r"\\U\+([0-9A-Fa-f]{4})|\\M\+([1-5])([0-9A-Fa-f]{4})")
MULTIBYTE_PAGES = {"1": "cp932", "2": "cp950", "3": "cp949", "4": "johab", "5": "cp936"}


def resolve_escapes(text):
    def one(match):
        if match.group(1):
            return chr(int(match.group(1), 16))
        pair = int(match.group(3), 16).to_bytes(2, "big")
        return pair.decode(MULTIBYTE_PAGES[match.group(2)], errors="replace")

    text = ESCAPE.sub(one, text)
    # A surrogate pair written as two escapes is one character; a lone half is none.
    text = text.encode("utf-16", "surrogatepass").decode("utf-16", "replace")
    return re.sub("[\udc80-\udcff]", "\ufffd", text)


def comparable(value):
    if isinstance(value, str):
        return resolve_escapes(value)
    if isinstance(value, float):
        return struct.pack("<d", value)  # -0.0 and 0.0 differ, as they do in the file
    return value


def load_tags(path):
    with open(path, "rb") as f:
        data = f.read()
    if data.startswith(BINARY_SENTINEL):
        tags = binary_tags_loader(data)
    else:
        encoding = dxf_file_info(path).encoding
        with open(path, "rt", encoding=encoding, errors="surrogateescape") as f:
            tags = list(ascii_tags_loader(f, skip_comments=False))
    return [(tag.code, comparable(tag.value)) for tag in tags]


def first_difference(original, written):
    a, b = load_tags(original), load_tags(written)
    for i, (x, y) in enumerate(zip(a, b)):
        if x != y:
            return f"tag {i}: {x!r} became {y!r}"
    if len(a) != len(b):
        return f"{len(a)} tags became {len(b)}"
    return None


def audit(auditor, path):
    """Runs the auditor script in this process (ezdxf loads once); returns its findings or None."""
    sys.argv = [auditor, path]
    out = io.StringIO()
    code = 0
    with contextlib.redirect_stdout(out):
        try:
            runpy.run_path(auditor, run_name="__main__")
        except SystemExit as e:
            code = e.code or 0
    return out.getvalue().strip() if code else None


def check(pairs_file, auditor, inherit):
    with open(pairs_file, encoding="utf-8") as f:
        pairs = [line.rstrip("\n").split("\t") for line in f if line.strip()]
    problems = []
    inherited = 0
    for original, written in pairs:
        difference = first_difference(original, written)
        if difference:
            problems.append(f"{written}: not the tags of {original}: {difference}")
        findings = audit(auditor, written)
        if findings and inherit and findings == audit(auditor, original):
            inherited += 1
        elif findings:
            problems.append(f"{written}: the auditor finds: {findings}")
    for problem in problems:
        print(problem)
    print(f"{len(pairs)} files compared and audited; {len(problems)} problems; "
          f"{inherited} with the auditor's findings of their original")
    return 1 if problems else 0


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "print":
        for code, value in load_tags(sys.argv[2]):
            print(f"{code}\t{value!r}")
        return 0
    if len(sys.argv) in (4, 5) and sys.argv[1] == "check":
        return check(sys.argv[2], sys.argv[3], "--inherit" in sys.argv[4:])
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main())
