#!/usr/bin/env bash
# The module's commands over a drawing of 1,000,000 entities, each with one
# object-data record of one of 50 classes, about a tenth of them holding an illegal or empty value:
# first each selection and check command, and the draw order, timed in one workbench session
# (bench/commands); then classification of as many entities without data; then the whole program
# checking the drawing (load, classifier, VELTARN_ASSERT 1) beside a Python reading of the same
# value rules over ezdxf (bench/commands/value_rules.py). Figures are printed, never asserted.
# Usage: scripts/bench-commands.sh [BUILD_DIR]  (the drawing is made once, into BUILD_DIR/bench-data;
# VELTARN_BENCH_ENTITIES=N makes and uses a smaller one)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)
PYTHON=/usr/bin/python3  # Debian's, which sees Debian's ezdxf
GENERATOR=$ROOT/tests/tools/gen_dxf.py
RULES=$ROOT/bench/commands/value_rules.py
ENTITIES=${VELTARN_BENCH_ENTITIES:-1000000}
DATA=$BUILD/bench-data
DRAWING=$DATA/commands-$ENTITIES.dxf
CLASSES=$DATA/commands-$ENTITIES-classes.txt
FAULTY=$DATA/commands-$ENTITIES-faulty.txt
BENCH=$BUILD/bin/commands_bench
PROGRAM=$BUILD/bin/veltarn

for program in "$BENCH" "$PROGRAM"; do
    [[ -x $program ]] || { echo "bench: $program is missing; build first" >&2; exit 1; }
done
mkdir -p "$DATA"
# The drawing is moved into place last: when it is there, its classifier and list are too.
if [[ ! -f $DRAWING ]]; then
    echo "bench: making $DRAWING (once)"
    "$PYTHON" "$GENERATOR" "$ENTITIES" "$DRAWING.part" --data all --tables 50 --faulty 0.1 --one-record \
        --classifier "$CLASSES" --faulty-list "$FAULTY"
    mv "$DRAWING.part" "$DRAWING"
fi
cat "$DRAWING" >/dev/null  # every run reads from the page cache

# The same number of entities without object data, with the classifier of one class to give them
# all, and one of 1,000 flagged classes (7 types on 20 layers) for automatic classification.
BARE=$DATA/classify-$ENTITIES.dxf
BARE_CLASSES=$DATA/classify-$ENTITIES-classes.txt
AUTO_CLASSES=$DATA/classify-1000-classes.txt
if [[ ! -f $BARE ]]; then
    echo "bench: making $BARE (once)"
    "$PYTHON" "$GENERATOR" "$ENTITIES" "$BARE.part" --data none --tables 1 --classifier "$BARE_CLASSES"
    mv "$BARE.part" "$BARE"
fi
"$PYTHON" - "$AUTO_CLASSES" <<'PYTHON'
import sys
kinds = ["Line", "Circle", "Arc", "Polyline", "Text", "BlockReference", "Point"]
lines = ["# 1,000 flagged classes: each type on each of 20 layers, seven classes a pair.", ""]
for k in range(1000):
    lines += [f"class\tGroup {k}\t1", f"\tobj_name\tAuto {k}\t1\t{k}", f"\t\tobj_type\t{kinds[k % 7]}",
              f"\t\tobj_prop\tlayer\tLAYER_{(k // 7) % 20:02d}", "\t\tod_name\tAUTO", "\t\t\tod_key\tID",
              "\t\t\tod_fld\tNOTE\tNote\tcharacter", "/class"]
open(sys.argv[1], "w", encoding="utf-8").write("\n".join(lines) + "\n")
PYTHON

printf '\n== selection and check commands over all of model space, one session (targets: VELTARN_SEL and VELTARN_SEL_ALL at least 1,000,000 entities a second, VELTARN_ASSERT 1 at least 500,000, VELTARN_SORT of all under 3 s, VELTARN_STAT under 2 s)\n'
"$BENCH" "$DRAWING" "$CLASSES" 2>&1 | grep -v -e '^\*\*\*WARNING\*\*\* Library was built as DEBUG' -e '^Load Average'

