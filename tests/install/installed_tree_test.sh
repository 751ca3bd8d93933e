#!/usr/bin/env bash
# Installs a build into a scratch prefix, moves the prefix elsewhere and runs
# what was installed from outside the build tree: the command line tool makes,
# reads and exports a message (the package builder found in its tool folder),
# and the window starts and finds its program folder. Then the desktop
# integration is checked: the desktop file and metainfo by their validators,
# the file types by xdg-mime against a private MIME database, the icons'
# sizes and the manual pages.
#
# Usage: installed_tree_test.sh BUILD_DIR
set -uo pipefail

build=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd)
for tool in desktop-file-validate appstreamcli update-mime-database xdg-mime gio identify man readelf; do
  command -v "$tool" >/dev/null || { echo "installed-tree: $tool is missing; run scripts/install-deps" >&2; exit 2; }
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() {
  echo "FAIL: $1" >&2
  failures=$((failures + 1))
}
expect_same() { # what got expected
  [ "$2" = "$3" ] || fail "$1: expected '$3', got '$2'"
}

if ! cmake --install "$build" --prefix "$scratch/first/usr" >"$scratch/install.log" 2>&1; then
  cat "$scratch/install.log" >&2
  echo "installed-tree: cmake --install failed" >&2
  exit 1
fi
# Nothing may point back at where the tree was installed first.
mv "$scratch/first" "$scratch/moved"
root=$scratch/moved
prefix=$root/usr
app=org.vellumo.Vellumo

for file in bin/vellumo bin/vellumo-cli lib/vellumo/makesis; do
  [ -x "$prefix/$file" ] || fail "$file is not installed as a program"
done
for file in share/vellumo/vellumo.xml share/vellumo/language/en-us.xml \
  share/vellumo/language/de-de.xml share/vellumo/help/en-us.html share/vellumo/skins \
  share/vellumo/archive/Sounds "share/applications/$app.desktop" "share/metainfo/$app.metainfo.xml" \
  "share/mime/packages/$app.xml" share/man/man1/vellumo.1.gz share/man/man1/vellumo-cli.1.gz \
  share/doc/vellumo/copyright share/doc/vellumo/changelog.gz; do
  [ -e "$prefix/$file" ] || fail "$file is not installed"
done
for program in bin/vellumo bin/vellumo-cli lib/vellumo/makesis; do
  if readelf -d "$prefix/$program" | grep -E 'RPATH|RUNPATH' | grep -qF "$build"; then
    fail "$program still searches the build tree for libraries"
  fi
done

# --- the command line tool, run from a folder of its own ---------------------
work=$scratch/work
mkdir -p "$work/sis" "$work/wap" "$work/tpl"
cd "$work" || exit 1
cli() { XDG_DATA_HOME="$scratch/cli-home" "$prefix/bin/vellumo-cli" "$@"; }
cli new card.mms --name Postcard --slide 3000 --color FFFFCC --text "Hello from afar" 10,10,120,40 \
  --slide 2000 --text "Second" 5,5,60,20 || fail "vellumo-cli new failed"
info=$(cli info card.mms) || fail "vellumo-cli info failed"
grep -qx 'name: Postcard' <<<"$info" || fail "info does not name the message: $info"
grep -qx 'slides: 2' <<<"$info" || fail "info does not count two slides: $info"
grep -q '"Hello from afar"' <<<"$info" || fail "info does not show the slide text: $info"
expect_same "the language read from the installed settings" "$(cli settings get preferences Language)" en-us
cli export card.mms --kind sis --format ms sis/card.smil || fail "exporting a package failed"
[ -s sis/mms.SIS ] || fail "no package was built: the package builder was not found"
cli export card.mms --kind wap --format ms wap/card.smil || fail "exporting a binary MMS failed"
cli export card.mms --kind tpl --format ms tpl/card.smil || fail "exporting a template failed"

# --- the window: it must find its program folder from the moved prefix --------
gui_home=$scratch/gui-home
XDG_DATA_HOME=$gui_home QT_QPA_PLATFORM=offscreen "$prefix/bin/vellumo" "$work/card.mms" \
  >"$scratch/gui.log" 2>&1 &
gui=$!
# Up once the message named on its command line is open in its work folder.
for _ in $(seq 120); do
  grep -qs Postcard "$gui_home/Vellumo/work/message.xml" && break
  kill -0 "$gui" 2>/dev/null || break
  sleep 0.5
done
sleep 1
if kill -0 "$gui" 2>/dev/null; then
  kill -TERM "$gui"
  wait "$gui"
else
  wait "$gui"
  status=$?
  cat "$scratch/gui.log" >&2
  fail "the window ended by itself (exit $status) instead of running until stopped"
