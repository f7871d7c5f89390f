#!/usr/bin/env bash
# Compiles the sources that have Windows branches with MinGW-w64 (syntax and types only:
# there is no Windows Qt to link against here), so that the Windows file, lock, path and
# settings code cannot rot unseen. Exit 0 when all compile; skips (exit 77) without MinGW.
set -euo pipefail
cd "$(dirname "$0")/.."
cxx=$(command -v x86_64-w64-mingw32-g++-posix || command -v x86_64-w64-mingw32-g++ || true)
if [[ -z "$cxx" ]]; then
    echo "MinGW-w64 g++ not found; skipped"
    exit 77
fi
build_include=${1:-build/include}
qt=$(pkg-config --variable=includedir Qt6Core 2>/dev/null || echo /usr/include/x86_64-linux-gnu/qt6)
sources=(
    services/recordsource/dbf/*.cpp
    services/filelock.cpp services/recordsource/filelock.cpp
    services/installdir.cpp services/inifile.cpp services/inilock.cpp services/paths.cpp services/activitylog.cpp
)
files=()
for f in "${sources[@]}"; do
    [[ "$f" == */dbfnative_posix.cpp ]] || files+=("$f")
done
export cxx build_include qt
compile() {
    "$cxx" -std=c++20 -fsyntax-only -Wall -Wextra -Wno-attributes \
        -DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII -DQT_NO_KEYWORDS \
        -I. -I"$build_include" -I"$qt" -I"$qt/QtCore" "$1" || { echo "FAILED: $1"; return 1; }
}
export -f compile
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -I{} bash -c 'compile "$@"' _ {}
echo "all ${#files[@]} files compile for Windows"
