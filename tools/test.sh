#!/usr/bin/env bash
# Install what is missing, build, check the formatting and clang-tidy, fuzz the table readers
# and the Jet dialect for a bounded time each, and run every test through CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/build.sh
tools/format.sh --check
tools/tidy.sh
export QT_QPA_PLATFORM=offscreen
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$(mktemp -d)}"

# The DBF table and memo readers, and the Jet dialect (parser, binder, evaluator, SQLite
# translation), under libFuzzer + AddressSanitizer (clang), 30 seconds each.
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DPLX_BUILD_FUZZERS=ON -DPLX_BUILD_BENCHMARKS=OFF -DPLX_BUILD_APPS=OFF >/dev/null
cmake --build build-fuzz --target dbf_fuzz jet_fuzz -j "$(nproc)"
ctest --test-dir build-fuzz -R '^(dbf|jet)_fuzz_bounded$' --output-on-failure

ctest --test-dir build --output-on-failure -j "$(nproc)" --timeout 600
