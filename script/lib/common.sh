# What all scripts share: strict mode, and the checkout as the working folder wherever they were called from.
# shellcheck shell=bash
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
root=$PWD

say() { printf '\033[1m== %s\033[0m\n' "$*"; }

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# The C++ files that are ours, one a line.
cpp_files() { find src tests bench -name '*.h' -o -name '*.cpp' | LC_ALL=C sort; }
