#!/usr/bin/env bash
# The main job: builds if needed, then starts one program under Wine with a
# simulated instrument and GPS receiver on virtual serial ports.
#   tools/run.sh [PROGRAM] [extra field simulator options]
# PROGRAM is one of the fourteen (default Kelvo31). With a desktop ($DISPLAY)
# the program shows there; otherwise it runs on a virtual display of its own
# and a screenshot is saved. On Windows, simply run the .exe.
set -eu
cd "$(dirname "$0")/.."
root=$PWD
program="${1:-Kelvo31}"
shift || true
bash tools/setup_packages.sh

if [ ! -f "build/windows/bin/$program.exe" ]; then
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j2
fi
if [ ! -x build/native/tools/fieldsim/fieldsim ] && [ -d tools/fieldsim ]; then
  cmake --preset native >/dev/null
  cmake --build --preset native -j2 --target fieldsim || true
fi

state="$HOME/.local/share/kelvo-run"
prefix="$state/prefix"
mkdir -p "$state"
bash tests/e2e/boot_prefix.sh "$prefix"
export WINEPREFIX="$prefix" WINEDEBUG=-all

# An installation makes the settings folder of each program.
folder=$(python3 tools/variants.py folder "$program")
mkdir -p "$prefix/drive_c/ProgramData/Ostrel/$folder"

pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wineserver -k 2>/dev/null || true
}
trap cleanup EXIT

# Virtual serial ports at the default settings: instrument COM4, GPS COM6.
link_port() {
  local com=$1
  socat pty,raw,echo=0,link="$state/com$com-program" pty,raw,echo=0,link="$state/com$com-peer" &
  pids+=($!)
  for _ in $(seq 100); do [ -e "$state/com$com-peer" ] && break; sleep 0.05; done
  ln -sfn "$(readlink -f "$state/com$com-program")" "$prefix/dosdevices/com$com"
}
link_port 4
link_port 6

if [ -x build/native/tools/fieldsim/fieldsim ]; then
  case "$program" in
    *31*) model=em31 ;; *34*) model=em34 ;; *38MK2*) model="" ;; *38*) model=em38-12 ;; *) model="" ;;
  esac
  args=(--gps "$(readlink -f "$state/com6-peer")" --gps-option 1 --rate 10)
  if [ -n "$model" ]; then args+=(--instrument "$(readlink -f "$state/com4-peer")" --model "$model"); fi
  build/native/tools/fieldsim/fieldsim "${args[@]}" "$@" < /dev/null &
  pids+=($!)
fi

if [ -z "${DISPLAY:-}" ]; then
  Xvfb :91 -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
  pids+=($!)
  export DISPLAY=:91
  sleep 1
  wine "build/windows/bin/$program.exe" &
  pids+=($!)
  sleep 8
  import -window root "$state/screenshot-menu.png"
  # Start a session, so that the screenshot shows the live data.
  window=$(xdotool search --name "^$program\$" | head -n 1)
  if [ -n "$window" ]; then
    xdotool windowfocus --sync "$window" key l || true
    sleep 8
  fi
  import -window root "$state/screenshot.png"
  echo "The program runs on a virtual display; screenshots: $state/screenshot-menu.png, $state/screenshot.png"
  echo "Press Enter to stop it."
  read -r _ || sleep 20
else
  wine "build/windows/bin/$program.exe"
fi
