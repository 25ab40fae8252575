#!/usr/bin/python3
"""Checks a delivery of drawings against a classifier's value rules with ezdxf, several drawings at
once: the counterpart of `veltarn check --jobs N` that scripts/bench-check.sh times beside it.

Usage: check_rules.py CLASSIFIER DRAWING... [--jobs N]

Each drawing is read with ezdxf and the object data of its model space checked by the rules of
bench/commands/value_rules.py (what VELTARN_ASSERT 1 checks), one drawing a worker process, N
processes (default 2). Prints the totals over the drawings:

  drawings N
  objects N      the entities of model space
  faulty N       entities with a record of a known class that breaks a rule
  foreign N      records whose key names no class of their table
"""
import argparse
import multiprocessing
import os
import sys

import ezdxf

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "commands"))
import value_rules  # noqa: E402

# Read once in each worker, as veltarn reads the classifier once a drawing at most.
_rules = None


def start_worker(classifier):
    global _rules
    classes = {}
    _rules = (value_rules.read_classifier(classifier, classes), classes)


def check_drawing(path):
    rules, classes = _rules
    doc = ezdxf.readfile(path)
    broken, by_rule = value_rules.check(doc, rules, classes)
    return len(doc.modelspace()), len(broken), by_rule["foreign"]


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("classifier")
    parser.add_argument("drawings", nargs="+")
    parser.add_argument("--jobs", type=int, default=2)
    args = parser.parse_args(argv)
    if args.jobs < 1:
        parser.error("--jobs needs a number of processes, at least 1")
    with multiprocessing.Pool(args.jobs, initializer=start_worker, initargs=(args.classifier,)) as pool:
        results = pool.map(check_drawing, args.drawings, chunksize=1)
    print(f"drawings {len(results)}")
    for name, index in (("objects", 0), ("faulty", 1), ("foreign", 2)):
        print(f"{name} {sum(result[index] for result in results)}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
