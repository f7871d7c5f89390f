#!/usr/bin/env bash
# Formats the project's C++ sources with clang-format; --check only reports.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h' 2>/dev/null || find . -name '*.cpp' -o -name '*.h')
[ ${#files[@]} -eq 0 ] && exit 0
if [ "${1:-}" = "--check" ]; then
    clang-format --dry-run --Werror "${files[@]}"
    echo "format check: ${#files[@]} files clean"
else
    clang-format -i "${files[@]}"
fi
