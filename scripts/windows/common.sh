# What the scripts beside this file share; sourced by them.
# shellcheck shell=bash

set -euo pipefail

PROJECT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# What is ready for use stands here, much of it as links into the cache.
# shellcheck disable=SC2034
readonly PROJECT WINDOWS_BUILD=$PROJECT/build/windows
source "$PROJECT/scripts/machine.sh"
mkdir -p "$CACHE"

# quietly LOG COMMAND...: its output goes to the log, and is shown when it fails.
quietly() {
  local log=$1
  shift
  "$@" >>"$log" 2>&1 </dev/null || {
    tail -n 40 "$log" >&2
    fail "failed: $* (all of its output is in $log)"
  }
}

# build_in_cache NAME FUNCTION: runs FUNCTION FOLDER, unless the cache has NAME already, and keeps the folder under that name.
# Half-made folders never get the name.
build_in_cache() {
  local target=$CACHE/$1 function=$2
  exec {lock}>"$CACHE/.$1.lock"
  flock "$lock"
  if [[ ! -d $target ]]; then
    local new=$target.new
    as_owner_of "$new" rm -rf "$new"
    mkdir "$new"
    "$function" "$new"
    mv "$new" "$target"
  fi
  exec {lock}>&-
}

# A folder that root made can only be removed by root.
as_owner_of() {
  local folder=$1
  shift
  if [[ -e $folder && ! -O $folder ]]; then
    as_root "$@"
  else
    "$@"
  fi
}

# link_from_build CACHE_NAME LINK: build/windows/LINK leads to the cached folder.
link_from_build() {
  local link=$WINDOWS_BUILD/$2
  mkdir -p "$(dirname "$link")"
  ln -sfn "$CACHE/$1" "$link"
}

# debian_archives: one line "URI SUITE" for each Debian archive that this machine installs from, additions such as security
# updates last: mirrors are less likely to be complete there.
debian_archives() {
  # shellcheck disable=SC2016
  apt-get indextargets --format '$(ORIGIN)|$(REPO_URI) $(RELEASE)' 'Created-By: Packages' | sed -n 's/^Debian|//p' | sort -u | sort -k 2,2 -t ' '
}

# Makes apt know its archives, which a slim system may not yet.
need_archives() {
  [[ -z $(debian_archives) ]] || return 0
  ! can_be_root || update_apt as_root
  [[ -n $(debian_archives) ]] || cannot "what is built here comes from Debian's sources, and apt knows no Debian archive"
}

# sources_apt COMMAND...: apt with the machine's own archives as sources of source packages, and with state of its own, so that
# the machine's configuration stays as it is.
sources_apt() {
  local apt=$CACHE/apt command=$1
  shift
  "$command" -o Dir::Etc::SourceList="$apt/sources.list" -o Dir::Etc::SourceParts=- -o Dir::State::Lists="$apt/lists" \
    -o Dir::Cache="$apt" -o Dir::Cache::Archives="$apt/archives" -o APT::Sandbox::User= "$@"
}

# Reads the lists of source packages; once is enough while they lead to files that still exist.
update_sources() {
  need_archives
  local apt=$CACHE/apt
  mkdir -p "$apt"/{lists/partial,archives/partial}
  exec {lists_lock}>"$CACHE/.apt.lock"
  flock "$lists_lock"
  debian_archives | sed -E 's/$/ main/; s/^/deb-src /' >"$apt/sources.list"
  quietly "$CACHE/apt.log" sources_apt apt-get update
  exec {lists_lock}>&-
}

newest_source() {
  [[ -d $CACHE/apt/lists ]] || return 0
  sources_apt apt-cache showsrc --only-source "$1" 2>/dev/null | sed -n 's/^Version: //p' | sort -V | tail -n 1 || true
}

# source_version PACKAGE: the newest version of a source package.
source_version() {
  local version
  version=$(newest_source "$1")
  if [[ -z $version ]]; then
    update_sources
    version=$(newest_source "$1")
  fi
  [[ -n $version ]] || fail "no source package $1 is known"
  echo "$version"
}

# fetch_sources FOLDER PACKAGE...: downloads the files of source packages.
fetch_sources() {
  local folder=$1
  shift
  mkdir -p "$folder"
  (cd "$folder" && { sources_apt apt-get source -qq --download-only "$@" 2>/dev/null ||
    { update_sources && sources_apt apt-get source -qq --download-only "$@"; }; }) >>"$CACHE/apt.log" ||
    fail "cannot download the sources of $*"
}

# unpack_source FOLDER PACKAGE INTO: unpacks a downloaded source package, Debian's patches applied.
unpack_source() {
  local description
  description=$(compgen -G "$1/$2_*.dsc") || fail "no source of $2 was downloaded"
  dpkg-source --no-check -x "$description" "$3" >/dev/null
}
