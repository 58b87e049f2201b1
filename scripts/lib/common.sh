# What the scripts share. Sourced, never run.

# shellcheck disable=SC2034  # read by the scripts that source this
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

say() { printf '%s\n' "$*"; }

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# retry TIMES COMMAND…: until it succeeds, with a pause in between.
retry() {
  local left=$1
  shift
  until "$@"; do
    left=$((left - 1))
    [[ $left -gt 0 ]] || return 1
    sleep 5
  done
}

# quietly COMMAND…: shows its output only when it fails.
quietly() {
  local output
  output=$("$@" 2>&1 </dev/null) || {
    printf '%s\n' "$output" >&2
    return 1
  }
}
