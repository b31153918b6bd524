#!/usr/bin/env python3
"""The data file's disk full while Logging: a small file system (tmpfs)
mounted as drive D: of the prefix, the data file made on it, most of its
space taken by another file, then the EM31-MK2 mapping program Logging with
the field simulator on both ports until the disk is full. The program goes
on (no crash), tells the operator once in its message box, keeps every
record written before whole and unchanged, and when space is freed the
records come back: logging of everything else went on meanwhile."""
import os
import subprocess
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

PROGRAM = "Kelvo31"
DISK_KIB = 256
LEFT_FREE = 12 * 1024       # bytes left when the other file has taken the rest
RECORD = 27
NOTICE_TITLE = "DISK FULL"
NOTICE_TEXT = "The disk of the data file is full.||New records are not saved||until disk space is freed."


# About how long the test runs alone, so that ctest starts the longest first.
SECONDS = 35

def mount_small_disk(box):
    """Mounts a tmpfs of DISK_KIB as drive D:; returns its host folder."""
    folder = os.path.join(box.prefix, "small-disk")
    os.makedirs(folder, exist_ok=True)
    made = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=%dk" % DISK_KIB, "tmpfs", folder],
                          capture_output=True, text=True)
    if made.returncode != 0:
        return None, made.stderr.strip() or "mount failed"
    link = os.path.join(box.prefix, "dosdevices", "d:")
    if os.path.lexists(link):
        os.unlink(link)
    os.symlink(folder, link)
    return folder, ""


def free_bytes(folder):
    stat = os.statvfs(folder)
    return stat.f_bavail * stat.f_frsize


def fill(folder, leave):
    path = os.path.join(folder, "other.bin")
    with open(path, "wb") as f:
        f.write(b"\0" * max(0, free_bytes(folder) - leave))
    return path


def notices(box):
    return [text for title, text in session.dialogs(box) if title == NOTICE_TITLE]


def survey(checks, box, folder):
    walk.settings(box, PROGRAM, {"GpsDataOption": 1, "SampleInterval": "0.100000", "SurveyMode": 0,
                                 "MapDisplayMode": 1})
    log_path = os.path.join(box.prefix, "sent.log")
    sim = walk.start_sim(box, "em31", log_path)
    run, window = session.start_program(box, PROGRAM)
    if not checks.check(walk.open_logging(box, window), "logging screen and a first fix"):
        return
    if not checks.check(gps_survey.create_file(box, window, "D:\\FULL"), "\"&File\" on drive D: brings Stand By"):
        return
    names = os.listdir(folder)
    data_name = [n for n in names if n.upper().startswith("FULL")]
    if not checks.check(len(data_name) == 1, "the data file is on the small disk (%s)" % names):
        return
    data_path = os.path.join(folder, data_name[0])
    other = fill(folder, LEFT_FREE)
    harness.log("free on D: before Go: %d bytes" % free_bytes(folder))
    box.key(window, "g")

    # Logging until the disk is full and the notice shows.
    shown = None
    deadline = time.time() + 40
    while time.time() < deadline and not shown:
        shown = notices(box)
        time.sleep(0.5)
    full_at = open(data_path, "rb").read()
    checks.check(bool(shown), "the operator is told: a \"%s\" box shows while Logging" % NOTICE_TITLE)
    checks.equal(shown[0] if shown else None, NOTICE_TEXT, "the notice's text")
    checks.check(run.running(), "the program goes on")
    box.screenshot("faults-disk-full-notice")
    gps_survey.answer(box, NOTICE_TITLE)
    # The disk stays full a while: records are lost, but no second box.
    time.sleep(6)
    checks.equal(notices(box), [], "the notice is shown once, though writes go on failing")
    still_full = open(data_path, "rb").read()
    checks.check(still_full == full_at, "nothing is added or lost while the disk stays full (%d bytes)"
                 % len(still_full))
    # Space comes back: so do the records.
    os.unlink(other)
    time.sleep(4)
    walk.pause(box, window)
    walk.finish(box, checks, PROGRAM, sim, run, window)
    data = open(data_path, "rb").read()
    check_file(checks, data, full_at, log_path)


def check_file(checks, data, full_at, log_path):
    checks.equal(len(full_at) % RECORD, 0, "the file is whole records when the disk is full (%d bytes)"
                 % len(full_at))
    checks.check(data.startswith(full_at), "everything written before the disk was full is kept unchanged")
    checks.equal(len(data) % RECORD, 0, "the file is whole records in the end")
    recs = gps_survey.records(data, RECORD)
    checks.check(all(r[-1:] == b"\n" and b"\n" not in r[:-1] for r in recs), "every record ends in its line feed")
    full_count = len(full_at) // RECORD
    starts = [i for i, r in enumerate(recs) if r[0:9] == b"X$STARTED"]
    if not checks.check(len(starts) == 1 and recs[-1][0:7] == b"XPAUSED",
                        "\"$STARTED\" before the disk filled, \"PAUSED\" written after space came back"):
        return
    # Before the disk filled: every sentence sent, once each, in order.
    groups = gps_survey.gps_groups(recs, RECORD)
    before = [g for g in groups if starts[0] < g[4] < full_count]
    after = [g for g in groups if g[4] >= full_count]
    sent = gps_survey.sent_sentences(log_path)
    texts = [g[0] for g in before]
    checks.check(gps_survey.stands_in_order(sent, texts),
                 "%d sentences before the disk filled: the simulator's, each once, in order" % len(texts))
    readings = sum(1 for r in recs[starts[0]:full_count] if r[0:1] == b"T")
    checks.check(readings > 20, "readings logged before the disk filled (%d)" % readings)
    # After it: the records came back, whole sentences in the simulator's order.
    texts = [g[0] for g in after]
    checks.check(len(texts) > 10 and gps_survey.stands_in_order(sent, texts),
                 "%d sentences after space came back, in order with none lost between them" % len(texts))
    readings = sum(1 for r in recs[full_count:] if r[0:1] == b"T")
    checks.check(readings > 10, "readings logged again after space came back (%d)" % readings)
    corners = sum(1 for r in recs[full_count:] if r[0:1] == b"{")
    checks.check(corners > 0, "the map went on: swath corners after space came back (%d)" % corners)


def main():
    checks = harness.Checks()
    with harness.Sandbox("faults-disk") as box:
        folder, why = mount_small_disk(box)
        if folder is None:
            harness.skip("cannot mount a small file system as the data drive: " + why)
        try:
            survey(checks, box, folder)
        finally:
            for program in box.programs:
                program.stop()
            subprocess.run(["wineserver", "-k"], env=box.env(), capture_output=True, timeout=30)
            subprocess.run(["umount", "-l", folder], capture_output=True)
    checks.finish()


if __name__ == "__main__":
    main()
