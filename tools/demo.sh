#!/bin/bash
# demo.sh [FOLDER]: builds velmora, makes a scene, runs velmora on it, shows the products, and draws a picture of them when
# velmora-view can be built. FOLDER (default build/demo) is replaced if an earlier demo left it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
repository=$PWD
folder=$(realpath --canonicalize-missing "${1:-build/demo}")

# Packages are looked at only where something is missing: on other systems the tools may have come another way.
is_complete() {
    for tool in g++ cmake ninja; do command -v "$tool" >/dev/null || return 1; done
    /usr/bin/python3 -c "import numpy" 2>/dev/null
}
is_complete || tools/setup.sh demo
cmake --preset program
cmake --build --preset program --target velmora
view=$repository/build/program/view/velmora-view
if cmake --build --preset program --target help | grep "^velmora-view:" >/dev/null; then
    cmake --build --preset program --target velmora-view
else
    view=
fi

if [ -e "$folder" ]; then
    [ -f "$folder/scene.pcf" ] || { echo "demo.sh: $folder exists and is no scene" >&2; exit 1; }
    rm -r -- "$folder"
fi
demo/make_scene.py "$folder" --samples 1500 --lines 1200 --seed 7 --shift-factors 4 4 --earth-factors 2 2

cd "$folder"
PARALLEL=$(nproc) "$repository/build/program/app/velmora" -pcf scene.pcf -lsl INFO
echo
echo "The products, in $folder (columns x rows, smallest .. largest value):"
"$repository/demo/show_products.py" scene.pcf
echo
if [ -n "$view" ]; then
    "$view" picture simu_phase.ras h_earth.ras >/dev/null
    echo "Pictures of them: $folder/simu_phase.png and $folder/h_earth.png"
else
    echo "For pictures of them install libgdal-dev and libcli11-dev and run this again."
fi
