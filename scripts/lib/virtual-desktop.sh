# A desktop of one's own where there is none: screen, window manager, compositor, sound server,
# session bus, backlight and home folder, all private and all gone at the end. Sourced after
# common.sh.

session=''  # the private folder; empty while there is no desktop
children=() # what was started, in that order

# begin_desktop WIDTH HEIGHT: the environment then names the new desktop.
begin_desktop() {
  session=$(mktemp -d "${TMPDIR:-/tmp}/valdrix-desktop.XXXXXX")
  trap end_desktop EXIT
  use_private_environment
  make_backlight
  start_session_bus
  start_screen "$1" "$2"
  start_sound_server
  start_window_manager
}

end_desktop() {
  end_children
  [[ -z $session ]] || rm -rf "$session"
  session=''
  trap - EXIT
}

end_children() {
  local i
  for ((i = ${#children[@]} - 1; i >= 0; i--)); do
    end_child "${children[i]}"
  done
  children=()
}

# start NAME COMMAND…: in the background, its output in a file of that name; sets `child`.
start() {
  local name=$1
  shift
  "$@" >"$session/$name.log" 2>&1 </dev/null &
  child=$!
  children+=("$child")
}

end_child() {
  kill "$1" 2>/dev/null || return 0
  local tries
  for ((tries = 0; tries < 60; tries++)); do
    kill -0 "$1" 2>/dev/null || break
    sleep 0.05
  done
  kill -KILL "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null || true
}

patience=20 # seconds

# wait_until WHAT COMMAND…: until it succeeds; gives up when the patience is at its end.
wait_until() {
  local what=$1 deadline=$((SECONDS + patience))
  shift
  until "$@"; do
    if [[ $SECONDS -ge $deadline ]]; then
      say "waited in vain for $what" >&2
      return 1
    fi
    sleep 0.05
  done
}

use_private_environment() {
  unset WAYLAND_DISPLAY XAUTHORITY PULSE_SERVER SESSION_MANAGER
  export HOME=$session XDG_RUNTIME_DIR=$session/runtime XDG_SESSION_TYPE=x11
  export XDG_CONFIG_HOME=$session/config XDG_CACHE_HOME=$session/cache
  export XDG_DATA_HOME=$session/data XDG_STATE_HOME=$session/state
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$session/bus
  # Nobody answers there: this desktop must not reach the machine's own services.
  export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$session/no-system-bus
  export VALDRIX_SYSFS=$session/sys
  mkdir -m 700 "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_DATA_HOME"
}

# A laptop's panel at half its brightness, as the kernel shows it.
make_backlight() {
  local connector=$VALDRIX_SYSFS/devices/gpu/drm/card0/card0-eDP-1
  backlight=$connector/panel_backlight
  mkdir -p "$backlight" "$VALDRIX_SYSFS/class/drm" "$VALDRIX_SYSFS/class/backlight"
  ln -s "$connector" "$VALDRIX_SYSFS/class/drm/card0-eDP-1"
  ln -s "$backlight" "$VALDRIX_SYSFS/class/backlight/panel_backlight"
  ln -s .. "$backlight/device"
  echo connected >"$connector/status"
  echo enabled >"$connector/enabled"
  echo raw >"$backlight/type"
  echo 960 >"$backlight/max_brightness"
  echo 480 >"$backlight/brightness"
  ln -s brightness "$backlight/actual_brightness"
}

start_session_bus() {
  start bus dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS"
  wait_until "the session bus" test -S "$session/bus"
}

start_screen() {
  # shellcheck disable=SC2016  # for the inner shell
  start screen bash -c 'exec Xvfb -displayfd 3 -screen 0 "$1" -nolisten tcp -noreset 3>"$2"' \
    screen "$1x$2x24" "$session/display"
  wait_until "the virtual screen" test -s "$session/display"
  DISPLAY=:$(<"$session/display")
  export DISPLAY
}

# start_sound_server [OPTION…]
start_sound_server() {
  start sound pulseaudio --system=no --daemonize=no -n --exit-idle-time=-1 --use-pid-file=no "$@" \
    -L module-native-protocol-unix -L "module-null-sink sink_name=speakers"
  wait_until "the sound server" sound_server_answers
  pactl set-sink-volume speakers 50%
}

sound_server_answers() { pactl info >/dev/null 2>&1; }

# The compositor shows a root picture only when it was set by a program that announces it.
start_window_manager() {
  hsetroot -solid '#4a6a94' >/dev/null
  start window-manager openbox --sm-disable
  wait_until "the window manager" window_manager_answers
  start compositor picom --backend xrender --config /dev/null
  wait_until "the compositor" compositor_answers
}

window_manager_answers() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }

compositor_answers() { xdotool search --name '^picom$' >/dev/null 2>&1; }
