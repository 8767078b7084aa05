#!/usr/bin/env bash
# Installs a build into a scratch prefix and checks what a user gets: the three programs run
# from there (a demo database made by the installed generator, one export by the installed
# batch tool with the installed example settings), the desktop entry, the icons and the man
# pages (a groff or man warning fails), the copyright file and the changelog.
#   check_install.sh CMAKE BUILD-DIR VERSION
set -euo pipefail
[ $# -eq 3 ] || { echo "usage: $0 CMAKE BUILD-DIR VERSION" >&2; exit 2; }
cmake_command=$1
build=$2
version=$3

scratch=$(mktemp -d "${TMPDIR:-/tmp}/tallyport-install.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
work=$scratch/work
mkdir -p "$work/settings"
chmod 0700 "$work"
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }
need() { command -v "$1" >/dev/null || { echo "FAIL: $1 is missing (scripts/setup.sh installs it)" >&2; exit 1; }; }
need desktop-file-validate
need man
need groff

"$cmake_command" --install "$build" --prefix "$prefix" >/dev/null

# What is installed, and nothing more: no tests, no benchmarks.
expected=(bin/tallyport bin/tallyport-batch bin/tallyport-demo-db
          share/applications/tallyport.desktop
          share/man/man1/tallyport.1.gz share/man/man1/tallyport-batch.1.gz share/man/man1/tallyport-demo-db.1.gz
          share/doc/tallyport/copyright share/doc/tallyport/changelog.gz
          share/tallyport/schema_sqlite.sql share/tallyport/schema_postgres.sql
          share/tallyport/examples/KRV.ini share/tallyport/examples/lumtrek.ini)
for size in 16 22 24 32 48 64 128 256; do
    expected+=("share/icons/hicolor/${size}x${size}/apps/tallyport.png")
done
actual=$(cd "$prefix" && find . -type f | sed 's|^\./||' | sort)
wanted=$(printf '%s\n' "${expected[@]}" | sort)
if [ "$actual" != "$wanted" ]; then
    fail "installed files differ from the expected list:"
    diff <(echo "$wanted") <(echo "$actual") >&2 || true
fi
for size in 16 48 256; do
    file "$prefix/share/icons/hicolor/${size}x${size}/apps/tallyport.png" | grep -q "PNG image data, $size x $size" \
        || fail "the ${size}x${size} icon is not a $size pixel PNG"
done

# The programs run from the prefix.
out=$("$prefix/bin/tallyport-batch" --version) || fail "tallyport-batch --version failed"
[ "$out" = "tallyport-batch $version" ] || fail "tallyport-batch --version printed '$out'"

help=$("$prefix/bin/tallyport-demo-db" --help)
grep -qF "read from $(realpath "$prefix/share/tallyport")." <<<"$help" \
    || fail "the installed tallyport-demo-db does not read the installed schema scripts: $help"
"$prefix/bin/tallyport-demo-db" --employees 6 --vehicles 3 --customers 3 --locations 3 --time-records 40 \
    --inventory-records 10 --tracks 2 --gps-points 40 "$work/fleet.db" >/dev/null \
    || fail "the installed tallyport-demo-db could not make a database"

# The example settings, pointed at the demo database, drive an export.
sed -e "s|^Field1=.*|Field1=$work/|" -e "s|^Field2=.*|Field2=fleet.db|" \
    "$prefix/share/tallyport/examples/KRV.ini" >"$work/settings/KRV.ini"
export_time() {
    TALLYPORT_SETTINGS_DIR=$work/settings "$prefix/bin/tallyport-batch" export --settings KRV.ini --user 1 \
        --dataset "Time Data" --fields EmployeeNumber=Emp,EmployeeLastName,Date --format-date \
        --output "$work/time.txt" --yes 2>"$work/stderr"
}
status=0
out=$(export_time) || status=$?
if [ "$status" -ne 0 ] || [ "$out" != "Export Completed Successfully" ]; then
    fail "export: status $status, output '$out', errors: $(cat "$work/stderr")"
else
    header=$(head -n 1 "$work/time.txt" | tr -d '\r')
    [ "$header" = '"Emp","EmployeeLastName","Date"' ] || fail "export header line is '$header'"
    grep -qE '^[0-9]+,"[^"]*","[0-9]{2}/[0-9]{2}/[0-9]{4}"'$'\r''$' <(sed -n 2p "$work/time.txt") \
        || fail "export record line is '$(sed -n 2p "$work/time.txt")'"
    # The records were marked: a second night has nothing left.
    status=0
    out=$(export_time) || status=$?
    [ "$status" -eq 1 ] && [ "$out" = "There are no records available." ] \
        || fail "second export: status $status, output '$out'"
fi

# The window from the launcher, without a screen: it says what it needs and exits cleanly.
status=0
QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$work "$prefix/bin/tallyport" --screenshots "$work/shots" --launcher \
    >"$work/gui.out" 2>"$work/gui.err" || status=$?
[ "$status" -eq 0 ] && grep -q "opened by the fleet product" "$work/gui.err" \
    || fail "tallyport --launcher: status $status, $(cat "$work/gui.err")"

# The desktop entry is valid and starts the installed program with the installed icon.
desktop=$prefix/share/applications/tallyport.desktop
desktop-file-validate "$desktop" >&2 || fail "desktop-file-validate rejects the desktop entry"
exec_program=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$prefix/bin/$exec_program" ] || fail "Exec names '$exec_program', not an installed program"
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$prefix/share/icons/hicolor/48x48/apps/$icon.png" ] || fail "Icon names '$icon', not an installed icon"

# Man pages (compressed, as the package has them) render without a warning and name every
# option the programs know.
man_page() { gzip -dc "$prefix/share/man/man1/$1.1.gz"; }
for page in tallyport tallyport-batch tallyport-demo-db; do
    source=$(man_page "$page") || { fail "$page.1.gz is not a gzip file"; continue; }
    warnings=$(MANWIDTH=80 man --warnings -l "$prefix/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "man warns about $page.1: $warnings"
    warnings=$(groff -ww -man -z <<<"$source" 2>&1)
    [ -z "$warnings" ] || fail "groff warns about $page.1: $warnings"
    sections=(NAME SYNOPSIS DESCRIPTION OPTIONS "EXIT STATUS" EXAMPLES)
    [ "$page" = tallyport-demo-db ] || sections+=(ENVIRONMENT FILES)
    for section in "${sections[@]}"; do
        grep -qx "\.SH \"\?$section\"\?" <<<"$source" || fail "$page.1 has no $section section"
    done
done
for program in tallyport-batch tallyport-demo-db; do
    rendered=$(MANWIDTH=200 man -l "$prefix/share/man/man1/$program.1.gz" 2>/dev/null)
    for option in $("$prefix/bin/$program" --help | grep -oE -- '--[a-z][a-z-]+' | sort -u); do
        [ "$option" = --help-all ] && continue   # Qt's own
        grep -qF -- "$option" <<<"$rendered" || fail "$program.1 does not mention $option"
    done
done
rendered=$(MANWIDTH=200 man -l "$prefix/share/man/man1/tallyport-batch.1.gz" 2>/dev/null)
for needed in "30 2 * * *" TALLYPORT_SETTINGS_DIR XDG_CONFIG_HOME; do
    grep -qF -- "$needed" <<<"$rendered" || fail "tallyport-batch.1 does not mention $needed"
done
rendered=$(MANWIDTH=200 man -l "$prefix/share/man/man1/tallyport.1.gz" 2>/dev/null)
for option in --launcher --screenshots TALLYPORT_SETTINGS_DIR; do
    grep -qF -- "$option" <<<"$rendered" || fail "tallyport.1 does not mention $option"
done

# The changelog's newest entry is this version (dpkg and lintian read it so).
first=$(gzip -dc "$prefix/share/doc/tallyport/changelog.gz" | head -n 1)
[[ "$first" == "tallyport ($version) "* ]] || fail "the changelog begins '$first', not version $version"

if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed" >&2
    exit 1
fi
echo "installed and checked in $prefix"
