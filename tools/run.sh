#!/usr/bin/env bash
# The main job: install what is missing, build, and open plxform on its sample facility
# table (generated on first run into the work directory), or on the table or form given
# as arguments. Without a display, the form is drawn into a PNG file instead and its path
# is printed.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/build.sh
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
    case " $* " in
        *" --screenshot"*|*" --script"*|*" --save-form"*|*" --help "*|*" --version "*) ;;
        *) set -- "$@" --screenshot "$PWD/build/plxform-sample.png" ;;
    esac
fi
exec build/apps/plxform/plxform "$@"
