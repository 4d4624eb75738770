# What this machine is and what may be done to it: its system, root's rights, packages. Sourced by zt and by
# scripts/windows/common.sh.
# shellcheck shell=bash

# A script exits with this status where it says that this machine cannot do what is asked: a caller counts that as skipped.
readonly STATUS_CANNOT=77
# Kept for all checkouts of this machine's user.
readonly CACHE=${XDG_CACHE_HOME:-$HOME/.cache}/zteng
# How many commands run at a time.
JOBS=${JOBS:-$(nproc)}
export JOBS

say() { printf '== %s\n' "$*"; }

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

cannot() {
  echo "${0##*/}: $*" >&2
  exit "$STATUS_CANNOT"
}

# warn_of_unknown_system [FILE]: says once where this is none of the systems on which the project was built.
warn_of_unknown_system() {
  [[ -z ${ZT_SYSTEM_CHECKED:-} ]] || return 0
  export ZT_SYSTEM_CHECKED=1
  local name
  # shellcheck disable=SC1090
  name=$(. "${1:-/etc/os-release}" 2>/dev/null && echo "${ID:-} ${VERSION_ID:-}") || true
  case "$name" in
    "debian 12" | "debian 13" | "ubuntu 24.04") ;;
    *)
      echo "${0##*/}: this system (${name:-unknown}) is none of those that are known to work: Debian 12, Debian 13," \
        "Ubuntu 24.04; trying all the same" >&2
      ;;
  esac
}

has_terminal() { { : </dev/tty; } 2>/dev/null; }

# can_be_root: whether this user is root or sudo makes it root. A password is asked for only where there is a terminal.
can_be_root() {
  ((EUID == 0)) && return
  command -v sudo >/dev/null || return
  sudo -n true 2>/dev/null || { has_terminal && sudo -v; }
}

# why_not_root: in words, after can_be_root has failed.
why_not_root() {
  if ! command -v sudo >/dev/null; then
    echo "this user is not root and there is no sudo"
  elif has_terminal; then
    echo "sudo does not let this user be root"
  else
    echo "sudo asks for a password and there is no terminal to ask on"
  fi
}

# as_root COMMAND...: runs it as root, by way of sudo where needed.
as_root() {
  if ((EUID == 0)); then
    "$@"
  else
    sudo "$@"
  fi
}

# update_apt COMMAND...: apt-get update by way of COMMAND. Another run of it, such as the system's own each morning, is waited
# for.
update_apt() {
  local attempt
  for attempt in {1..30}; do
    "$@" apt-get update -qq && return
    echo "${0##*/}: apt-get update failed ($attempt of 30); again in 10 seconds" >&2
    sleep 10
  done
  return 1
}

# need PACKAGE...: installs those that are missing, and keeps their names in the cache. Quick where none is.
need() {
  local missing=() package
  for package in "$@"; do
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" == installed ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  command -v apt-get >/dev/null ||
    cannot "this system has no apt-get; what these Debian packages hold has to be installed by hand: ${missing[*]}"
  can_be_root || cannot "$(why_not_root); only root can install what is missing: ${missing[*]}"
  say "Installing ${missing[*]}"
  update_apt as_root
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=300 \
    "${missing[@]}" </dev/null >/dev/null
  mkdir -p "$CACHE"
  printf '%s\n' "${missing[@]}" >>"$CACHE/installed-packages"
}
