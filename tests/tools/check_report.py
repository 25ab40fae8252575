#!/usr/bin/python3
"""Compares the reports and the summary of `veltarn check` with a delivery's manifest (see
gen_delivery.py), reading each report with Python's own parsers, independently of the program.

Usage: check_report.py MANIFEST [--summary FILE] [REPORT...]

Each REPORT (.jsonl, .csv or .html) must hold exactly the manifest's findings, each as often as
the manifest lists it: a finding is compared as (drawing, handle, code, class, subject), the
subject read from the message (TABLE.FIELD, a property keyword, a foreign record's table, the name
a classifier message quotes); where the manifest gives "found", the message must quote that value. Every report must also hold the same findings in the same order,
column for column, as the first. With --summary, FILE is the check's standard output: its row of
each drawing must give the manifest's counts, and its total row their sums.

Prints one line per report and for the summary, "NAME: ..." saying what agreed or what differed
(every finding missing or extra); exits 0 when everything agreed, 1 otherwise, 2 on a usage error.
"""
import argparse
import csv
import html.parser
import json
import re
import sys
from collections import Counter

COLUMNS = ["drawing", "handle", "type", "layer", "class", "code", "message", "expected"]
# Codes whose message starts with TABLE.FIELD or a property keyword, then ": found ...".
VALUE_CODES = {"no-record", "key-mismatch", "missing-value", "wrong-type", "const-changed", "empty-value",
               "not-in-list", "out-of-range", "wrong-entity-type", "wrong-property"}
COUNTS = ["objects", "valid", "faulty", "unclassified", "foreign", "audit"]


def read_jsonl(path):
    rows = []
    with open(path, encoding="utf-8") as f:
        for number, line in enumerate(f, 1):
            finding = json.loads(line)
            if list(finding) != COLUMNS:
                raise ValueError(f"{path}:{number}: keys {list(finding)}")
            rows.append([finding[c] for c in COLUMNS])
    return rows


def read_csv(path):
    with open(path, encoding="utf-8", newline="") as f:
        rows = list(csv.reader(f))
    if not rows or rows[0] != COLUMNS:
        raise ValueError(f"{path}: the header is {rows[:1]}")
    for number, row in enumerate(rows[1:], 2):
        if len(row) != len(COLUMNS):
            raise ValueError(f"{path}:{number}: {len(row)} fields")
    return rows[1:]


class FindingRows(html.parser.HTMLParser):
    """The cells of every <tr class="finding">, their text unescaped."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.rows, self.row, self.cell = [], None, None

    def handle_starttag(self, tag, attrs):
        if tag == "tr" and "finding" in (dict(attrs).get("class") or "").split():
            self.row = []
        elif tag == "td" and self.row is not None:
            self.cell = ""

    def handle_endtag(self, tag):
        if tag == "td" and self.cell is not None:
            self.row.append(self.cell)
            self.cell = None
        elif tag == "tr" and self.row is not None:
            self.rows.append(self.row)
            self.row = None

    def handle_data(self, data):
        if self.cell is not None:
            self.cell += data


def read_html(path):
    parser = FindingRows()
    with open(path, encoding="utf-8") as f:
        parser.feed(f.read())
    parser.close()
    for number, row in enumerate(parser.rows, 1):
        if len(row) != len(COLUMNS):
            raise ValueError(f"{path}: finding {number} has {len(row)} cells")
    return parser.rows


READERS = {".jsonl": read_jsonl, ".csv": read_csv, ".html": read_html}


def subject(row):
    """What a finding is about, from its message: see the manifest's "subject"."""
    code, message = row[5], row[6]
    if code in VALUE_CODES:
        return message.split(":", 1)[0]
    if code == "empty-required":
        return message.split(" is empty", 1)[0]
    if code == "foreign-record":
        found = re.match(r"record of table (\S+) ", message)
        return found.group(1) if found else message
    if code == "classifier-message":
        found = re.search(r"'([^']*)'", message)
        return found.group(1) if found else ""
    return ""


