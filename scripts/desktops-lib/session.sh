# The session that a whole desktop is started in: folders, buses, login manager, sound server,
# backlight and calendar, all private. Sourced after common.sh and virtual-desktop.sh.

width=1280
height=800

# begin_session NAME TYPE: as begin_desktop, but for the screen and what manages its windows.
begin_session() {
  session=$(mktemp -d "${TMPDIR:-/tmp}/valdrix-$1.XXXXXX")
  trap end_session EXIT
  use_private_environment
  unset DISPLAY XDG_CONFIG_DIRS XDG_CURRENT_DESKTOP XDG_MENU_PREFIX DESKTOP_SESSION GTK_THEME
  unset QT_QPA_PLATFORM QT_STYLE_OVERRIDE QT_QPA_PLATFORMTHEME GSETTINGS_BACKEND
  # Inherited by all that the desktop starts, so that nothing of it is left behind.
  export VALDRIX_DESKTOP_SESSION=$session
  export XDG_SESSION_TYPE=$2 XDG_SESSION_ID=c1 XDG_SESSION_CLASS=user XDG_SEAT=seat0
  export LANG=C.UTF-8 LIBGL_ALWAYS_SOFTWARE=1
  make_backlight
  make_calendar
  start_session_bus
  start_login_manager
  start_sound_server --log-level=debug --log-time=no
  make_preferences
}

end_session() {
  end_children 2>/dev/null
  end_strays
  [[ -z $session ]] || rm -rf "$session"
  session=''
  trap - EXIT
}

# What the desktop started by itself and left behind.
end_strays() {
  local signal tries
  for signal in TERM KILL; do
    for ((tries = 0; tries < 20; tries++)); do
      signal_strays "$signal" || return 0
      sleep 0.1
    done
  done
}

# signal_strays SIGNAL: fails when there are none.
signal_strays() {
  local -a left
  mapfile -t left < <(strays)
  [[ ${#left[@]} -gt 0 ]] || return 1
  kill "-$1" "${left[@]}" 2>/dev/null || true
}

# Their ids. Without the mark in its own environment the search does not find itself.
strays() {
  env -u VALDRIX_DESKTOP_SESSION \
    grep -lsz "^VALDRIX_DESKTOP_SESSION=$session\$" /proc/[0-9]*/environ 2>/dev/null |
    sed -E 's|^/proc/([0-9]+)/.*|\1|'
}

make_calendar() {
  local folder=$XDG_DATA_HOME/calendars/perso
  mkdir -p "$folder"
  printf 'Personnel' >"$folder/displayname"
  printf '#3070d0' >"$folder/color"
  /usr/bin/python3 "$lab/make_calendar.py" "$folder"
}

# An indicator stays long enough for a slow machine to look at it, and all the events have room.
make_preferences() {
  mkdir -p "$XDG_CONFIG_HOME/valdrix" "$XDG_STATE_HOME/valdrix"
  printf '[General]\nhudDuration=1.6\ncalendarMaxEvents=5\n' \
    >"$XDG_CONFIG_HOME/valdrix/valdrix.conf"
  printf 'calendars=allowed\n' >"$XDG_STATE_HOME/valdrix/privacy.conf"
}

# A system bus with nothing but a login manager, which writes the backlight as the true one does.
start_login_manager() {
  export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$session/system-bus
  cat >"$session/system-bus.conf" <<XML
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>$DBUS_SYSTEM_BUS_ADDRESS</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_type="method_call"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
XML
  start system-bus dbus-daemon --config-file="$session/system-bus.conf" --nofork --nopidfile
  wait_until "the system bus" test -S "$session/system-bus"
  start login-manager /usr/bin/python3 "$lab/login_manager.py" "$VALDRIX_SYSFS" \
    "$session/brightness.log"
  wait_until "the login manager" bus_has --system org.freedesktop.login1
}

# bus_has --session|--system NAME: somebody owns the name.
bus_has() {
  [[ $(dbus-send "$1" --print-reply=literal --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.NameHasOwner "string:$2" 2>/dev/null) == *true* ]]
}
