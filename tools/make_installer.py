#!/usr/bin/env python3
"""Builds the two deliveries of the fourteen programs from the one variant list:
the setup program (NSIS, script tools/installer/kelvo.nsi) and the portable zip.

    make_installer.py --bin BIN_DIR --icon ICON --work DIR --installer SETUP.exe --zip PORTABLE.zip

The build runs it (target `installer` of the windows preset); the version of
both is variants.product_version().
"""
import argparse
import os
import re
import subprocess
import sys
import zipfile

import variants

HERE = os.path.dirname(os.path.abspath(__file__))
SCRIPT = os.path.join(HERE, "installer", "kelvo.nsi")
SETTINGS_ROOT = "C:\\ProgramData\\Ostrel"


def symbol(text):
    return re.sub(r"[^A-Za-z0-9_]", "_", text)


def program_list(rows):
    """The NSIS list the script walks three times (install, descriptions,
    uninstall): the programs grouped by instrument, in the list's order."""
    lines = ["; Made by tools/make_installer.py from src/core/variants.def."]
    instruments = []
    for row in rows:
        if row["instrument"] not in instruments:
            instruments.append(row["instrument"])
    for instrument in instruments:
        lines.append('${Instrument} "%s" Group_%s' % (instrument, symbol(instrument)))
        for row in rows:
            if row["instrument"] == instrument:
                lines.append('${Program} Sec_%s "%s" "%s" "%s" "%s" %d' % (
                    symbol(row["name"]), row["name"], row["version"], row["folder"],
                    instrument, row["product"]))
        lines.append("${InstrumentEnd}")
    return "\n".join(lines) + "\n"


def portable_text(rows, version, setup_name):
    """The text beside the programs in the zip: where the settings live and
    which folder to create. Lines end in CR LF for Notepad."""
    width = max(len(row["name"]) for row in rows)
    lines = [
        "Kelvo and Lum %s, portable" % version,
        "",
        "The fourteen programs run from any folder; copy the ones you need.",
        "",
        "Each program keeps its settings in one file, in a folder of its own",
        "under %s\\. The program does not make that folder: create it" % SETTINGS_ROOT,
        "once, before the first start, or the program runs on its defaults and",
        "keeps no setting. The programs make %s\\Temp\\ themselves." % SETTINGS_ROOT,
        "",
        "%-*s  Version  Folder to create" % (width, "Program"),
    ]
    for row in rows:
        lines.append("%-*s  %-7s  %s\\%s\\" % (width, row["name"], row["version"],
                                              SETTINGS_ROOT, row["folder"]))
    lines += [
        "",
        "For example, for Kelvo31, in a command prompt:",
        "    mkdir %s\\%s" % (SETTINGS_ROOT, variants.by_name("Kelvo31")["folder"]),
        "",
        "On a computer shared by several users, let every user write there:",
        "    icacls %s\\%s /grant *S-1-5-32-545:(OI)(CI)M" % (
            SETTINGS_ROOT, variants.by_name("Kelvo31")["folder"]),
        "",
        "The setup program %s does all of this, adds Start-menu" % setup_name,
        "shortcuts and an uninstaller.",
    ]
    return "\r\n".join(lines) + "\r\n"


def write_zip(path, rows, bin_dir, version, setup_name):
    stem = os.path.splitext(os.path.basename(path))[0]
    partial = path + ".part"
    with zipfile.ZipFile(partial, "w", zipfile.ZIP_DEFLATED) as archive:
        for row in rows:
            exe = row["name"] + ".exe"
            archive.write(os.path.join(bin_dir, exe), stem + "/" + exe)
        archive.writestr(stem + "/Settings.txt", portable_text(rows, version, setup_name))
    os.replace(partial, path)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", required=True, help="folder of the fourteen programs")
    parser.add_argument("--icon", required=True)
    parser.add_argument("--work", required=True, help="folder for the generated list")
    parser.add_argument("--installer", required=True, help="setup program to write")
    parser.add_argument("--zip", required=True, help="portable zip to write")
    parser.add_argument("--makensis", default="makensis")
    args = parser.parse_args()

    rows = variants.VARIANTS
    version = variants.product_version()
    for row in rows:
        exe = os.path.join(args.bin, row["name"] + ".exe")
        if not os.path.isfile(exe):
            sys.exit("missing program " + exe)

    os.makedirs(args.work, exist_ok=True)
    list_path = os.path.join(args.work, "programs.nsh")
    with open(list_path, "w", encoding="ascii") as f:
        f.write(program_list(rows))

    for path in (args.installer, args.zip):
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    partial = os.path.abspath(args.installer) + ".part"
    subprocess.run([args.makensis, "-V2", "-WX", "-NOCD",
                    "-DPRODUCT_VERSION=" + version,
                    "-DBIN_DIR=" + os.path.abspath(args.bin),
                    "-DPROGRAM_LIST=" + os.path.abspath(list_path),
                    "-DICON=" + os.path.abspath(args.icon),
                    "-DOUT_FILE=" + partial,
                    SCRIPT], check=True)
    os.replace(partial, args.installer)
    write_zip(os.path.abspath(args.zip), rows, args.bin, version,
              os.path.basename(args.installer))
    print("setup:", args.installer, os.path.getsize(args.installer), "bytes")
    print("portable:", args.zip, os.path.getsize(args.zip), "bytes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
