#!/usr/bin/env bash
# Installs the Debian packages a make target needs, and only those that are missing, so that
# running it again is cheap. Usage: install-deps.sh build|test|bench|fuzz|desktop ...
set -euo pipefail

declare -A WANT=(
  [build]="cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev libedit-dev"
  [test]="python3-ezdxf librecad gdal-bin time"
  [bench]="python3-ezdxf gdal-bin time"
  [fuzz]="clang libclang-rt-14-dev"
  [desktop]="qt6-base-dev"
)

missing=()
for target in "$@"; do
  [[ -n "${WANT[$target]+x}" ]] || { echo "install-deps: unknown target '$target'" >&2; exit 2; }
  for pkg in ${WANT[$target]}; do
    status=$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$pkg")
  done
done
((${#missing[@]} == 0)) && exit 0

echo "install-deps: installing ${missing[*]}"
SUDO=""
[[ $(id -u) -eq 0 ]] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
