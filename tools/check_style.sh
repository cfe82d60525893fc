#!/bin/bash
# check_style.sh [--all]: holds the C++ code against .clang-format, and the product's against .clang-tidy. Changes nothing.
# Names, function sizes and unused or outdated forms are what CI checks, all files of a folder in one go: most of the time
# goes into the headers that they share. --all runs every check of .clang-tidy, file by file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
checks='-*,readability-identifier-naming,readability-function-size,misc-unused-*,modernize-use-override,modernize-use-nullptr'
folders='lib time orbit geometry simulation app import companions view'

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

tidy() {  # checks; files from standard input
    xargs --max-procs "$(nproc)" -I {} clang-tidy --quiet --checks="$1" {} \
        -- -std=c++20 -w -I. -I/usr/include/gdal -DVELMORA_VECTOR_LEVEL=plain -DVELMORA_COMPILE_DATE=0 -DVELMORA_BUILDER=0 \
        2> >(grep -v 'warnings generated' >&2)
}
if [ "${1:-}" = --all ]; then
    git ls-files $(printf '%s/*.cpp ' $folders) 'tools/*.cpp' | tidy ''  # the configuration's own
else
    rm -rf build/style
    mkdir -p build/style
    for folder in $folders; do
        git ls-files "$folder/*.cpp" | sed "s|.*|#include \"$PWD/&\"|" > "build/style/$folder.cpp"
    done
    { ls build/style/*.cpp; ls tools/*.cpp; } | tidy "$checks"
    # Unused aliases are told of in the file alone that is given, not in those that it includes.
    git ls-files $(printf '%s/*.cpp ' $folders) |
        xargs grep -lE '^ *(using [A-Za-z0-9_:]+::[A-Za-z0-9_]+;|namespace [A-Za-z0-9_]+ = )' |
        tidy '-*,misc-unused-alias-decls,misc-unused-using-decls'
fi
echo "style: all files are as .clang-format and .clang-tidy say"
