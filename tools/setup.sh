#!/usr/bin/env bash
# Installs the Debian packages the project needs, only those that are missing.
# Works as root and as a user with sudo; does nothing when everything is there.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev
    qt6-tools-dev designer-qt6 libqt6opengl6-dev  # the Designer plugin, QUiLoader, designer
    libsqlite3-dev sqlite3
    postgresql libpq-dev         # the PostgreSQL engine and the throwaway servers of its tests
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev clang-format clang-tidy
    python3-dbf python3-dbfread
    g++-mingw-w64-x86-64-posix   # compiles the Windows branches (tools/check-windows.sh)
    xvfb xauth                   # a real X display for the pictures in docs/images
    poppler-utils                # pdftotext reads back what the text editor printed
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
