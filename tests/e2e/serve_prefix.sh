#!/usr/bin/env bash
# Boots a prefix when it is not booted yet, then starts its wineserver and its
# system processes (services, devices) detached from the caller's output, and
# keeps them until `wineserver -k` (or ten minutes after the last program when
# no one ends them). Tests then start programs one after another and side by
# side safely:
# - a server that Wine starts by itself ends as soon as its last program has
#   ended, and a program started at that moment fails ("recvmsg: Connection
#   reset by peer");
# - the system processes inherit the output of the program that starts them,
#   and would hold a test's output open long after the test has ended.
set -eu
here="$(dirname "$0")"
bash "$here/boot_prefix.sh" "$1"
export WINEPREFIX="$(realpath -m "$1")" WINEDEBUG=-all
# A server still running from a run moments ago is used as it is.
wineserver -p600 </dev/null >/dev/null 2>&1 || true
wine cmd.exe /c exit </dev/null >/dev/null 2>&1
