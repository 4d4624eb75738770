# How programs are run under Wine; sourced by the scripts that run, make ready or stop it. The caller has sourced common.sh and
# says which target it is for: x64 or arm64.
# shellcheck shell=bash

readonly WINE=/usr/lib/wine/wine64

# use_wine TARGET
use_wine() {
  WINE_TARGET=$1
  # A home of its own, so that nothing of Wine's is seen in the user's.
  export HOME=$WINDOWS_BUILD/$1/home
  export WINEPREFIX=$WINDOWS_BUILD/$1/wine
  export WINEDEBUG=-all
  # Wine's own menus, .NET and browser, none of which is needed, and its debugger, which looks at every crash for seconds.
  export WINEDLLOVERRIDES="winemenubuilder.exe=d;mscoree=d;mshtml=d;winedbg.exe=d"
  unset DISPLAY WAYLAND_DISPLAY
}

# in_system COMMAND...: on the system that the target's Wine belongs to.
in_system() {
  if [[ $WINE_TARGET == arm64 ]]; then
    "$PROJECT/scripts/windows/in-arm64-root" "$@"
  else
    "$@"
  fi
}

has_wine_prefix() { [[ -f $WINEPREFIX/system.reg ]]; }

# make_wine_prefix: makes the folder that Wine takes for its computer, and leaves its server running.
make_wine_prefix() {
  # What an interrupted run left would be taken for a whole one.
  stop_wine
  rm -rf "$WINEPREFIX"
  mkdir -p "$HOME" "$WINEPREFIX"
  start_wine
  # The message about the missing 32-bit part means nothing.
  in_system timeout -k 5 600 "$WINE" wineboot --init </dev/null >"$HOME/wineboot.log" 2>&1 || {
    cat "$HOME/wineboot.log" >&2
    stop_wine
    fail "Wine cannot be set up"
  }
  # The server writes its files when it ends.
  stop_wine
  has_wine_prefix || fail "Wine made no $WINEPREFIX"
  touch "$WINEPREFIX/.ready"
}

# Left running between programs, since a start takes seconds. With the caller's output in its hands the server would keep a
# "$(...)" around the caller waiting. A second server sees the first and ends.
start_wine() { in_system timeout -k 5 60 /usr/lib/wine/wineserver64 -p </dev/null >/dev/null 2>&1 || true; }

stop_wine() {
  in_system timeout -k 5 60 /usr/lib/wine/wineserver64 -k </dev/null >/dev/null 2>&1 || true
  in_system timeout -k 5 60 /usr/lib/wine/wineserver64 -w </dev/null >/dev/null 2>&1 || true
}

# run_program PROGRAM [ARGUMENT...]: with a limit of ZT_RUN_SECONDS; the exit status 124 tells of a hang. The first program of a
# server starts some of Wine's own, which inherit its output and stay: they would hold a pipe open for ever, so the output goes
# through files.
run_program() {
  [[ -f $WINEPREFIX/.ready ]] || fail "Wine is not set up: run scripts/windows/setup-$WINE_TARGET"
  local status=0
  output=$(mktemp -d "$HOME/output.XXXXXX")
  trap 'rm -rf "$output"' EXIT
  start_wine
  # Wine gives the status 0 to a program that it was told to end. A test program leaves this file there then.
  export TEST_PREMATURE_EXIT_FILE=$output/unfinished
  in_system timeout -k 5 "${ZT_RUN_SECONDS:-540}" "$WINE" "$@" >"$output/out" 2>"$output/err" || status=$?
  cat "$output/out"
  cat "$output/err" >&2
  if ((status == 0)) && [[ -e $TEST_PREMATURE_EXIT_FILE ]]; then
    fail "${1##*/} was ended before its tests were over"
  fi
  return "$status"
}
