#!/bin/bash
# Runs the examples of qvtool in README and docs as they stand there, in a folder with the files that
# they name. A block of README that is neither an example of qvtool nor about packages and builds is
# a fault.
#
#   check_readme.sh QVTOOL
set -eu
PATH=$(dirname "$(realpath "$1")"):$PATH
cd "$(dirname "$0")/.."
documents=$(realpath README.md docs/*.md)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# Blocks that are indented, or fenced as sh: their commands one a line, "FILE:LINE COMMAND", an empty
# line after each block.
commands_of() {
  awk '/^```/ { fenced = !fenced; shell = fenced && $0 ~ /^```(sh|bash|console)?$/; next }
       fenced ? shell : /^    /{
         line = $0; sub(/^    /, "", line)
         if (held == "") place = FILENAME ":" FNR
         held = held line
         if (sub(/\\$/, "", held)) next
         if (held != "") print place, held
         held = ""; open = 1; next }
       open && NF { print ""; open = 0 }' "$1"
}

# Files are made by their names: headerless ones of 1920 x 1080, .yuv in 4:2:0 and .raw in three
# bytes a pixel; clips in whatever format are Y4M, which every program finds out.
make_file() {
  mkdir -p "$(dirname "$1")"
  case $1 in
    *.y4m | *.mp4 | *.dv)
      { echo 'YUV4MPEG2 W1280 H720 F25:1 Ip A1:1 C420jpeg'
        for _ in 1 2; do echo FRAME; head -c 1382400 /dev/zero; done; } >"$1" ;;
    *.yuv) head -c 3110400 /dev/zero >"$1" ;;
    *.raw) head -c 6220800 /dev/zero >"$1" ;;
    *.jpg) qvtool fill "$1" --layout bgr --size 1000x700 --colour '#336699' ;;
    mask.png) qvtool fill "$1" --layout grey --size 320x180 --colour 99 ;;
    *.png) qvtool fill "$1" --layout bgra --size 320x180 --colour '#336699' ;;
  esac
}

# Where there is no ffmpeg, its readers take all and its writers give a clip.
ffplay() { cat >/dev/null; }
if command -v ffmpeg >/dev/null; then
  ffmpeg() { command ffmpeg -y "$@"; }
else
  ffmpeg() { if [ "${!#}" = - ]; then cat clip.mp4; else cat >"${!#}"; fi; }
fi
export -f ffplay ffmpeg

run() {
  local place=${1%% *} command=${1#* } name
  while IFS= read -r name; do
    name=${name//\*/any}
    [[ $name != *%* ]] || printf -v name "$name" 1  # the first of numbered ones
    [ -e "$name" ] || make_file "$name"
  done < <(grep -oE "[^ '\"]+\.(y4m|mp4|dv|yuv|raw|jpg|png)\b" <<<"$command")
  bash -euo pipefail -c "$command" </dev/null >log 2>&1 && return
  echo "$place: fails: $command"; tail -n 3 log
  return 1
}

ran=0 failed=0
check_block() {
  local line
  # What is to be installed first is run by check_packages.sh.
  [[ "$*" != *"apt-get install"* ]] || return 0
  if [[ "$*" =~ (:[0-9]+|\|)\ qvtool\  ]]; then
    for line; do run "$line" || failed=1; ran=$((ran + 1)); done
  elif [[ ${1%%:*} == */README.md ]]; then
    for line; do
      [[ ${line#* } =~ ^(#|rem |sudo |apt-get |cmake |scripts/|g\+\+ |cl |copy ) ]] && continue
      echo "${line%% *}: neither an example of qvtool nor of builds and packages: ${line#* }"
      failed=1
    done
  fi
}

for document in $documents; do
  block=()
  while IFS= read -r line; do
    if [ -n "$line" ]; then block+=("$line"); continue; fi
    [ ${#block[@]} = 0 ] || check_block "${block[@]}"; block=()
  done < <(commands_of "$document"; echo)
done
echo "$ran examples ran"
[ $ran -gt 20 ] && exit $failed
