# Installs Debian packages that are missing. Sourced after common.sh.

# need_packages GROUP…: makes sure of the packages that scripts/packages lists for the groups.
need_packages() {
  command -v dpkg-query >/dev/null || {
    say "Not a Debian system: taking it that the counterparts of scripts/packages are installed."
    return
  }
  local missing
  missing=$(missing_packages "$@")
  [[ -n $missing ]] || return 0
  say "Installing what is missing:" "$(tr '\n' ' ' <<<"$missing")"
  # shellcheck disable=SC2086  # one word a package
  install_packages $missing
}

missing_packages() {
  comm -13 <(installed_packages | sort -u) <(listed_packages "$@" | sort -u)
}

# shellcheck disable=SC2016  # the dollars are dpkg's
installed_packages() {
  dpkg-query -W -f '${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p'
}

listed_packages() {
  local group
  for group; do
    sed -n "s/^$group  *//p" "$root/scripts/packages"
  done
}

install_packages() {
  local -a become=()
  if [[ $EUID -ne 0 ]]; then
    command -v sudo >/dev/null || die "cannot install without root or sudo: $*"
    become=(sudo)
  fi
  local -a apt=("${become[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -qq
    -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -o Dpkg::Use-Pty=0)
  quietly retry 3 "${apt[@]}" update || die "the package lists cannot be had"
  quietly retry 3 "${apt[@]}" install -y --no-install-recommends "$@" ||
    die "not all packages could be installed"
}

