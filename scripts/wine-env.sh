# The environment in which the project's Windows programs run under Wine, and its server's life. Source it.
#
# - The prefix is the project's own, inside the build tree: nothing of the user's ~/.wine is read or changed. A prefix
#   has one user: who shares another one's checkout has it in the user's cache.
# - winedbg is disabled: it slows a crash down and sometimes turns it into exit code 0.
# - C.UTF-8, because under plain C every non-ASCII file name fails.
# - zo_wine is the command, with addresses that are not random: recent kernels put the heap anywhere in the gigabyte
#   behind Wine's loader, and thus once in some two thousand starts onto the one page that Wine must have for itself.
#   It then ends with 1, and without a word.

zo_prefix=$zo_root/build/wine
[ -O "$zo_root/build" ] || [ ! -e "$zo_root/build" ] ||
  zo_prefix=${XDG_CACHE_HOME:-$HOME/.cache}/zo_com/wine$(tr / - <<<"$zo_root")
export WINEPREFIX=${ZO_WINEPREFIX:-$zo_prefix}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree=;mshtml='
export LANG=C.UTF-8
unset LC_ALL
zo_wine=(wine)
setarch -R true 2>/dev/null && zo_wine=(setarch -R wine)  # a container may forbid it

# zo_wine_start SECONDS [PREFIX-COMMAND...]: makes the prefix when it is missing and starts a server that outlives
# its last program by SECONDS (0: until zo_wine_stop). Its service processes inherit no pipe of ours, so that
# `./zolib list x | head` ends when zolib ends. Does nothing when a server runs.
zo_wine_start() {
  local linger=$1 persist=-p
  shift
  wineserver -k0 2>/dev/null && return 0
  [ "$linger" = 0 ] || persist=-p$linger
  mkdir -p "${WINEPREFIX%/*}"
  (
    flock 9
    wineserver -k0 2>/dev/null && exit 0
    if [ ! -f "$WINEPREFIX/.zo_ready" ]; then
      zo_say 'making the Wine prefix (once)'
      rm -rf "$WINEPREFIX"
      zo_quietly wineboot setsid wineboot -i || exit 1
      # Without a window manager a managed dialog waits two seconds before it closes.
      zo_quietly wine-reg setsid "${zo_wine[@]}" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f || exit 1
      wineserver -w
      : >"$WINEPREFIX/.zo_ready"
    fi
    "$@" wineserver "$persist" >/dev/null 2>&1 </dev/null 9>&-
    setsid "$@" "${zo_wine[@]}" cmd /c exit >/dev/null 2>&1 </dev/null 9>&-
  ) 9>"$WINEPREFIX.lock"
}

zo_wine_stop() {
  wineserver -k 2>/dev/null
  wineserver -w 2>/dev/null
  return 0
}

# zo_display_start: a display of our own for programs that open windows, until zo_display_stop. Only a server that is
# started afterwards knows of it: with one from before, windows stay black.
zo_display_start() {
  local number
  number=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$number" >/dev/null 2>&1 &
  zo_display_pid=$!
  for _ in $(seq 100); do [ -s "$number" ] && break; sleep 0.05; done
  DISPLAY=$(sed 's/^/:/' "$number")
  rm -f "$number"
  [ -n "$DISPLAY" ] || { zo_say 'the virtual display (Xvfb) does not start'; return 1; }
  export DISPLAY
}

zo_display_stop() {
  [ -n "${zo_display_pid:-}" ] || return 0
  kill "$zo_display_pid" 2>/dev/null
  wait "$zo_display_pid" 2>/dev/null
  zo_display_pid=''
}
