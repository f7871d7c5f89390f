#!/usr/bin/env bash
# Runs clang-tidy (config: .clang-tidy) over the project's own sources, using the compile
# commands of ./build. Pass file names to check only those.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/compile_commands.json ] || tools/build.sh
if [ $# -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' | grep -v -E '(^|/)(tests?|benchmarks)/')
fi
clang-tidy -p build --quiet "${files[@]}"
