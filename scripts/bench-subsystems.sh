#!/usr/bin/env bash
# The benchmarks of the other subsystems, each printing its own figures against its target:
# the drawing database, the object-data store, the classifier reader and the command line.
# Usage: scripts/bench-subsystems.sh [BUILD_DIR]
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)

# A benchmark's program, wherever its folder's CMake put it.
program() {
    find "$BUILD/bin" "$BUILD/bench" -maxdepth 2 -type f -name "$1" -perm -u+x 2>/dev/null | head -n 1
}

section() { printf '\n== %s\n' "$1"; }

run() {
    local title=$1 name=$2
    shift 2
    section "$title"
    local path
    path=$(program "$name")
    if [[ -z $path ]]; then
        echo "bench: $name was not built" >&2
        return 1
    fi
    "$path" "$@" 2>&1 | grep -v -e '^\*\*\*WARNING\*\*\* Library was built as DEBUG' -e '^Load Average'
}

run "drawing database: 1,000,000 new entities, each with an extension dictionary and an xrecord; save; reload (target: under 5 s, under 300 bytes per entity beyond the file)" \
    db_bench 1000000
run "object data: 1,000,000 entities with one record each (target: at least 1,000,000 reads a second)" \
    data_bench
run "classifier reader: 10,000 object definitions in 1,000 classes (target: under 0.2 s)" \
    classifier_bench
run "command line: a script of 100,000 command lines through the program (target: at least 50,000 lines a second)" \
    command_line_bench
run "hostile input: LIST of a 20,000-value xrecord; check of a classifier table of 500,000 fields (target: LIST under 0.5 s, the check under 3 s: both grow linearly now)" \
    hostile_input_bench