printf '\n== classification of %s entities without data, one session (targets: VELTARN_CLASSIFY of one class at least 300,000 entities a second, VELTARN_CLASSIFY_AUTO 0 with 1,000 flagged classes at least 200,000)\n' "$ENTITIES"
"$BENCH" "$BARE" "$BARE_CLASSES" "$AUTO_CLASSES" 2>&1 | grep -v -e '^\*\*\*WARNING\*\*\* Library was built as DEBUG' -e '^Load Average'

# Duplicates: as many entities without data, every tenth a copy of the one before.
TWINS=$DATA/duplicates-$ENTITIES.dxf
if [[ ! -f $TWINS ]]; then
    echo "bench: making $TWINS (once)"
    "$PYTHON" "$GENERATOR" "$ENTITIES" "$TWINS.part" --data none --duplicates 0.1
    mv "$TWINS.part" "$TWINS"
fi
printf '\n== duplicates among %s entities, a tenth of them copies, one session (target: each command under 2 s for 1,000,000)\n' "$ENTITIES"
"$BENCH" "$TWINS" "$BARE_CLASSES" --duplicates 2>&1 | grep -v -e '^\*\*\*WARNING\*\*\* Library was built as DEBUG' -e '^Load Average'

# The whole program: it reads the drawing, loads the classifier and checks every record. The
# empty line is the Enter that takes all of model space at "Select objects: ".
SCRIPT=$DATA/commands-assert.scr
printf 'VELTARN_LOAD\n%s\nVELTARN_ASSERT 1\n\n' "$CLASSES" >"$SCRIPT"
TRANSCRIPT=$DATA/commands-assert.out

# Runs a command under GNU time, its output into $2; prints its seconds.
timed() {
    local out=$1 report
    shift
    report=$(mktemp)
    /usr/bin/time -f "%e" -o "$report" "$@" >"$out" 2>&1 || echo "bench: $1 failed" >&2
    tail -n 1 "$report"
    rm -f "$report"
}

# What a transcript says it counted: the last "Selected: N" or "Completed: N", else its last line.
counted() {
    grep -Eo '(Selected|Completed): [0-9]+(/[0-9]+)?' "$1" | tail -n 1 | grep . || tail -n 1 "$1"
}

# The program's figure is the median of three runs, each a fresh process.
ours=$({ timed "$TRANSCRIPT" "$PROGRAM" "$DRAWING" --script "$SCRIPT"
         timed "$TRANSCRIPT" "$PROGRAM" "$DRAWING" --script "$SCRIPT"
         timed "$TRANSCRIPT" "$PROGRAM" "$DRAWING" --script "$SCRIPT"; } | sort -n | sed -n 2p)
RULES_OUT=$DATA/commands-value-rules.out
theirs=$(timed "$RULES_OUT" "$PYTHON" "$RULES" "$DRAWING" "$CLASSES")

printf '\n== the whole check of %s entities: veltarn (load, VELTARN_LOAD, VELTARN_ASSERT 1) beside value_rules.py over ezdxf (target: veltarn at least 50 times faster)\n' "$ENTITIES"
printf '%-44s %9s  %s\n' "" "seconds" "counted"
printf '%-44s %9.2f  %s\n' "veltarn DRAWING --script (VELTARN_ASSERT 1)" "$ours" "$(counted "$TRANSCRIPT")"
printf '%-44s %9.2f  %s\n' "value_rules.py (ezdxf readfile + rules)" "$theirs" "$(grep -h '^illegal: ' "$RULES_OUT" || tail -n 1 "$RULES_OUT")"
printf '%-44s %9s  %s\n' "the generator's faulty entities" "" "$(wc -l <"$FAULTY") (empty keys included)"
# No verdict when the program did not check: a command not built yet, or no classifier loaded.
if failure=$(grep -Eh -m 1 "is not available yet|Error: no file loaded|Unknown command" "$TRANSCRIPT"); then
    echo "veltarn vs value_rules.py: no verdict, the program did not check: $failure"
    exit 0
fi
awk -v ours="$ours" -v theirs="$theirs" 'BEGIN {
    if (ours < 0.01) ours = 0.01  # GNU time counts in hundredths
    printf "veltarn vs value_rules.py: %6.0fx faster (target >= 50x): %s\n", theirs / ours, (theirs / ours >= 50 ? "target met" : "TARGET MISSED")
}'
