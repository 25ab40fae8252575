#!/usr/bin/env bash
# The main job on the bundled example: read the example drawing and write it back.
set -euo pipefail
build=${1:-build}
out="$build/demo"
mkdir -p "$out"
echo "== veltarn examples/survey.dxf --save-as $out/survey.dxf"
"$build/bin/veltarn" examples/survey.dxf --save-as "$out/survey.dxf"
if cmp -s examples/survey.dxf "$out/survey.dxf"; then
  echo "round trip: identical ($(wc -c < "$out/survey.dxf") bytes)"
else
  echo "round trip: the written drawing differs from the example" >&2
  exit 1
fi
