#!/bin/bash
# check_style.sh [--all]: holds the C++ code against .clang-format, and the product's against .clang-tidy. Changes nothing.
# Names, function sizes and unused or outdated forms are what CI checks, 16 files of a folder in one go: most of the time
# goes into the headers that they share (110 s of processor time where file by file takes 520). --all runs every check of
# .clang-tidy, file by file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
checks='-*,readability-identifier-naming,readability-function-size,misc-unused-*,modernize-use-override,modernize-use-nullptr'
together=ON
if [ "${1:-}" = --all ]; then
    checks=''  # the configuration's own
    together=OFF
fi

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

mkdir -p build
cmake -S . -B build/style -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DVELMORA_TESTS=OFF \
    -DCMAKE_UNITY_BUILD=$together -DCMAKE_UNITY_BUILD_BATCH_SIZE=16 >build/style.log || { cat build/style.log; exit 1; }
grep -oP '"file": "\K[^"]+' build/style/compile_commands.json | sort -u |
    xargs --max-procs "$(nproc)" --max-args 1 clang-tidy --quiet -p build/style --checks="$checks" \
        --extra-arg=-w 2> >(grep -v 'warnings generated' >&2)

# Unused aliases are told of in the file alone that is given, not in those that it includes.
if [ $together = ON ]; then
    git ls-files '*.cpp' | grep -vE '^(tests|fuzz|benchmarks)/' |
        xargs grep -lE '^ *(using [A-Za-z0-9_:]+::[A-Za-z0-9_]+;|namespace [A-Za-z0-9_]+ = )' |
        xargs --max-procs "$(nproc)" -I {} clang-tidy --quiet \
            --checks='-*,misc-unused-alias-decls,misc-unused-using-decls' 2> >(grep -v 'warnings generated' >&2) {} \
            -- -std=c++20 -I. -I/usr/include/gdal
fi
echo "style: all files are as .clang-format and .clang-tidy say"
