#!/usr/bin/env bash
# Runs clang-tidy (config: .clang-tidy) over the project's own sources, using the compile
# commands of ./build, on every core; any warning is an error and fails the run (CI runs
# it so). Headers are checked through the sources that include them. Pass file names to
# check only those.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/compile_commands.json ] || tools/build.sh
if [ $# -gt 0 ]; then
    files=("$@")
else
    # The project's own sources that this build compiles: clang-tidy needs their flags.
    # (The Windows-only files compile in tools/check-windows.sh.)
    mapfile -t files < <(git ls-files '*.cpp' | grep -v -E '(^|/)(tests?|benchmarks|fuzz)/' \
        | while read -r f; do
            grep -q -F "\"file\": \"$PWD/$f\"" build/compile_commands.json && echo "$f"
        done)
fi
# clang prints "N warnings generated." for the system headers it is told to ignore.
printf '%s\n' "${files[@]}" \
    | xargs -P "$(nproc)" -n 4 clang-tidy -p build --quiet --warnings-as-errors='*' 2>&1 \
    | { grep -v -E '^[0-9]+ warnings? (and [0-9]+ errors? )?generated\.$' || true; }
echo "clang-tidy: ${#files[@]} files clean"
