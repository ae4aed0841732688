# For bash scripts that start programs beside them: `source` it. However the script ends, the
# programs end with it, the last started first.

background_programs=()
background_folder=$(mktemp -d)

background_stop() {
  local i
  for ((i = ${#background_programs[@]} - 1; i >= 0; --i)); do
    stop "${background_programs[i]}" || true
  done
  rm -rf "$background_folder"
}
trap background_stop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# Starts a program; `started` is its process.
start() { start_writing_to 1 "$@"; }

start_writing_to() {
  local output=$1
  shift
  setpriv --pdeathsig TERM "$@" >&"$output" &
  started=$!
  background_programs+=("$started")
}

# Starts a program and waits until it has written a line, which becomes `line`. False if it ends
# before, or takes half a minute.
start_and_read() {
  local pipe=$background_folder/pipe both output
  mkfifo "$pipe"
  exec {both}<>"$pipe" {output}<"$pipe"
  rm "$pipe"
  start_writing_to "$both" "$@"
  exec {both}>&-
  read -r -t 30 -u "$output" line
}

# Ends a program that was started here and waits until it is gone; its exit status. One that takes
# ten seconds is killed.
stop() {
  local tenths
  kill -TERM "$1" 2>/dev/null || true
  for ((tenths = 0; tenths < 100; ++tenths)); do
    kill -0 "$1" 2>/dev/null || break
    sleep 0.1
  done
  kill -KILL "$1" 2>/dev/null || true
  wait "$1"
}

# A display of its own, WIDTHxHEIGHT: sets DISPLAY, and `screen` to the file with its picture.
start_screen() {
  local log=$background_folder/screen.log
  if ! start_and_read Xvfb -displayfd 1 -screen 0 "$1x24" -fbdir "$background_folder" -noreset \
    -nocursor -nolisten tcp 2>"$log"; then
    cat "$log" >&2
    fail "the virtual display did not start"
  fi
  export DISPLAY=:$line QT_QPA_PLATFORM=xcb
  unset WAYLAND_DISPLAY
  screen=$background_folder/Xvfb_screen0
}
