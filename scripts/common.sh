# Shared by ./zolib, ./test, bench/run and scripts/*. Source it; it defines functions and changes nothing.
# Directories that can be moved: ZO_DEPS_DIR (fetched sources), ZO_WINEPREFIX (the Wine prefix).

zo_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
zo_deps=${ZO_DEPS_DIR:-$zo_root/build/deps}

zo_die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# Says once what is going on, for steps that take more than a moment.
zo_say() { printf '%s\n' "zo_com: $*" >&2; }

# zo_quietly LOG COMMAND...: runs a step, keeps its output in build/logs/LOG.log, shows the end of it on failure.
zo_quietly() {
  local log=$zo_root/build/logs/$1.log
  shift
  mkdir -p "${log%/*}"
  "$@" >"$log" 2>&1 </dev/null && return 0
  zo_say "failed: $*"
  tail -n 40 "$log" >&2
  zo_say "the whole output is in $log"
  return 1
}

# zo_build PRESET [TARGET...]: configures when needed and builds; silent when all goes well. ZO_CMAKE_ARGS adds
# options to the configuration.
zo_build() {
  local preset=$1 dir=$zo_root/build/$1 target targets=()
  shift
  for target in "$@"; do targets+=(--target "$target"); done
  cd "$zo_root" || return 1
  if [ ! -f "$dir/build.ninja" ] || [ -n "${ZO_RECONFIGURE:-}" ]; then
    # shellcheck disable=SC2086  # several options in one variable, on purpose
    zo_quietly "configure-$preset" cmake --preset "$preset" "-DZO_DEPS_DIR=$zo_deps" ${ZO_CMAKE_ARGS:-} || return 1
  fi
  zo_quietly "build-$preset" cmake --build --preset "$preset" "${targets[@]}"
}

# The files that differ from where the branch left main, or on main from the last commit but one; with those that are
# not yet committed. Fails, and says nothing, where there is no history that tells: a tarball, a shallow clone.
zo_changed_files() {
  local main base=''
  cd "$zo_root" && git rev-parse --verify --quiet HEAD >/dev/null || return 1
  for main in origin/main main; do
    base=$(git merge-base HEAD "$main" 2>/dev/null) && break
  done
  if [ -z "$base" ] || [ "$base" = "$(git rev-parse HEAD)" ]; then
    base=$(git rev-parse --verify --quiet HEAD~1) || return 1
  fi
  { git diff --name-only --diff-filter=d "$base" && git ls-files --others --exclude-standard; } | sort -u
}
