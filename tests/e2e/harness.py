"""End-to-end harness: the real programs under Wine on a virtual display.

A `Sandbox` owns everything one test needs and stops all of it on close:
  - its own Wine prefix, copied from the booted template (system files
    hard-linked, registry and the rest copied), so tests never share state,
    with its own wineserver kept from start to close;
  - its own Xvfb display at a chosen screen size, numbered by Xvfb itself;
  - virtual serial ports: socat pty pairs, one end linked as comN in the
    prefix's dosdevices, the other end given to the field simulator;
  - programs started with `start()`, their windows found by title, keys
    pressed and text typed with xdotool, screenshots taken with ImageMagick;
  - the program's files read back from the prefix's drive_c.

Environment (set by ctest): KELVO_BIN (folder of the fourteen programs),
KELVO_E2E_WORK (work folder holding template/ and the per-test prefixes),
KELVO_TOOLS (Windows helper tools such as list_windows.exe),
KELVO_NATIVE_TOOLS (native build's tools folder, for the field simulator).
Tests that cannot run here exit with SKIP_CODE (77), which ctest reports as
skipped.

Tests run side by side (ctest -j): nothing a Sandbox makes is shared with
another test. A long test names its parts in a module-level PARTS and
runs the parts named on its command line (`parts_to_run`); ctest runs each
part as a test of its own (tests/list_parts.py).

Usage:
    with Sandbox("startup", screen=(1280, 800)) as box:
        program = box.start("Kelvo31")
        window = box.wait_window("Kelvo31")
        box.key(window, "x")
        assert program.wait(20) == 0
"""
import itertools
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SKIP_CODE = 77
HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))

sys.path.insert(0, os.path.join(SOURCE, "tools"))
import variants  # noqa: E402  (the one variant list)

VARIANTS = [  # name, settings folder, InstrumentModel, ProductMode
    (v["name"], v["folder"], v["model"], v["product"]) for v in variants.VARIANTS]
PROGRAM_NAMES = [v[0] for v in VARIANTS]


# Sandboxes of one test process, numbered so that their prefixes never meet.
_SANDBOX_NUMBERS = itertools.count(1)


def log(*parts):
    print(*parts, flush=True)


def skip(why):
    log("SKIP:", why)
    sys.exit(SKIP_CODE)


def require_tools():
    for tool in ("wine", "wineserver", "Xvfb", "xdotool", "socat", "import"):
        if shutil.which(tool) is None:
            skip("missing tool: " + tool)


def bin_dir():
    return os.environ.get("KELVO_BIN", os.path.join(SOURCE, "build", "windows", "bin"))


def work_dir():
    return os.environ.get("KELVO_E2E_WORK", os.path.join(SOURCE, "build", "windows", "e2e"))


def tools_dir():
    return os.environ.get("KELVO_TOOLS", os.path.join(SOURCE, "build", "windows", "tools"))


def native_tools_dir():
    return os.environ.get("KELVO_NATIVE_TOOLS", os.path.join(SOURCE, "build", "native", "tools"))


def artefact_dir():
    path = os.path.join(work_dir(), "artefacts")
    os.makedirs(path, exist_ok=True)
    return path


def parts_to_run(parts):
    """The parts of a test named on its command line (ctest runs each part as
    a test of its own), or every part when none is named."""
    asked = sys.argv[1:] or list(parts)
    unknown = [part for part in asked if part not in parts]
    if unknown:
        raise SystemExit("unknown part %s; the parts are %s" % (", ".join(unknown), ", ".join(parts)))
    return asked


def template_prefix():
    return os.path.join(work_dir(), "template")


def copy_prefix(template, target):
    """Hard-links the large, read-only system files and copies what Wine writes."""
    if os.path.exists(target):
        shutil.rmtree(target, ignore_errors=True)
    subprocess.run(["cp", "-al", template, target], check=True)
    written = ["system.reg", "user.reg", "userdef.reg",
               os.path.join("drive_c", "windows", "win.ini"),
               os.path.join("drive_c", "windows", "system.ini")]
    for name in written:
        path = os.path.join(target, name)
        if os.path.isfile(path):
            data = open(path, "rb").read()
            os.unlink(path)
            with open(path, "wb") as f:
                f.write(data)


