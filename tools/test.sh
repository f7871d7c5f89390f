#!/usr/bin/env bash
# Install what is missing, build, check the formatting, and run every test through CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/build.sh
tools/format.sh --check
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j "$(nproc)" --timeout 600
