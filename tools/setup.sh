#!/bin/bash
# setup.sh [demo|companions]: installs what building and testing need, on Debian 12 or later; with "demo" only what building
# the program and the demo need; with "companions" also what the companion programs need. Does nothing when all is there.
set -euo pipefail

packages=(g++ cmake ninja-build python3 python3-numpy)
if [ "${1:-}" != demo ]; then
    packages+=(libgtest-dev libgmock-dev libbenchmark-dev python3-pytest python3-jsonschema strace util-linux
               clang-format clang-tidy)
fi
if [ "${1:-}" = companions ]; then
    packages+=(libgdal-dev libproj-dev proj-data libpugixml-dev libcli11-dev gdal-bin python3-gdal snakemake)
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup.sh: run as root, or install sudo" >&2; exit 1; }
    as_root=(sudo)
fi
"${as_root[@]}" apt-get update --quiet
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 install --yes --quiet --no-install-recommends "${missing[@]}"
