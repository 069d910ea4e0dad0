#!/usr/bin/env bash
# Builds the library and runs every test through CTest.
#   ./test.sh             release build with assertions, in build/
#   ./test.sh --sanitize  AddressSanitizer + UndefinedBehaviorSanitizer build, in build-sanitize/
set -euo pipefail
cd "$(dirname "$0")"
source scripts/deps.sh

dir=build
args=(-DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g" -DVELLORUM_WERROR=ON)
for a in "$@"; do
    case "$a" in
    --sanitize)
        dir=build-sanitize
        args=(-DCMAKE_BUILD_TYPE=Debug -DVELLORUM_WERROR=ON -DVELLORUM_SANITIZE=ON -DVELLORUM_BENCH=OFF)
        ;;
    *)
        echo "unknown option: $a" >&2
        exit 2
        ;;
    esac
done

vellorum_install_deps
vellorum_build "$dir" "${args[@]}"
export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir "$dir" --output-on-failure --parallel "$(nproc)" --timeout 300
