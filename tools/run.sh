#!/usr/bin/env bash
# The main job: install what is missing, build, and run the sample program.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/build.sh
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
fi
exec build/apps/plxdemo/plxdemo "$@"
