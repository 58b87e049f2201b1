# Takes the agent through its states on a virtual desktop, with the keys and the pointer of that
# desktop, and keeps a picture of each. Sourced after common.sh and virtual-desktop.sh.

program=$root/build/release/src/valdrix
pictures=$root/out/tour
picture_count=0

take_tour() {
  mkdir -p "$pictures"
  rm -f "$pictures"/*.png

  say "On a screen of 1512 × 982 pixels:"
  begin_tour 1512 982 1
  visit_states
  end_tour

  say "On a screen of 3024 × 1964 pixels, at scale 2:"
  begin_tour 3024 1964 2
  visit_states_at_scale_2
  end_tour
  say "$picture_count pictures are in ${pictures#"$root/"}/."
}

visit_states() {
  visit collapsed collapsed true
  visit volume-up volumeHUD press XF86AudioRaiseVolume
  visit volume-up-fine volumeHUD press shift+XF86AudioRaiseVolume
  visit muted volumeHUD press XF86AudioMute
  visit unmuted volumeHUD press XF86AudioMute
  visit volume-down volumeHUD press XF86AudioLowerVolume
  visit mixer volumeHUD pactl set-sink-volume speakers 30%
  visit brightness-up brightnessHUD press XF86MonBrightnessUp
  visit brightness-down brightnessHUD press XF86MonBrightnessDown
  visit dismissed collapsed true
  visit expanded expanded move_pointer_to_notch
  visit left collapsed move_pointer_away
}

visit_states_at_scale_2() {
  visit scale-2-volume volumeHUD press XF86AudioRaiseVolume
  visit scale-2-expanded expanded move_pointer_to_notch
}

# begin_tour WIDTH HEIGHT SCALE
begin_tour() {
  begin_desktop "$1" "$2"
  export QT_SCALE_FACTOR=$3
  width=$1 height=$2
  xdotool mousemove $((width / 2)) $((height * 2 / 3))
  write_preferences
  open_neighbour "$3"
  start agent "$program"
  agent=$child
  wait_until "the agent" agent_is_ready || die "the agent said:" "$(<"$session/agent.log")"
}

end_tour() {
  "$program" quit >/dev/null
  local code=0
  wait "$agent" || code=$?
  [[ $code -eq 0 ]] || die "the agent ended with code $code:" "$(<"$session/agent.log")"
  end_desktop
}

# Long enough for a slow machine to take the picture.
write_preferences() {
  mkdir -p "$XDG_CONFIG_HOME/valdrix"
  printf '[General]\nhudDuration=4\n' >"$XDG_CONFIG_HOME/valdrix/valdrix.conf"
}

# open_neighbour SCALE: an ordinary window with the keyboard focus.
open_neighbour() {
  start neighbour xterm -title main.cpp -fa monospace -fs $((10 * $1)) \
    -geometry "92x28+$((width / 6))+$((height / 4))" -e tail -n +1 -f "$root/src/main.cpp"
  wait_until "the neighbour's focus" neighbour_has_focus
}

neighbour_has_focus() { [[ $(xdotool getactivewindow getwindowname 2>/dev/null) == main.cpp ]]; }

# status_of EXPRESSION: one value of the agent's state.
status_of() { "$program" status 2>/dev/null | jq -r "$1"; }

agent_is_ready() { [[ $(status_of '.hasWindow and .mediaKeys.isTapInstalled') == true ]]; }

# visit NAME PRESENTATION COMMAND…: after the command the panel must come to be in that presentation
# and to rest, which is when the picture is taken.
visit() {
  local name=$1 presentation=$2
  shift 2
  "$@"
  wait_until "the panel to be $presentation after $name" presents "$presentation"
  wait_until "the panel to rest" panel_rests
  picture_count=$((picture_count + 1))
  name=$(printf '%02d-%s' "$picture_count" "$name")
  import -silent -window root "$pictures/$name.png"
  printf '  %-20s %-14s volume %s, brightness %s\n' "$name" "$presentation" "$(sound_level)" \
    "$(brightness_level)"
}

presents() { [[ $(status_of .notch.presentation) == "$1" ]]; }

panel_rests() {
  local before
  before=$(status_of .framesDrawn)
  sleep 0.1
  [[ $(status_of .framesDrawn) == "$before" ]]
}

# What the sound server says, not the agent.
sound_level() {
  local muted=''
  [[ $(pactl get-sink-mute speakers) != *yes* ]] || muted=' (muted)'
  pactl get-sink-volume speakers | sed -nE "s|.*front-left: *[0-9]+ / *([0-9]+)%.*|\1 %$muted|p"
}

brightness_level() { say "$(($(<"$backlight/brightness") * 100 / 960)) %"; }

press() { xdotool key "$1"; }

move_pointer_to_notch() { move_pointer $((width / 2)) 12; }
move_pointer_away() { move_pointer $((width / 2)) $((height * 2 / 3)); }

# move_pointer X Y: there in small steps, as a hand does, and not in a jump.
move_pointer() {
  local at left steps
  for steps in 12 12 1; do
    at=$(xdotool getmouselocation | sed -E 's/x:([0-9]+) y:([0-9]+).*/\1 \2/')
    left=$((${at#* } - $2))
    glide $(($1 - ${at% *})) $((-left)) "$steps"
  done
}

# glide DX DY STEPS
glide() {
  local i
  local -a moves=()
  for ((i = 1; i <= $3; i++)); do
    moves+=(mousemove_relative --sync --
      $(($1 * i / $3 - $1 * (i - 1) / $3)) $(($2 * i / $3 - $2 * (i - 1) / $3)))
  done
  xdotool "${moves[@]}"
}