fi
[ -s "$gui_home/Vellumo/vellumo.xml" ] || fail "the window made no settings from the program folder"
if ! diff -r "$prefix/share/vellumo/archive" "$gui_home/Vellumo/archive" >/dev/null; then
  fail "the window did not copy the program folder's media archive"
fi
grep -q 'Postcard' "$gui_home/Vellumo/work/message.xml" 2>/dev/null ||
  fail "the window did not open the message named on its command line"

# --- desktop file and metainfo ------------------------------------------------
desktop=$prefix/share/applications/$app.desktop
report=$(desktop-file-validate "$desktop" 2>&1) && [ -z "$report" ] || fail "desktop-file-validate: $report"
exec_line=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$prefix/bin/$exec_line" ] || fail "the desktop file starts '$exec_line', which is not installed in bin/"
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$prefix/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "the desktop file's icon '$icon' is not installed"
for type in $(sed -n 's/^MimeType=//p' "$desktop" | tr ';' ' '); do
  grep -qF "type=\"$type\"" "$prefix/share/mime/packages/$app.xml" || fail "the desktop file opens $type, which no MIME package defines"
done
report=$(appstreamcli validate --no-net "$prefix/share/metainfo/$app.metainfo.xml" 2>&1) ||
  fail "appstreamcli validate: $report"
report=$(appstreamcli validate-tree --no-net "$root" 2>&1) || fail "appstreamcli validate-tree: $report"

# --- the file types, in a MIME database of this test's own ----------------------
mime_home=$scratch/mime-home
mkdir -p "$mime_home/mime/packages"
cp "$prefix/share/mime/packages/$app.xml" "$mime_home/mime/packages/"
XDG_DATA_HOME=$mime_home update-mime-database "$mime_home/mime" || fail "update-mime-database refused the MIME package"
# Desktops that read the shared MIME database by content (GNOME, Xfce,
# Cinnamon) answer through gio; without a desktop xdg-mime would ask file(1),
# which knows nothing of it.
filetype() { XDG_DATA_HOME=$mime_home XDG_CURRENT_DESKTOP=GNOME xdg-mime query filetype "$1" 2>/dev/null; }
cp wap/mms.wap phone.mms
cli export card.mms --kind wap --format ms --retrieve-conf --overwrite wap/card.smil ||
  fail "exporting a received binary MMS failed"
cp wap/mms.wap received.mms
{ printf 'not a message\0'; head -c 4000 /dev/urandom; } >x.mms
printf 'plain words in a file\n' >words.mms
printf 'some text\n' | gzip -9n >notes.gz
cp notes.gz compressed
expect_same "our message file" "$(filetype card.mms)" application/x-vellumo-message
expect_same "a binary MMS as sent, named .mms" "$(filetype phone.mms)" application/vnd.wap.mms-message
expect_same "a binary MMS as received, named .mms" "$(filetype received.mms)" application/vnd.wap.mms-message
expect_same "a binary MMS named .wap" "$(filetype wap/mms.wap)" application/vnd.wap.mms-message
expect_same "our template" "$(filetype tpl/mms.tpl)" application/x-vellumo-template
for other in x.mms words.mms; do
  case "$(filetype "$other")" in
  application/x-vellumo-*) fail "$other is no message of ours, yet xdg-mime says $(filetype "$other")" ;;
  esac
done
expect_same "a gzip file of someone else's" "$(filetype notes.gz)" application/gzip
expect_same "a gzip file without a name" "$(filetype compressed)" application/gzip

# --- icons and manual pages ----------------------------------------------------
for size in 16 22 24 32 48 64 128 256; do
  png=$prefix/share/icons/hicolor/${size}x${size}/apps/$app.png
  expect_same "the ${size}x${size} icon" "$(identify -format '%wx%h' "$png" 2>&1)" "${size}x${size}"
done
for page in vellumo vellumo-cli; do
  warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z \
    "$prefix/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "man page $page.1 has formatting problems: $warnings"
done
manual=$(LC_ALL=C.UTF-8 MANWIDTH=200 man -l -P cat "$prefix/share/man/man1/vellumo-cli.1.gz" 2>/dev/null)
for command in $(cli help | sed -n 's/^vellumo-cli \([a-z0-9-]*\) .*/\1/p' | sort -u); do
  grep -qE "^ +$command( |$)" <<<"$manual" || fail "vellumo-cli.1 does not describe the command '$command'"
done

if [ "$failures" -gt 0 ]; then
  echo "installed-tree: $failures check(s) failed" >&2
  exit 1
fi
echo "installed-tree: the moved installation runs and its desktop files pass their checks"
