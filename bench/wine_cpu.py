"""CPU of a program under Wine, read from /proc from outside: the program's
threads and the wineserver of its own prefix (other sandboxes may run the
same program and their own wineserver at the same time)."""
import os
import time

from soak_walk import process_seconds, stat_seconds


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

    def __init__(self, box, program):
        self.program = (box.pids(program) or [None])[0]
        self.server = (box.pids("wineserver", suffix="") or [None])[0]

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