class Program:
    """One program started under Wine."""

    def __init__(self, box, name, process):
        self.box = box
        self.name = name
        self.process = process

    def wait(self, timeout):
        """Exit code, or None when it is still running after `timeout` seconds."""
        try:
            return self.process.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            return None

    def running(self):
        return self.process.poll() is None

    def stop(self):
        if self.process.poll() is None:
            try:
                os.killpg(self.process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            try:
                self.process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                pass


class Sandbox:
    def __init__(self, name, screen=(1280, 800), keep_prefix=False):
        require_tools()
        if not os.path.isfile(os.path.join(template_prefix(), ".kelvo-ready")):
            skip("no booted Wine prefix template at " + template_prefix())
        self.name = name
        self.screen = screen
        self.keep_prefix = keep_prefix
        self.prefix = os.path.join(work_dir(), "run", "%s-%d-%d" % (name, os.getpid(), next(_SANDBOX_NUMBERS)))
        os.makedirs(os.path.dirname(self.prefix), exist_ok=True)
        copy_prefix(template_prefix(), self.prefix)
        self.processes = []
        self.pairs = {}
        self.programs = []
        self.display = None
        self.xvfb = None
        self._start_display()
        self._start_wineserver()

    # ------------------------------------------------------------ set-up
    def _start_display(self):
        read_end, write_end = os.pipe()
        w, h = self.screen
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "%dx%dx24" % (w, h),
             "-nolisten", "tcp", "-noreset"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True)
        os.close(write_end)
        number = b""
        deadline = time.time() + 20
        while not number.endswith(b"\n") and time.time() < deadline:
            chunk = os.read(read_end, 16)
            if not chunk:
                break
            number += chunk
        os.close(read_end)
        if not number.strip():
            raise RuntimeError("Xvfb did not start")
        self.display = ":" + number.decode().strip()

    def _start_wineserver(self):
        """The prefix's wineserver and system processes, up from the start
        and kept until `close` (serve_prefix.sh says why)."""
        subprocess.run(["bash", os.path.join(HERE, "serve_prefix.sh"), self.prefix], env=self.env(),
                       timeout=120, check=True,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def env(self):
        env = dict(os.environ)
        env.update({"WINEPREFIX": self.prefix, "DISPLAY": self.display,
                    "WINEDEBUG": env.get("KELVO_WINEDEBUG", "-all"),
                    # No menu entries on the host for shortcuts made in the prefix.
                    "WINEDLLOVERRIDES": "mscoree,mshtml=;winemenubuilder.exe=d"})
        return env

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
        return False

    # ------------------------------------------------------------ programs
    def start(self, program, args=(), exe=None):
        """Starts a program of the build, or the one at `exe` (a C: path of
        the prefix, such as an installed copy)."""
        if exe is None:
            exe = os.path.join(bin_dir(), program + ".exe")
            if not os.path.isfile(exe):
                raise RuntimeError("no program " + exe)
        process = subprocess.Popen(["wine", exe] + list(args), env=self.env(),
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        started = Program(self, program, process)
        self.programs.append(started)
        return started

    def run_to_end(self, exe, args=(), timeout=120):
        """Runs a Windows program (a setup program, an uninstaller) and waits
        until every process it started has ended too; returns its exit code."""
        result = subprocess.run(["wine", exe] + list(args), env=self.env(), stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL, timeout=timeout, start_new_session=True)
        # The prefix's server and system processes stay up for the next
        # program; what this one started (an uninstaller copies itself to a
        # temporary program and runs that) is waited for by name.
        deadline = time.time() + timeout
        while self.programs_running() and time.time() < deadline:
            time.sleep(0.2)
        return result.returncode

    SYSTEM_PROGRAMS = (b"services.exe", b"winedevice.exe", b"plugplay.exe", b"svchost.exe", b"explorer.exe",
                       b"rpcss.exe", b"conhost.exe", b"winemenubuilder.exe", b"start.exe", b"tabtip.exe")

    def programs_running(self):
        """Windows programs of this prefix other than its system processes."""
        own = ("WINEPREFIX=" + self.prefix).encode()
        running = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                with open("/proc/%s/cmdline" % entry, "rb") as f:
                    command = f.read()
                with open("/proc/%s/environ" % entry, "rb") as f:
                    if own not in f.read().split(b"\0"):
                        continue
            except OSError:
                continue
            first = command.split(b"\0")[0].lower()
            if not first.endswith(b".exe") or first.endswith(self.SYSTEM_PROGRAMS):
                continue
            running.append(int(entry))
        return running

    def pids(self, program, suffix=".exe"):
        """Process ids of a program running in this sandbox's prefix; other
        tests and other users run programs of the same name at the same time.
        With suffix "" any process whose command line holds `program`:
        "wineserver", or "" for every process of the prefix."""
        exe = (program + suffix).encode()
        own = ("WINEPREFIX=" + self.prefix).encode()
        found = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                with open("/proc/%s/cmdline" % entry, "rb") as f:
                    if exe not in f.read():
                        continue
                with open("/proc/%s/environ" % entry, "rb") as f:
                    if own not in f.read().split(b"\0"):
                        continue
            except OSError:
                continue
            found.append(int(entry))
        return found

    def run_tool(self, tool, args=(), timeout=60):
        """Runs a Windows console tool inside the prefix and returns its output.
        The output comes through a file: a Wine process that the tool starts
        would hold a pipe open after the tool has ended."""
        exe = os.path.join(tools_dir(), tool + ".exe")
        with tempfile.TemporaryFile() as out:
            subprocess.run(["wine", exe] + list(args), env=self.env(), stdin=subprocess.DEVNULL,
                           stdout=out, stderr=subprocess.DEVNULL, timeout=timeout, start_new_session=True)
            out.seek(0)
            return out.read().decode("utf-8", "replace")

    def windows(self):
        """Windows and child controls of the prefix's programs, as dicts."""
        rows = []
        for line in self._window_list().splitlines():
            parts = line.split("\t")
            if len(parts) < 8:
                continue
            l, t, r, b = (int(v) for v in parts[6].split(","))
            rows.append({"depth": int(parts[0]), "handle": parts[1], "class": parts[2],
                         "id": int(parts[3]), "visible": parts[4] == "1",
                         "enabled": parts[5] == "1", "rect": (l, t, r, b),
                         "text": "\t".join(parts[7:])})
        return rows

    def _window_list(self, tries=3):
        """The list tool's output. Rarely, with many sandboxes at work, a Wine
        process stalls and never ends: it is stopped and the list asked for
        again."""
        for attempt in range(tries):
            try:
                return self.run_tool("list_windows", timeout=20)
            except subprocess.TimeoutExpired:
                log("     (list_windows stalled, attempt %d)" % (attempt + 1))
        raise RuntimeError("list_windows stalled %d times" % tries)

    def wait_window(self, title, timeout=60):
        """X window id of the first window with exactly this title."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            found = self.xdotool(["search", "--name", "^%s$" % _regex_escape(title)], check=False)
            ids = found.split()
            if ids:
                return ids[0]
            time.sleep(0.05)
        raise RuntimeError("no window titled %r within %ss" % (title, timeout))

    def wait_control(self, control_id, text=None, timeout=30):
        """True once a visible child control with this id (and text) exists.
        A program's X window shows before its create step has made the
        controls, so keys are pressed only after this."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            for row in self.windows():
                if row["depth"] > 0 and row["id"] == control_id and row["visible"] and \
                        (text is None or row["text"] == text):
                    return True
            time.sleep(0.3)
        return False

    def wait_title(self, title, timeout=20):
        """X window id of a window with exactly this title (a dialog), focused;
        None when none shows within `timeout` seconds."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            found = self.xdotool(["search", "--name", "^%s$" % _regex_escape(title)], check=False).split()
            if found:
                self.xdotool(["windowfocus", "--sync", found[0]], check=False)
                time.sleep(0.3)
                return found[0]
            time.sleep(0.3)
        return None

    def window_gone(self, title, timeout=20):
        deadline = time.time() + timeout
        while time.time() < deadline:
            found = self.xdotool(["search", "--name", "^%s$" % _regex_escape(title)], check=False)
            if not found.split():
                return True
            time.sleep(0.3)
        return False

    def geometry(self, window):
        """(x, y, width, height) of an X window."""
        out = self.xdotool(["getwindowgeometry", "--shell", window])
        values = dict(line.split("=", 1) for line in out.split() if "=" in line)
        return int(values["X"]), int(values["Y"]), int(values["WIDTH"]), int(values["HEIGHT"])

    def xdotool(self, args, check=True):
        result = subprocess.run(["xdotool"] + args, env=self.env(), capture_output=True, timeout=30)
        if check and result.returncode != 0:
            raise RuntimeError("xdotool %s failed: %s" % (args, result.stderr.decode()))
        return result.stdout.decode()

    def key(self, window, *keys):
        """Focuses the window and presses keys (xdotool key names: x, Return, Tab, F2 …)."""
        self.xdotool(["windowfocus", "--sync", window], check=False)
        for k in keys:
            self.xdotool(["key", k])
            time.sleep(0.15)

    def type(self, window, text):
        self.xdotool(["windowfocus", "--sync", window], check=False)
        self.xdotool(["type", "--delay", "60", text])

    def click(self, x, y):
        self.xdotool(["mousemove", "--sync", str(x), str(y)])
        self.xdotool(["click", "1"])

    def click_control(self, text=None, control_id=None, timeout=20):
        """Clicks the middle of a visible child control found by text or id."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            for row in self.windows():
                if row["depth"] == 0 or not row["visible"]:
                    continue
                if (text is not None and row["text"] == text) or \
                        (control_id is not None and row["id"] == control_id):
                    l, t, r, b = row["rect"]
                    self.click((l + r) // 2, (t + b) // 2)
                    return row
            time.sleep(0.5)
        raise RuntimeError("no control %r / %r" % (text, control_id))

    def screenshot(self, name):
        path = os.path.join(artefact_dir(), name if name.endswith(".png") else name + ".png")
        subprocess.run(["import", "-display", self.display, "-window", "root", path],
                       check=True, timeout=60, capture_output=True)
        return path

    # ------------------------------------------------------------ files
    def c_path(self, windows_path):
        """Host path of a C: path such as C:\\ProgramData\\Ostrel\\Temp."""
        relative = windows_path.replace("\\", "/")
        if relative[1:3] == ":/":
            relative = relative[3:]
        return os.path.join(self.prefix, "drive_c", relative)

    def read_c(self, windows_path):
        with open(self.c_path(windows_path), "rb") as f:
            return f.read()

    # ------------------------------------------------------------ serial ports
    def serial_pair(self, com_number, by_link=False):
        """Links COM<com_number> of the prefix to a fresh pty pair; returns the
        host path of the other end, for the field simulator: the pty itself,
        or with `by_link` the link to it, by which the simulator finds the
        pair again once `unplug` and another `serial_pair` made it anew."""
        folder = os.path.join(self.prefix, "serial")
        os.makedirs(folder, exist_ok=True)
        program_end = os.path.join(folder, "com%d-program" % com_number)
        peer_end = os.path.join(folder, "com%d-peer" % com_number)
        process = subprocess.Popen(
            ["socat", "pty,raw,echo=0,link=" + program_end, "pty,raw,echo=0,link=" + peer_end],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        self.processes.append(process)
        self.pairs[com_number] = process
        deadline = time.time() + 10
        while not (os.path.islink(program_end) and os.path.islink(peer_end)):
            if time.time() > deadline:
                raise RuntimeError("socat gave no pty pair")
            time.sleep(0.05)
        link = os.path.join(self.prefix, "dosdevices", "com%d" % com_number)
        if os.path.lexists(link):
            os.unlink(link)
        os.symlink(os.path.realpath(program_end), link)
        return peer_end if by_link else os.path.realpath(peer_end)

    def unplug(self, com_number):
        """The port's adapter is gone: its pty pair ends (socat removes its
        links on TERM, so nothing stale points at a reused pty) and COM<n>
        no longer exists in the prefix."""
        process = self.pairs.pop(com_number, None)
        if process is not None and process.poll() is None:
            os.killpg(process.pid, signal.SIGTERM)
            process.wait(timeout=10)
        self.remove_port(com_number)

    def remove_port(self, com_number):
        link = os.path.join(self.prefix, "dosdevices", "com%d" % com_number)
        if os.path.lexists(link):
            os.unlink(link)

    def spawn(self, argv, stdin=None, **kwargs):
        """Starts a native helper (such as the field simulator) owned by the sandbox."""
        process = subprocess.Popen(argv, stdin=stdin, start_new_session=True, **kwargs)
        self.processes.append(process)
        return process

    # ------------------------------------------------------------ tear-down
    def close(self):
        for program in self.programs:
            program.stop()
        subprocess.run(["wineserver", "-k"], env=self.env(), capture_output=True, timeout=30)
        # The server is known by the prefix folder's inode, which the next new
        # folder may get: the folder goes only once its server has ended.
        subprocess.run(["wineserver", "-w"], env=self.env(), capture_output=True, timeout=30)
        for process in self.processes:
            if process.poll() is None:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait(timeout=10)
        if self.xvfb and self.xvfb.poll() is None:
            os.killpg(self.xvfb.pid, signal.SIGKILL)
            self.xvfb.wait(timeout=10)
        if not self.keep_prefix:
            shutil.rmtree(self.prefix, ignore_errors=True)


def _regex_escape(text):
    out = ""
    for c in text:
        out += "\\" + c if c in ".^$*+?()[]{}|\\" else c
    return out


class Checks:
    """Collects failures so that one run reports all of them; ends with the
    closing line that ctest and CI read."""

    def __init__(self):
        self.passed = 0
        self.failed = 0

    def check(self, condition, what):
        if condition:
            self.passed += 1
            log("ok  ", what)
        else:
            self.failed += 1
            log("FAIL", what)
        return condition

    def equal(self, actual, expected, what):
        ok = actual == expected
        if not ok:
            log("     actual:  ", repr(actual))
            log("     expected:", repr(expected))
        return self.check(ok, what)

    def finish(self):
        log("%d passed, %d failed" % (self.passed, self.failed))
        sys.exit(0 if self.failed == 0 else 1)
