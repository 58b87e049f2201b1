# The desktops: what must be installed for each, how it comes up, and who has the media keys there.
# Sourced after session.sh.
#
# start_NAME starts one in the session that has begun, and fails when it does not come up. Then
# `input` and `picture` name the ways to press its keys and to look at it, and the environment is that
# of a program started on it.

all_desktops=(gnome gnome-x11 plasma plasma-x11 xfce mate cinnamon i3 openbox sway)

# What a desktop cannot be measured without.
desktop_programs() {
  case $1 in
    gnome) say gnome-shell Xwayland /usr/libexec/gsd-media-keys ;;
    gnome-x11) say gnome-shell /usr/libexec/gsd-media-keys ;;
    plasma) say kwin_wayland Xwayland plasmashell kded5 ;;
    plasma-x11) say kwin_x11 startplasma-x11 ;;
    xfce) say xfce4-session xfce4-panel ;;
    mate) say mate-session mate-settings-daemon ;;
    cinnamon) say cinnamon-session-cinnamon2d csd-media-keys ;;
    i3) say i3 i3bar ;;
    openbox) say openbox picom ;;
    sway) say sway waybar grim wtype Xwayland ;;
    *) return 1 ;;
  esac
}

# missing_programs NAME
missing_programs() {
  local program
  for program in $(desktop_programs "$1"); do
    command -v "$program" >/dev/null || say "$program"
  done
}

# desktop_type NAME
desktop_type() {
  case $1 in
    gnome | plasma | sway) say wayland ;;
    *) say x11 ;;
  esac
}

# shell_says SCRIPT TEXT: what GNOME Shell makes of the script.
shell_says() {
  [[ $(gdbus call --session --timeout 5 --dest org.gnome.Shell --object-path /org/gnome/Shell \
    --method org.gnome.Shell.Eval "$1" 2>/dev/null) == "(true, '$2')" ]]
}

# start_gnome_shell OPTION…
start_gnome_shell() {
  export XDG_CURRENT_DESKTOP=GNOME XDG_SESSION_DESKTOP=gnome GNOME_SHELL_SESSION_MODE=user
  export XDG_MENU_PREFIX=gnome-
  start shell gnome-shell --unsafe-mode "$@"
  wait_until "GNOME Shell" shell_says 'Main.layoutManager._startingUp' false || return
  wait_until "GNOME Shell's overview to close" \
    shell_says 'Main.overview.hide(); Main.overview.visible' false
}

start_gnome_keys() {
  start media-keys /usr/libexec/gsd-media-keys
  start power /usr/libexec/gsd-power
  wait_until "GNOME's media keys" bus_has --session org.gnome.SettingsDaemon.MediaKeys || return
}

# shell_variable NAME: of GNOME Shell's own environment.
shell_variable() {
  gdbus call --session --dest org.gnome.Shell --object-path /org/gnome/Shell \
    --method org.gnome.Shell.Eval "imports.gi.GLib.getenv('$1')" | sed -nE "s/.*'\"(.*)\"'\)/\1/p"
}

start_gnome() {
  input=gnome picture=gnome
  start_gnome_shell --headless --wayland --virtual-monitor "${width}x$height" || return
  WAYLAND_DISPLAY=$(shell_variable WAYLAND_DISPLAY)
  DISPLAY=$(shell_variable DISPLAY)
  XAUTHORITY=$(shell_variable XAUTHORITY)
  export WAYLAND_DISPLAY DISPLAY XAUTHORITY
  start_gnome_keys
}

start_gnome_x11() {
  input=x11 picture=x11
  start_screen "$width" "$height"
  start_gnome_shell --x11 --sm-disable || return
  start_gnome_keys || return
  await_key_owner XF86AudioRaiseVolume XF86MonBrightnessUp
}

use_plasma() {
  export XDG_CURRENT_DESKTOP=KDE XDG_SESSION_DESKTOP=KDE KDE_FULL_SESSION=true KDE_SESSION_VERSION=5
}

await_plasma() {
  wait_until "Plasma's shell" bus_has --session org.kde.plasmashell || return
  wait_until "Plasma's volume keys" plasma_has_volume_keys || true
}

plasma_has_volume_keys() {
  [[ $(gdbus call --session --timeout 5 --dest org.kde.kglobalaccel --object-path /kglobalaccel \
    --method org.kde.KGlobalAccel.action 16777330 2>/dev/null) == *volume* ]]
}

