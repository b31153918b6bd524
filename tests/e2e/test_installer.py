#!/usr/bin/env python3
"""The deliveries of the fourteen programs. The portable zip holds the programs
as built and a text naming each settings folder. The setup program, run
silently, installs the programs, their Start-menu shortcuts and their settings
folders with Temp, and registers its uninstaller; each installed program then
writes its first-start settings file into its folder. A second installation
keeps the settings files. The silent uninstaller removes programs, shortcuts
and its registration and leaves settings files and data files where they are."""
import os
import tempfile
import struct
import subprocess
import time
import zipfile

import harness
import test_settings

SETUP = os.environ.get("KELVO_SETUP", "")
PORTABLE = os.environ.get("KELVO_PORTABLE", "")
INSTALL_FOLDER = "C:\\Program Files\\Ostrel"
MENU_FOLDER = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\Ostrel"
SETTINGS_ROOT = "C:\\ProgramData\\Ostrel"
UNINSTALL_KEY = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Ostrel Kelvo and Lum"
# Where an operator left a data file and a program a background working copy.
DATA_FILE = INSTALL_FOLDER + "\\LINE0001.T31"
BACKGROUND_COPY = SETTINGS_ROOT + "\\Temp\\axyz.$00"


def built(name):
    with open(os.path.join(harness.bin_dir(), name + ".exe"), "rb") as f:
        return f.read()


# ---------------------------------------------------------------- shortcuts
def link_target(data):
    """(target path, working folder) of a shell link file."""
    flags = struct.unpack_from("<I", data, 0x14)[0]
    at = 0x4C
    if flags & 0x01:  # an item list comes first
        at += 2 + struct.unpack_from("<H", data, at)[0]
    target = None
    if flags & 0x02:  # link info, with the local path
        size, _, info_flags, _, base_at = struct.unpack_from("<IIIII", data, at)
        if info_flags & 0x01:
            base = data[at + base_at:data.index(b"\0", at + base_at)].decode("latin-1")
            suffix_at = at + struct.unpack_from("<I", data, at + 24)[0]
            suffix = data[suffix_at:data.index(b"\0", suffix_at)].decode("latin-1")
            target = base + suffix
        at += size
    folder = None
    for bit in (0x04, 0x08, 0x10):  # name, relative path, working folder
        if flags & bit:
            count = struct.unpack_from("<H", data, at)[0]
            width = 2 if flags & 0x80 else 1
            text = data[at + 2:at + 2 + count * width].decode("utf-16-le" if width == 2 else "latin-1")
            at += 2 + count * width
            if bit == 0x10:
                folder = text.rstrip("\0")  # Wine counts the closing zero too
    return target, folder


# ---------------------------------------------------------------- registry
def registry_key(box, key):
    """Values of a key of the prefix's machine registry, in the registry
    file's text form (quoted, backslashes and quotes escaped), or None. Asked
    of the running prefix with reg.exe: its server keeps the registry in
    memory and saves the file only when it ends."""
    with tempfile.TemporaryFile() as out:
        result = subprocess.run(["wine", "reg", "query", "HKLM\\" + key], env=box.env(), stdout=out,
                                stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL, timeout=60)
        out.seek(0)
        text = out.read().decode("utf-8", errors="replace")
    if result.returncode != 0:
        return None
    values = {}
    for line in text.splitlines():
        parts = line.strip().split(None, 2)
        if len(parts) == 3 and parts[1].startswith("REG_"):
            value = parts[2].replace("\\", "\\\\").replace('"', '\\"')
            values[parts[0]] = '"' + value + '"'
    return values


# ---------------------------------------------------------------- checks
def check_zip(checks):
    if not checks.check(os.path.isfile(PORTABLE), "the portable zip was built: %s" % PORTABLE):
        return
    stem = os.path.splitext(os.path.basename(PORTABLE))[0]
    with zipfile.ZipFile(PORTABLE) as archive:
        names = sorted(archive.namelist())
        expected = sorted([stem + "/" + name + ".exe" for name in harness.PROGRAM_NAMES] +
                          [stem + "/Settings.txt"])
        checks.equal(names, expected, "the zip holds the fourteen programs and Settings.txt")
        same = [name for name in harness.PROGRAM_NAMES
                if stem + "/" + name + ".exe" in names and
                archive.read(stem + "/" + name + ".exe") == built(name)]
        checks.equal(len(same), 14, "the zipped programs are the built ones")
        text = archive.read(stem + "/Settings.txt").decode("ascii") if stem + "/Settings.txt" in names else ""
    checks.check("\r\n" in text and "\n" not in text.replace("\r\n", ""), "Settings.txt has CR LF lines")
    missing = [folder for name, folder, model, product in harness.VARIANTS
               if "%s\\%s\\" % (SETTINGS_ROOT, folder) not in text]
    checks.equal(missing, [], "Settings.txt names the settings folder of each program")


def installed_programs(box):
    return [name for name in harness.PROGRAM_NAMES
            if os.path.exists(box.c_path(INSTALL_FOLDER + "\\" + name + ".exe"))]


