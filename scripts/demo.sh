#!/usr/bin/env bash
# The main job on the bundled examples: check the example classifier against the example drawing,
# audit the drawing, load the classifier into it and run the selection and value checks (what
# each finds: examples/README.md), list objects with their object data on the command line, and
# read a drawing and write it back unchanged.
set -euo pipefail
build=${1:-build}
out="$build/demo"
mkdir -p "$out"

# The classifier check may append patterns to the user's pattern files: give it a home of its own.
export XDG_CONFIG_HOME="$out/config"
rm -rf "$XDG_CONFIG_HOME"

echo "== veltarn examples/utility-survey.dxf --check-classifier examples/utility-survey.txt"
"$build/bin/veltarn" examples/utility-survey.dxf --check-classifier examples/utility-survey.txt

echo "== veltarn examples/utility-survey.dxf --audit"
"$build/bin/veltarn" examples/utility-survey.dxf --audit

echo "== veltarn examples/utility-survey.dxf --script examples/check.scr"
# "Selected: N" ends no line, as at a CAD command line: the next prompt follows on the same one.
"$build/bin/veltarn" examples/utility-survey.dxf --script examples/check.scr | sed 's/Selected: [0-9]*/&\n/'

# The same drawing checked from a script, as a CAD manager checks a delivery: every fault with
# its reason, in a report for machines, one for spreadsheets and a page for people. Status 1 says
# faults were found.
echo "== veltarn check --classifier examples/utility-survey.txt examples/utility-survey.dxf --report $out/check.jsonl --report $out/check.csv --report $out/check.html"
status=0
"$build/bin/veltarn" check --classifier examples/utility-survey.txt examples/utility-survey.dxf \
  --report "$out/check.jsonl" --report "$out/check.csv" --report "$out/check.html" || status=$?
[ "$status" -le 1 ] || exit "$status"
echo "(exit status $status; the first findings of $out/check.csv:)"
head -n 6 "$out/check.csv"
echo "(the page for people, with the plan and its faulty objects in red: $out/check.html)"

# The classified objects handed to a GIS: their class, records and geometry, as GeoJSON and CSV.
echo "== veltarn export --classifier examples/utility-survey.txt examples/utility-survey.dxf $out/survey.geojson (and .csv)"
"$build/bin/veltarn" export --classifier examples/utility-survey.txt examples/utility-survey.dxf "$out/survey.geojson"
"$build/bin/veltarn" export --classifier examples/utility-survey.txt examples/utility-survey.dxf "$out/survey.csv"
echo "(the first feature:)"
sed -n 2p "$out/survey.geojson"

echo "== veltarn examples/survey.dxf --script examples/demo.scr --save-as $out/survey-checked.dxf"
"$build/bin/veltarn" examples/survey.dxf --script examples/demo.scr --save-as "$out/survey-checked.dxf"

echo "== veltarn examples/survey.dxf --save-as $out/survey.dxf"
"$build/bin/veltarn" examples/survey.dxf --save-as "$out/survey.dxf"
if cmp -s examples/survey.dxf "$out/survey.dxf"; then
  echo "round trip: identical ($(wc -c < "$out/survey.dxf") bytes)"
else
  echo "round trip: the written drawing differs from the example" >&2
  exit 1
fi

# Putting the drawing in order: objects classified by name and automatically, a layer changed by
# hand and restored, the draw order sorted by priority, the statistics, a classifier template.
ordered="$out/utility-survey-ordered.dxf"
rm -f "$out/template.txt"
echo "== veltarn examples/utility-survey.dxf --script examples/order.scr --command 'VELTARN_TEMPLATE ...' --save-as $ordered"
"$build/bin/veltarn" examples/utility-survey.dxf --script examples/order.scr \
  --command "VELTARN_TEMPLATE\n\n\n$out/template.txt\n" --save-as "$ordered" | sed 's/Selected: [0-9]*/&\n/'

echo "== the saved drawing checked again: veltarn $ordered --script examples/check.scr"
# One line per check: the command, the answers to its prompts, and what it selected.
"$build/bin/veltarn" "$ordered" --script examples/check.scr | sed 's/Selected: [0-9]*/&\n/' | awk '
  /^Command: VELTARN_(SEL|ASSERT)/ { line = substr($0, 10); next }
  line != "" && /^(Object|Use|Match|Check)[^:]*: / { sub(/^[^:]*(<[^>]*>)?: /, ""); line = line " " $0; next }
  line != "" && /^Selected: / { printf "%-36s %s\n", line, $0; line = "" }'

echo "== the template written from the drawing, its comment marks removed, read back: --check-classifier"
sed 's/^#//' "$out/template.txt" > "$out/template-uncommented.txt"
"$build/bin/veltarn" "$ordered" --check-classifier "$out/template-uncommented.txt" | tail -n 1
echo "== the template's first definitions ($out/template.txt)"
sed -n '/^Class\t/,/^\/Class/p' "$out/template.txt" | head -n 24
