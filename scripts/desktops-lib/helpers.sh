# Builds the laboratory's programs for Wayland. Sourced after common.sh.

helpers=$root/build/desktops

build_helpers() {
  mkdir -p "$helpers"
  make_protocol "$lab/protocols/fake-input.xml"
  make_protocol "$root/tests/support/protocols/wlr-virtual-pointer-unstable-v1.xml"
  make_protocol "$(protocols_folder)/stable/xdg-shell/xdg-shell.xml"
  make_helper wayland-input fake-input wlr-virtual-pointer-unstable-v1
  make_helper wayland-window xdg-shell
}

protocols_folder() { pkg-config --variable=pkgdatadir wayland-protocols; }

# make_protocol XML
make_protocol() {
  local name
  name=$(basename "$1" .xml)
  wayland-scanner client-header "$1" "$helpers/$name.h"
  wayland-scanner private-code "$1" "$helpers/$name.c"
}

# make_helper NAME PROTOCOL…
make_helper() {
  local name=$1
  shift
  local -a flags sources=("${@/#/$helpers/}")
  sources=("${sources[@]/%/.c}")
  read -ra flags < <(pkg-config --cflags --libs wayland-client)
  quietly cc -O1 -Wall -Wextra -I "$helpers" -o "$helpers/$name" "$lab/$name.c" \
    "${sources[@]}" "${flags[@]}"
}
