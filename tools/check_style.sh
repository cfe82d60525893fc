#!/bin/bash
# check_style.sh [--all]: holds the C++ code against .clang-format, and the product's against .clang-tidy. Changes nothing.
# Names, function sizes and unused or outdated forms take a minute or two and are what CI checks; --all runs every check
# of .clang-tidy, which takes three times as long.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
checks='-*,readability-identifier-naming,readability-function-size,misc-unused-*,modernize-use-override,modernize-use-nullptr'
[ "${1:-}" = --all ] && checks=''  # the configuration's own

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

[ -f build/release/compile_commands.json ] || cmake --preset release
grep -oP '"file": "\K[^"]+' build/release/compile_commands.json | grep -vE '/(tests|fuzz|benchmarks)/' | sort -u |
    xargs --max-procs "$(nproc)" --max-args 4 clang-tidy --quiet -p build/release --checks="$checks" \
        --extra-arg=-w 2> >(grep -v 'warnings generated' >&2)
echo "style: all files are as .clang-format and .clang-tidy say"