def check_installed(checks, box):
    same = [name for name in harness.PROGRAM_NAMES
            if os.path.isfile(box.c_path(INSTALL_FOLDER + "\\" + name + ".exe")) and
            box.read_c(INSTALL_FOLDER + "\\" + name + ".exe") == built(name)]
    checks.equal(same, harness.PROGRAM_NAMES, "the fourteen programs are installed as built")
    checks.check(os.path.isfile(box.c_path(INSTALL_FOLDER + "\\uninstall.exe")), "the uninstaller is installed")

    links = {}
    for name in harness.PROGRAM_NAMES:
        path = box.c_path(MENU_FOLDER + "\\" + name + ".lnk")
        links[name] = link_target(open(path, "rb").read()) if os.path.isfile(path) else None
    wrong = [name for name in harness.PROGRAM_NAMES
             if links[name] != (INSTALL_FOLDER + "\\" + name + ".exe", INSTALL_FOLDER)]
    checks.equal(wrong, [], "each program has a Start-menu shortcut by its name, to the installed "
                            "program, starting in its folder")

    folders = sorted(os.listdir(box.c_path(SETTINGS_ROOT)))
    checks.equal(folders, sorted([v[1] for v in harness.VARIANTS] + ["Temp"]),
                 "the installation made the fourteen settings folders and Temp")
    checks.equal([f for f in folders if os.listdir(box.c_path(SETTINGS_ROOT + "\\" + f))], [],
                 "the folders are empty: the programs write their settings themselves")

    values = registry_key(box, UNINSTALL_KEY) or {}
    checks.equal({k: values.get(k) for k in ("DisplayName", "Publisher", "UninstallString",
                                            "QuietUninstallString", "InstallLocation")},
                 {"DisplayName": '"Kelvo and Lum"', "Publisher": '"Ostrel"',
                  "UninstallString": '"\\"C:\\\\Program Files\\\\Ostrel\\\\uninstall.exe\\""',
                  "QuietUninstallString": '"\\"C:\\\\Program Files\\\\Ostrel\\\\uninstall.exe\\" /S"',
                  "InstallLocation": '"C:\\\\Program Files\\\\Ostrel"'},
                 "the uninstaller is registered")
    version = harness.variants.product_version()
    checks.equal(values.get("DisplayVersion"), '"%s"' % version,
                 "the registered version is the setup program's, %s" % version)


def first_starts(checks, box):
    """Each installed program writes its first-start file into its folder."""
    for name, folder, model, product in harness.VARIANTS:
        variant = test_settings.Variant(box, name, folder, model, product)
        program = box.start(name, exe=INSTALL_FOLDER + "\\" + name + ".exe")
        window = box.wait_window(name)
        test_settings.wait_ready(box)
        expected = test_settings.join(variant.lines)
        checks.equal(variant.read() if os.path.exists(variant.file_path) else None, expected,
                     "installed %s: the first start writes its settings file (%d bytes)"
                     % (name, len(expected)))
        test_settings.close_by_x(checks, box, variant, program, window, "installed")


def start_by_shortcut(checks, box, name):
    process = subprocess.Popen(["wine", "start", MENU_FOLDER + "\\" + name + ".lnk"], env=box.env(),
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True)
    process.wait(timeout=60)
    window = box.wait_title(name, timeout=60)
    if not checks.check(window is not None, "the Start-menu shortcut starts %s" % name):
        return
    test_settings.wait_ready(box)
    box.key(window, "x")
    checks.check(box.window_gone(name, timeout=20), "%s started by its shortcut ends by X" % name)


def settings_files(box):
    files = {}
    for name, folder, model, product in harness.VARIANTS:
        path = box.c_path("%s\\%s\\%s.INI" % (SETTINGS_ROOT, folder, folder))
        files[name] = open(path, "rb").read() if os.path.isfile(path) else None
    return files


def main():
    checks = harness.Checks()
    check_zip(checks)
    if not checks.check(os.path.isfile(SETUP), "the setup program was built: %s" % SETUP):
        checks.finish()
    with harness.Sandbox("installer") as box:
        began = time.time()
        checks.equal(box.run_to_end(SETUP, ["/S"]), 0, "the silent installation ends with exit code 0")
        harness.log("     (installed in %.1f s)" % (time.time() - began))
        check_installed(checks, box)

        first_starts(checks, box)
        start_by_shortcut(checks, box, "Lum34-3")

        # An operator's changed setting, a data file and a background working copy.
        edited = test_settings.expected_lines(0, 0)
        edited[1] = "D:\\Survey\\North Field\\"
        with open(box.c_path(SETTINGS_ROOT + "\\Kelvo31MK2\\Kelvo31MK2.INI"), "wb") as f:
            f.write(test_settings.join(edited))
        data = b"".join(b"R%25d\n" % n for n in range(40))
        for path in (DATA_FILE, BACKGROUND_COPY):
            with open(box.c_path(path), "wb") as f:
                f.write(data)
        before = settings_files(box)
        checks.equal([name for name, content in before.items() if content is None], [],
                     "all fourteen settings files exist before the second installation")

        checks.equal(box.run_to_end(SETUP, ["/S"]), 0, "a second silent installation ends with exit code 0")
        checks.equal(settings_files(box), before, "the second installation keeps all settings files")
        checks.equal(installed_programs(box), harness.PROGRAM_NAMES, "the programs are still installed")

        began = time.time()
        code = box.run_to_end(INSTALL_FOLDER + "\\uninstall.exe", ["/S"])
        checks.equal(code, 0, "the silent uninstallation ends with exit code 0")
        harness.log("     (uninstalled in %.1f s)" % (time.time() - began))
        checks.equal(installed_programs(box), [], "the uninstaller removed the fourteen programs")
        checks.check(not os.path.exists(box.c_path(INSTALL_FOLDER + "\\uninstall.exe")),
                     "the uninstaller removed itself")
        checks.check(not os.path.exists(box.c_path(MENU_FOLDER)), "the Start-menu shortcuts are gone")
        checks.equal(registry_key(box, UNINSTALL_KEY), None, "the registration is gone")
        checks.equal(settings_files(box), before, "the fourteen settings files stay as they were")
        checks.equal([box.read_c(p) == data for p in (DATA_FILE, BACKGROUND_COPY)], [True, True],
                     "the data file in the program folder and the Temp file stay")
    checks.finish()


if __name__ == "__main__":
    main()
