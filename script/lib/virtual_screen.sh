# A screen, a sound device and a photographer for a machine that has none of them; to be sourced.
# shellcheck shell=bash

helpers=()

# Starts a helper in a session of its own, so that Ctrl-C reaches the program and not what it stands on.
start_helper() {
  local log=$1
  shift
  setsid "$@" >"$log" 2>&1 &
  helpers+=($!)
}

# wait_for <what> <command...>: until the command succeeds, for five seconds at most.
wait_for() {
  local what=$1 tries=100
  shift
  until "$@"; do
    ((tries--)) || { cat "$scratch"/*.log >&2; die "$what did not start"; }
    sleep 0.05
  done
}

stop_virtual_screen() {
  trap - EXIT
  ((${#helpers[@]} == 0)) || kill -- "${helpers[@]/#/-}" 2>/dev/null || true
  wait
  rm -rf "$scratch"
}

# A sound server whose only device swallows what it gets at the pace of a real one, and ALSA led to it. The
# recorder keeps the device's latency low; without one it takes sound in blocks of up to two seconds.
start_sound() {
  local socket=$scratch/pulse.socket
  cat >"$scratch/pulse.pa" <<PULSE
load-module module-null-sink sink_name=tavek
load-module module-native-protocol-unix socket=$socket auth-anonymous=1
PULSE
  cat >"$scratch/asound.conf" <<ALSA
</usr/share/alsa/alsa.conf>
pcm.!default { type pulse server "unix:$socket" }
ctl.!default { type pulse server "unix:$socket" }
ALSA
  export PULSE_RUNTIME_PATH=$scratch PULSE_COOKIE=$scratch/cookie PULSE_STATE_PATH=$scratch
  start_helper "$scratch/pulse.log" \
    pulseaudio -n -F "$scratch/pulse.pa" --exit-idle-time=-1 --use-pid-file=no --daemonize=no
  wait_for "the sound server" test -S "$socket"
  start_helper /dev/null parec --server "unix:$socket" --device tavek.monitor --latency-msec 10
  export ALSA_CONFIG_PATH=$scratch/asound.conf
}

# photograph <folder for the pictures> <folder for the one in the making>
photograph() {
  local number=0
  while sleep 1; do
    import -silent -quality 10 -window root "$2/shot.png" || return
    mv "$2/shot.png" "$(printf '%s/%02d.png' "$1" "$number")"
    number=$(((number + 1) % 60))
  done
}

# start_virtual_screen <folder for the pictures>
start_virtual_screen() {
  scratch=$(mktemp -d)
  trap stop_virtual_screen EXIT
  # The server takes a free display by itself, and tells its number once it can be used.
  start_helper "$scratch/screen.log" \
    bash -c "exec Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp 3>'$scratch/display'"
  wait_for "the screen" test -s "$scratch/display"
  DISPLAY=:$(<"$scratch/display")
  export DISPLAY
  start_sound
  rm -rf "$1"
  mkdir -p "$1"
  export -f photograph
  start_helper "$scratch/photographer.log" bash -c 'photograph "$@"' photographer "$1" "$scratch"
  say "no screen here: using a virtual one, DISPLAY=$DISPLAY, with a picture each second in $1" >&2
}

# Runs the program, hands SIGINT and SIGTERM on to it, and ends with its status when it has ended.
run_beside_screen() {
  local status=0
  "$@" &
  local program=$!
  trap 'kill -TERM "$program" 2>/dev/null || true' INT TERM
  wait "$program" || status=$?
  # A wait that a signal cut short says nothing about the program.
  while kill -0 "$program" 2>/dev/null; do
    wait "$program" && status=0 || status=$?
  done
  return "$status"
}
