#!/bin/bash
# test.sh: checks layout and names, then builds and tests everything: threaded code under ThreadSanitizer, all under
# AddressSanitizer and UBSan, then all as it is shipped, whose summary ends the output. Stops at the first failure.
# Tests of minutes are left out: ctest --preset long runs them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
jobs=$(nproc)

tools/setup.sh companions

run_preset() {  # preset, target to build, then arguments of ctest
    local preset=$1 target=$2
    shift 2
    echo "== $preset"
    cmake --preset "$preset"
    cmake --build --preset "$preset" --parallel "$jobs" --target "$target"
    ctest --preset "$preset" --parallel "$jobs" "$@"
}

echo "== style"
tools/check_style.sh
run_preset tsan threads_tests --label-regex threads
run_preset asan all
run_preset ci all
