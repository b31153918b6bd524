#!/usr/bin/env bash
# Boots a 64-bit Wine prefix for the tests: windows drawn by Wine itself (no
# window manager under Xvfb), real fonts, quiet debug output.
set -eu
prefix="$(realpath -m "$1")"
if [ -f "$prefix/.kelvo-ready" ]; then exit 0; fi
rm -rf "$prefix"
mkdir -p "$(dirname "$prefix")"
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# No display is needed to boot; keep Wine from asking for one.
unset DISPLAY
wineboot -i >/dev/null 2>&1 || true
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f >/dev/null 2>&1
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /t REG_SZ /d N /f >/dev/null 2>&1
wineserver -w
if [ -d /usr/share/wine/fonts ]; then
  mkdir -p "$prefix/drive_c/windows/Fonts"
  cp -n /usr/share/wine/fonts/* "$prefix/drive_c/windows/Fonts/" 2>/dev/null || true
fi
touch "$prefix/.kelvo-ready"
