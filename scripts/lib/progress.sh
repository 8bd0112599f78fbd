# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# For the other scripts to source. Shows how far long work has got: on a terminal one line that is
# overwritten, elsewhere a line every 20 seconds.

# progress TEXT
progress() {
  if [ -t 1 ]; then
    printf '\r%.*s\e[K' "$((${COLUMNS:-80} - 1))" "$1"
  elif ((SECONDS >= ${next_progress:=$((SECONDS + 20))})); then
    next_progress=$((SECONDS + 20))
    echo "$1"
  fi
}

# Clears the line, before other output.
end_progress() { [ ! -t 1 ] || printf '\r\e[K'; }

# Reads what ninja or ctest prints. Shows how many steps of WHAT are done, and prints what reports
# neither a start nor a success.
show_steps() {
  local what=$1 line part begin=$SECONDS done_of_all="" status
  while true; do
    status=0
    IFS= read -r -t 2 part || status=$?
    line=${line:-}$part
    if [ "$status" -eq 0 ]; then
      if [[ $line =~ ^\ *\[?([0-9]+)/([0-9]+)[\]\ ] ]]; then
        done_of_all=", ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]} done"
      fi
      case $line in
        *" Start "* | "["*/*"] "* | *" Passed "*) ;;
        "ninja: no work to do.") ;;
        *) end_progress; printf '%s\n' "$line" ;;
      esac
      line=""
    elif [ "$status" -le 128 ]; then  # the end, not the time limit of read
      break
    fi
    progress "$what$done_of_all, $((SECONDS - begin)) s"
  done
  end_progress
  [ -z "$line" ] || printf '%s\n' "$line"
}

# build PRESET [TARGET ...]
build() {
  local targets=()
  [ $# -eq 1 ] || targets=(--target "${@:2}")
  cmake --preset "$1" >/dev/null
  NINJA_STATUS='[%f/%t] ' cmake --build --preset "$1" "${targets[@]}" | show_steps "Building $1"
}

# run_tests PRESET [CTEST OPTION ...]
run_tests() { ctest --preset "$1" "${@:2}" | show_steps "Testing $1"; }

# show_time WHAT SECONDS PROCESS ...: until the processes have ended.
show_time() {
  local begin=$SECONDS process
  for process in "${@:3}"; do
    while kill -0 "$process" 2>/dev/null; do
      progress "$1: $((SECONDS - begin)) of $2 s"
      sleep 1
    done
  done
  end_progress
}

# step NAME COMMAND ...: says how long the command took.
step() {
  local begin=$SECONDS
  echo "== $1"
  "${@:2}"
  echo "== $1: $((SECONDS - begin)) s"
}
