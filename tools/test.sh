#!/bin/bash
# test.sh: builds and tests everything: threaded code under ThreadSanitizer, all under AddressSanitizer and UBSan, then
# all in the release build, whose summary ends the output. Stops at the first preset that fails.
# Tests of minutes are left out: ctest --preset long runs them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
jobs=$(nproc)

tools/setup.sh

run_preset() {  # preset, then arguments of ctest
    local preset=$1
    shift
    echo "== $preset"
    cmake --preset "$preset"
    cmake --build --preset "$preset" --parallel "$jobs"
    ctest --preset "$preset" --parallel "$jobs" "$@"
}

run_preset tsan --label-regex threads
run_preset asan
run_preset release
