#!/bin/bash
# demo.sh [FOLDER]: builds velmora, makes a scene, runs velmora on it and shows the products.
# FOLDER (default build/demo) is replaced if an earlier demo left it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
repository=$PWD
folder=$(realpath --canonicalize-missing "${1:-build/demo}")

tools/setup.sh
cmake --preset release
cmake --build --preset release --target velmora

if [ -e "$folder" ]; then
    [ -f "$folder/scene.pcf" ] || { echo "demo.sh: $folder exists and is no scene" >&2; exit 1; }
    rm -r -- "$folder"
fi
demo/make_scene.py "$folder" --samples 1500 --lines 1200 --seed 7 --shift-factors 4 4 --earth-factors 2 2

cd "$folder"
PARALLEL=$(nproc) "$repository/build/release/app/velmora" -pcf scene.pcf -lsl INFO
echo
echo "The products, in $folder (columns x rows, smallest .. largest value):"
"$repository/demo/show_products.py" scene.pcf