def key(row):
    return (row[0], row[1], row[5], row[4], subject(row))


def planted_key(finding):
    return (finding["drawing"], finding["handle"], finding["code"], finding["class"], finding["subject"])


def show(item):
    return "(" + ", ".join(json.dumps(part, ensure_ascii=False) for part in item) + ")"


def compare_findings(name, rows, manifest):
    planted = Counter(planted_key(p) for p in manifest["findings"])
    found = Counter(key(row) for row in rows)
    missing, extra = planted - found, found - planted
    lines = [f"{name}: missing {show(item)}" for item in sorted(missing.elements())]
    lines += [f"{name}: extra {show(item)}" for item in sorted(extra.elements())]
    # The values the manifest quotes, read back as the drawing holds them.
    messages = {key(row): row[6] for row in rows}
    for p in manifest["findings"]:
        wanted = f'{p["subject"]}: found "{p["found"]}"' if "found" in p else None
        message = messages.get(planted_key(p))
        if wanted and message is not None and message != wanted:
            lines.append(f"{name}: {show(planted_key(p))} says {json.dumps(message, ensure_ascii=False)},"
                         f" not {json.dumps(wanted, ensure_ascii=False)}")
    if lines:
        return lines, False
    return [f"{name}: {len(rows)} findings, as planted"], True


def summary_rows(path):
    """Drawing name -> its cells after the name; the header row left out."""
    rows = {}
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n--- stderr\n", 1)[0].splitlines()
    for line in lines[1:]:
        cells = line.split()
        # A drawing's name may hold spaces: the counts are the cells at the end.
        if len(cells) > len(COUNTS):
            rows[" ".join(cells[:-len(COUNTS)])] = cells[-len(COUNTS):]
    return rows


def compare_summary(path, drawings):
    rows = summary_rows(path)
    lines, ok = [], True
    total = dict.fromkeys(COUNTS, 0)
    for entry in drawings:
        name, state = entry["drawing"], entry["state"]
        if state == "unreadable":
            wanted = ["unreadable"] + ["-"] * (len(COUNTS) - 1)
        elif state == "unchecked":
            wanted = [str(entry["objects"]), "-", "-", "-", "-", str(entry["audit"])]
        else:
            wanted = [str(entry[c]) for c in COUNTS]
        for c in COUNTS:
            total[c] += entry.get(c, 0)
        if rows.get(name) != wanted:
            lines.append(f"summary: {name}: {rows.get(name)} where the manifest says {wanted}")
            ok = False
    wanted = [str(total[c]) for c in COUNTS]
    if rows.get("total") != wanted:
        lines.append(f"summary: total: {rows.get('total')} where the manifest says {wanted}")
        ok = False
    if ok:
        lines.append(f"summary: {len(drawings)} drawings and the total, as planted")
    return lines, ok


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("manifest")
    parser.add_argument("reports", nargs="*")
    parser.add_argument("--summary")
    args = parser.parse_args(argv)
    with open(args.manifest, encoding="utf-8") as f:
        manifest = json.load(f)

    ok, first = True, None
    for path in args.reports:
        reader = next((read for ext, read in READERS.items() if path.endswith(ext)), None)
        if reader is None:
            parser.error(f"{path}: not .jsonl, .csv or .html")
        try:
            rows = reader(path)
        except (OSError, ValueError) as error:
            print(f"{path}: unreadable: {error}")
            ok = False
            continue
        lines, agreed = compare_findings(path, rows, manifest)
        if first is None:
            first = (path, rows)
        elif rows != first[1]:
            differing = next((i for i, (a, b) in enumerate(zip(rows, first[1])) if a != b), min(len(rows), len(first[1])))
            lines.append(f"{path}: differs from {first[0]} from finding {differing + 1}")
            agreed = False
        else:
            lines.append(f"{path}: the same findings as {first[0]}")
        print("\n".join(lines))
        ok = ok and agreed
    if args.summary:
        lines, agreed = compare_summary(args.summary, manifest["drawings"])
        print("\n".join(lines))
        ok = ok and agreed
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
