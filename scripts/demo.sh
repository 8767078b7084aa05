#!/usr/bin/env bash
# Sets up, builds, makes a demo database with both settings files in ./demo and starts the
# program on it.   demo.sh [KRV.ini|lumtrek.ini] [USER-ID]   (defaults KRV.ini, 1 = administrator)
set -euo pipefail
cd "$(dirname "$0")/.."

settings_file=${1:-KRV.ini}
user_id=${2:-1}

scripts/setup.sh
scripts/build.sh Release

mkdir -p demo/settings
./build/tallyport-demo-db --force --settings-dir demo/settings demo/tallyport.db
export TALLYPORT_SETTINGS_DIR=$PWD/demo/settings

# The program is started by its host with one comma-separated text:
# caller, settings file, whether Export is offered, user id.
command_line="demo,$settings_file,TRUE,$user_id"

if ! ls src/startup/frmFirst* >/dev/null 2>&1 || [ ! -x build/tallyport ]; then
    echo
    echo "The main window is not built yet: the demo database and settings are ready in ./demo."
    echo "Later: TALLYPORT_SETTINGS_DIR=$TALLYPORT_SETTINGS_DIR build/tallyport \"$command_line\""
    exit 0
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo
    echo "No display: running the program under Xvfb and saving pictures of its windows:"
    export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d "${TMPDIR:-/tmp}/tallyport-xdg.XXXXXX")}
    xvfb-run -a -s "-screen 0 1280x1024x24" \
        build/tallyport --screenshots "$PWD/build/screenshots" "$command_line"
    echo "With a display, run:  TALLYPORT_SETTINGS_DIR=$TALLYPORT_SETTINGS_DIR build/tallyport \"$command_line\""
    exit 0
fi
echo "Starting Tallyport as user $user_id with $settings_file"
exec build/tallyport "$command_line"