# The compositor runs from a copy, as it asks for a right that containers do not give.
start_plasma() {
  input=wayland picture=kwin
  use_plasma
  mkdir "$session/bin"
  cp "$(command -v kwin_wayland)" "$session/bin/"
  printf '#!/bin/sh\n%s\nexec sleep infinity\n' "$(tell_environment)" >"$session/bin/inside"
  chmod +x "$session/bin/inside"
  KWIN_SCREENSHOT_NO_PERMISSION_CHECKS=1 KWIN_WAYLAND_NO_PERMISSION_CHECKS=1 \
    start compositor "$session/bin/kwin_wayland" --virtual --width "$width" --height "$height" \
    --xwayland --exit-with-session "$session/bin/inside"
  wait_until "KWin" test -s "$session/inside" || return
  enter_inside
  start_plasma_parts
}

# What a compositor is to run, for enter_inside.
tell_environment() { say "env >$session/inside.new; mv $session/inside.new $session/inside"; }

# Takes over where the compositor's own programs find it.
enter_inside() {
  local name
  for name in WAYLAND_DISPLAY DISPLAY XAUTHORITY SWAYSOCK; do
    unset "$name"
    if grep -q "^$name=" "$session/inside"; then
      export "$name=$(sed -n "s/^$name=//p" "$session/inside")"
    fi
  done
}

start_plasma_parts() {
  local parts=/usr/lib/x86_64-linux-gnu/libexec
  start activities "$parts/kactivitymanagerd"
  start kded kded5
  start plasmashell plasmashell
  start powerdevil "$parts/org_kde_powerdevil"
  await_plasma
}

start_plasma_x11() {
  input=x11 picture=x11
  use_plasma
  start_screen "$width" "$height"
  start desktop startplasma-x11
  await_plasma
}

# start_x11_session NAME COMMAND…
start_x11_session() {
  input=x11 picture=x11
  export XDG_CURRENT_DESKTOP=$1 XDG_SESSION_DESKTOP=${1,,}
  shift
  start_screen "$width" "$height"
  start desktop "$@"
  wait_until "the window manager" window_manager_answers || return
}

# await_key_owner [KEYSYM…]: a desktop that has keys takes them a while after its windows are there.
await_key_owner() {
  local key
  for key in "${@:-XF86AudioRaiseVolume}"; do
    wait_until "the desktop to take $key" /usr/bin/python3 "$lab/key_is_taken.py" "$key" || true
  done
}

# Without a panel of the user's, the first thing on screen is a question.
start_xfce() {
  local settings=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
  mkdir -p "$settings"
  cp /etc/xdg/xfce4/panel/default.xml "$settings/xfce4-panel.xml"
  start_x11_session XFCE xfce4-session || return
  wait_until "XFCE's panel" bus_has --session org.xfce.Panel || return
  await_key_owner XF86AudioRaiseVolume XF86MonBrightnessUp
}

start_mate() {
  start_x11_session MATE mate-session || return
  await_key_owner
}

start_cinnamon() {
  start_x11_session X-Cinnamon cinnamon-session-cinnamon2d || return
  wait_until "Cinnamon" bus_has --session org.Cinnamon || return
  await_key_owner XF86AudioRaiseVolume XF86MonBrightnessUp
}

# Its first start asks for a configuration unless the user has one.
start_i3() {
  mkdir -p "$XDG_CONFIG_HOME/i3"
  cp /etc/i3/config "$XDG_CONFIG_HOME/i3/config"
  start_x11_session i3 i3 || return
  await_key_owner
}

start_openbox() {
  start_x11_session openbox openbox --sm-disable || return
  start compositor picom --backend xrender --config /dev/null
  wait_until "the compositor" compositor_answers || return
}

# The compositor refuses to be root, and so is somebody else in its own eyes.
start_sway() {
  input=sway picture=grim
  export XDG_CURRENT_DESKTOP=sway XDG_SESSION_DESKTOP=sway
  write_sway_configuration >"$session/sway.conf"
  local -a become=()
  [[ $EUID -ne 0 ]] || become=(unshare --user --map-user=1000 --map-group=1000)
  WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 \
    start compositor "${become[@]}" sway -c "$session/sway.conf"
  wait_until "sway" test -s "$session/inside" || return
  enter_inside
  start bar waybar
  wait_until "sway's tray" bus_has --session org.kde.StatusNotifierWatcher || true
}

# Whoever wants the volume keys there writes them down; these are the manual's.
write_sway_configuration() {
  cat <<CONF
output HEADLESS-1 resolution ${width}x$height position 0 0
output * bg #336699 solid_color
seat seat0 hide_cursor 0
exec sh -c '$(tell_environment)'
bindsym XF86AudioRaiseVolume exec pactl set-sink-volume @DEFAULT_SINK@ +5%
bindsym XF86AudioLowerVolume exec pactl set-sink-volume @DEFAULT_SINK@ -5%
bindsym XF86AudioMute exec pactl set-sink-mute @DEFAULT_SINK@ toggle
CONF
}
