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
# What a payroll office's nightly job does: a batch export of the first week of waiting time
# records of the demo data (the rest stay for the window). The file is Windows-1252 with CRLF line ends.
batch_file=$PWD/demo/batch-time.txt
echo
echo "Batch export of the week 01/15/2024 to 01/19/2024 into $batch_file:"
if build/tallyport-batch export --settings "$settings_file" --user "$user_id" --dataset "Time Data" \
        --fields EmployeeNumber=Emp,EmployeeLastName,Date,Time,CustomerNumber,IsJobInRecord \
        --from 01/15/2024 --to 01/19/2024 --format-date --format-time --output "$batch_file" --yes; then
    echo "First lines of the file:"
    head -n 6 "$batch_file" | iconv -f WINDOWS-1252 -t UTF-8 | tr -d '\r'
else
    echo "(the batch export did not run for user $user_id; see the text above)"
fi

# The GPS tracks of every subject in November 2023, drawn without a window.
picture=$PWD/demo/tracks-november.png
echo
echo "Track picture of every subject's November 2023 into $picture:"
build/tallyport-batch export --settings "$settings_file" --user "$user_id" --dataset "GPS Data" \
        --fields TrackID --from 11/01/2023 --to 11/30/2023 --subject all --picture "$picture" \
    || echo "(no picture for user $user_id; see the text above)"

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
