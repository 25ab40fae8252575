#!/usr/bin/env bash
# veltarn check over a delivery of 100 drawings of 20,000 entities each, every entity carrying
# object data of a known class (one of 10) and a tenth of them a value its class forbids, two
# drawings at a time (--jobs 2); beside it bench/check/check_rules.py, the same value rules over
# ezdxf in two processes. Prints drawings and objects a second for both, how many times faster
# veltarn is, and the faulty objects each found. Figures are printed, never asserted.
# Usage: scripts/bench-check.sh [BUILD_DIR]  (the delivery is made once, into BUILD_DIR/bench-data;
# VELTARN_BENCH_DRAWINGS=N and VELTARN_BENCH_ENTITIES=N make and use a smaller one)
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)
PYTHON=/usr/bin/python3  # Debian's, which sees Debian's ezdxf
GENERATOR=$ROOT/tests/tools/gen_dxf.py
RULES=$ROOT/bench/check/check_rules.py
DRAWINGS=${VELTARN_BENCH_DRAWINGS:-100}
ENTITIES=${VELTARN_BENCH_ENTITIES:-20000}
JOBS=2
DATA=$BUILD/bench-data/check-$DRAWINGS-$ENTITIES
CLASSES=$DATA/classes.txt
PROGRAM=$BUILD/bin/veltarn

[[ -x $PROGRAM ]] || { echo "bench: $PROGRAM is missing; build first" >&2; exit 1; }
mkdir -p "$DATA"

# Drawing K under seed K, two generators at a time. Each drawing is moved into place last: when it
# is there, its list of faulty handles (and, for the first, the classifier all of them share) is too.
make_drawing() {
    local k=$1 name
    name=$(printf '%s/drawing-%03d' "$DATA" "$k")
    [[ -f $name.dxf ]] && return 0
    local classifier=()
    ((k == 1)) && classifier=(--classifier "$CLASSES")
    "$PYTHON" "$GENERATOR" "$ENTITIES" "$name.dxf.part" --data all --tables 10 --one-record --keep-keys \
        --faulty 0.1 --seed "$k" --faulty-list "$name.faulty" "${classifier[@]}"
    mv "$name.dxf.part" "$name.dxf"
}
export -f make_drawing
export PYTHON GENERATOR ENTITIES DATA CLASSES
if [[ ! -f $(printf '%s/drawing-%03d.dxf' "$DATA" "$DRAWINGS") || ! -f $CLASSES ]]; then
    echo "bench: making $DRAWINGS drawings of $ENTITIES entities in $DATA (once)"
fi
seq 1 "$DRAWINGS" | xargs -P "$JOBS" -I{} bash -c 'make_drawing {}'
drawings=()
for ((k = 1; k <= DRAWINGS; k++)); do drawings+=("$(printf '%s/drawing-%03d.dxf' "$DATA" "$k")"); done
cat "${drawings[@]}" >/dev/null  # every run reads from the page cache

# Runs a command under GNU time, its output into $1; prints its seconds. Status 1 is a check that
# found something, which is what this delivery is for.
timed() {
    local out=$1 report status=0
    shift
    report=$(mktemp)
    /usr/bin/time -f "%e" -o "$report" "$@" >"$out" 2>&1 || status=$?
    ((status <= 1)) || echo "bench: $1 exited with $status (see $out)" >&2
    tail -n 1 "$report"
    rm -f "$report"
}

# The program's figure is the median of three runs, each a fresh process; its own settings folder,
# since reading a classifier may write the user's pattern files.
SUMMARY=$DATA/check.out
check() {
    XDG_CONFIG_HOME="$DATA/config" timed "$SUMMARY" "$PROGRAM" check --classifier "$CLASSES" --jobs "$JOBS" \
        --report "$DATA/report.jsonl" "${drawings[@]}"
}
ours=$({ check; check; check; } | sort -n | sed -n 2p)
RULES_OUT=$DATA/check-rules.out
theirs=$(timed "$RULES_OUT" "$PYTHON" "$RULES" "$CLASSES" "${drawings[@]}" --jobs "$JOBS")

# The summary's total row: objects, valid, faulty, unclassified, foreign, audit.
read -r our_objects our_faulty < <(awk '$1 == "total" { print $2, $4 }' "$SUMMARY")
their_objects=$(awk '$1 == "objects" { print $2 }' "$RULES_OUT")
their_faulty=$(awk '$1 == "faulty" { print $2 }' "$RULES_OUT")
planted=$(cat "$DATA"/drawing-*.faulty | wc -l)

printf '\n== veltarn check of %s drawings of %s entities, a tenth faulty, %s at a time, beside check_rules.py over ezdxf in %s processes (target: veltarn at least 50 times faster)\n' \
    "$DRAWINGS" "$ENTITIES" "$JOBS" "$JOBS"
awk -v drawings="$DRAWINGS" -v ours="$ours" -v theirs="$theirs" -v oo="${our_objects:-0}" -v to="${their_objects:-0}" \
    -v of="${our_faulty:-?}" -v tf="${their_faulty:-?}" -v planted="$planted" -v jobs="$JOBS" 'BEGIN {
    if (ours < 0.01) ours = 0.01  # GNU time counts in hundredths
    if (theirs < 0.01) theirs = 0.01
    printf "%-40s %9s %11s %11s %9s\n", "", "seconds", "drawings/s", "objects/s", "faulty"
    printf "%-40s %9.2f %11.1f %11.0f %9s\n", "veltarn check --jobs " jobs, ours, drawings / ours, oo / ours, of
    printf "%-40s %9.2f %11.1f %11.0f %9s\n", "check_rules.py (ezdxf, " jobs " processes)", theirs, drawings / theirs, to / theirs, tf
    printf "%-40s %9s %11s %11s %9s\n", "the generator'\''s faulty handles", "", "", "", planted
    printf "veltarn vs check_rules.py: %.0fx faster (target >= 50x): %s\n", theirs / ours, (theirs / ours >= 50 ? "target met" : "TARGET MISSED")
    if (of == tf && tf == planted) printf "faulty objects: the same, %s, found by both and planted by the generator\n", of
    else printf "faulty objects DIFFER: veltarn %s, check_rules.py %s, the generator planted %s\n", of, tf, planted
}'
