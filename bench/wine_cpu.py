"""CPU of a program under Wine, read from /proc from outside: the program's
threads and the wineserver of its own prefix (other sandboxes may run the
same program and their own wineserver at the same time)."""
import os
import subprocess
import time

TICKS = os.sysconf("SC_CLK_TCK")


def stat_seconds(path):
    """User and system seconds of a /proc stat file."""
    try:
        fields = open(path).read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS
    except (OSError, IndexError, ValueError):
        return 0.0


def process_seconds(pid):
    return stat_seconds("/proc/%d/stat" % pid)


def pid_in_prefix(pattern, prefix):
    """The process matching `pattern` whose environment names this prefix."""
    for pid in subprocess.run(["pgrep", "-f", pattern], capture_output=True, text=True).stdout.split():
        try:
            env = open("/proc/%s/environ" % pid, "rb").read().split(b"\0")
        except OSError:
            continue
        if ("WINEPREFIX=" + prefix).encode() in env:
            return int(pid)
    return None


def thread_seconds(pid):
    """{thread id: seconds} of the program's threads."""
    out = {}
    try:
        tids = os.listdir("/proc/%d/task" % pid)
    except OSError:
        return out
    for tid in tids:
        out[int(tid)] = stat_seconds("/proc/%d/task/%s/stat" % (pid, tid))
    return out


class Meter:
    """Seconds used by the program, by each of its threads, and by its
    wineserver, between start() and stop()."""

    def __init__(self, prefix, exe):
        self.program = pid_in_prefix(exe, prefix)
        self.server = pid_in_prefix("wineserver", prefix)

    def sample(self):
        return (process_seconds(self.program) if self.program else 0.0,
                process_seconds(self.server) if self.server else 0.0,
                thread_seconds(self.program) if self.program else {}, time.time())

    def start(self):
        self.first = self.sample()

    def stop(self):
        last = self.sample()
        wall = last[3] - self.first[3]
        threads = sorted(((s - self.first[2].get(t, 0.0)) for t, s in last[2].items()), reverse=True)
        return {"wall": wall, "program": last[0] - self.first[0], "server": last[1] - self.first[1],
                "threads": [t for t in threads if t > 0.005]}


def report(what, figures):
    wall = figures["wall"]
    pct = lambda s: 100.0 * s / wall if wall > 0 else 0.0
    threads = ", ".join("%.2f" % pct(t) for t in figures["threads"])
    print("CPU while %s: %.2f %% of one core (program %.2f %%, wineserver %.2f %%; the program's busiest "
          "threads %s %%; %.0f s)" % (what, pct(figures["program"] + figures["server"]), pct(figures["program"]),
                                      pct(figures["server"]), threads, wall))
