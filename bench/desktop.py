"""What the window takes under a display of its own, with a scan as large as scans get, against an empty window."""

import contextlib
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import time

import trees
from measuring import duration, memory, say, spread, table, times

FIRST_FRAME_GOAL = 1.5  # of the empty window's
ROOM_GOAL = 0.1  # seconds
KEYSTROKE_GOAL = 0.03
SCAN_GOAL = 1.1  # of the engine's alone
MEMORY_GOAL = 1.6  # of the empty window's
IDLE_GOAL = 0.002  # of a core
WAKE_GOAL = 2  # a second
IDLE_SECONDS = 20


def run(programs, options):
    say("desktop")
    home = programs.folder / "desktop-home"
    shutil.rmtree(home, ignore_errors=True)
    (home / "run").mkdir(parents=True, mode=0o700)
    try:
        with display(home) as environment:
            tool(programs, environment, "store")
            rows = first_frames(programs, environment, options.rounds)
            rows += answers(programs, environment)
            rows += scans(programs, environment)
            rows += at_rest(programs, environment)
    finally:
        shutil.rmtree(home, ignore_errors=True)
    print(f"### The window, {options.rounds} rounds\n")
    print(table(["", "measured", "goal", ""], rows))


@contextlib.contextmanager
def display(home):
    """A display and a home of the bench's own, and no session bus."""
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24"], pass_fds=[write],
                              stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as number:
        name = ":" + number.readline().strip()
    kept = {key: value for key, value in os.environ.items()
            if not key.startswith("XDG_") and key not in ("DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY")}
    try:
        yield kept | {"HOME": str(home), "XDG_RUNTIME_DIR": str(home / "run"), "DISPLAY": name,
                      "QT_QPA_PLATFORM": "xcb", "LUMENARY_BENCH": "1"}
    finally:
        server.kill()
        server.wait()


def tool(programs, environment, *arguments):
    done = subprocess.run([programs.tool("desktop_times"), *arguments], env=environment | {"LUMENARY_BENCH": "0"},
                          check=True, text=True, stdout=subprocess.PIPE)
    return json.loads(done.stdout) if done.stdout else None


@contextlib.contextmanager
def started(environment, program):
    began = time.monotonic()
    process = subprocess.Popen([program], env=environment, text=True, stdout=subprocess.PIPE)
    try:
        yield process, began
    finally:
        process.kill()
        process.wait()


def seen(process, began, names):
    """When each of these lines came, in the order they came."""
    reached = {}
    for line in process.stdout:
        word = line.split(" ")[0].strip()
        if word in names:
            reached[word] = time.monotonic() - began
        if len(reached) == len(names):
            return reached
    raise SystemExit("the window closed by itself")


def first_frames(programs, environment, rounds):
    own, empty, waited = [], [], 0
    for _ in range(rounds + 1):  # the first one warms up
        with started(environment, programs.tool("empty_window")) as (process, began):
            empty.append(seen(process, began, ["firstFrame"])["firstFrame"])
        with started(environment, programs.program) as (process, began):
            reached = seen(process, began, ["firstFrame", "scanLoaded"])
            own.append(reached["firstFrame"])
            waited += list(reached)[0] == "scanLoaded"
    ratios = [mine / theirs for mine, theirs in zip(own[1:], empty[1:])]
    return [["first frame of an empty window", spread(empty[1:], duration), "", ""],
            ["first frame with the stored scan", spread(own[1:], duration), "", ""],
            ["the one against the other", spread(ratios, times), f"at most {FIRST_FRAME_GOAL}",
             verdict(statistics.median(ratios) <= FIRST_FRAME_GOAL)],
            ["starts in which the scan was there before the first frame", f"{waited} of {rounds + 1}", "", ""]]


def answers(programs, environment):
    rows = []
    for what, values in tool(programs, environment, "rooms").items():
        goal = KEYSTROKE_GOAL if what == "keystroke" else ROOM_GOAL
        seconds = [value / 1e6 for value in values]
        rows.append([f"{what}: from the key to the drawn window", spread(seconds, duration), duration(goal),
                     verdict(statistics.median(seconds) <= goal)])
    frame = [value / 1e6 for value in tool(programs, environment, "map")["frame"]]
    return rows + [["a map of 2,000 tiles, a frame", spread(frame, duration), "", ""]]


def scans(programs, environment):
    tree = trees.tree(programs, "make_disk_tree", "home", "home")
    taken = tool(programs, environment, "scan", str(tree))
    # The first round warms up.
    ratios = [window / engine for window, engine in zip(taken["window"][1:], taken["engine"][1:])]
    return [["a scan with the window open against the engine alone", spread(ratios, times), f"at most {SCAN_GOAL}",
             verdict(statistics.median(ratios) <= SCAN_GOAL)]]


def at_rest(programs, environment):
    with started(environment, programs.tool("empty_window")) as (process, began):
        seen(process, began, ["firstFrame"])
        time.sleep(2)
        empty = resident(process.pid)
    with started(environment, programs.program) as (process, began):
        seen(process, began, ["insights"])
        time.sleep(5)
        own = resident(process.pid)
        work, wakes = used(process.pid)
        time.sleep(IDLE_SECONDS)
        work_after, wakes_after = used(process.pid)
    share = (work_after - work) / IDLE_SECONDS
    rate = (wakes_after - wakes) / IDLE_SECONDS
    frames = tool(programs, environment, "idle")
    return [["resident, empty window", memory(empty), "", ""],
            ["resident, with the scan loaded", memory(own), "", ""],
            ["the one against the other", times(own / empty), f"at most {MEMORY_GOAL}", verdict(own / empty <= MEMORY_GOAL)],
            ["at rest on the overview: of a core", f"{share:.2%}", f"{IDLE_GOAL:.1%}", verdict(share <= IDLE_GOAL)],
            ["at rest: wake-ups a second, all threads", f"{rate:.2f}", str(WAKE_GOAL), verdict(rate <= WAKE_GOAL)],
            ["frames drawn in ten seconds of each room at rest", ", ".join(str(room[0]) for room in frames.values()), "", ""]]


def resident(process):
    status = pathlib.Path(f"/proc/{process}/status").read_text()
    return int(next(line.split()[1] for line in status.splitlines() if line.startswith("VmRSS"))) * 1024


def used(process):
    """Processor time in seconds and how often a thread went to wait."""
    work, wakes = 0, 0
    for thread in pathlib.Path(f"/proc/{process}/task").iterdir():
        fields = (thread / "stat").read_text().rsplit(")", 1)[1].split()
        work += (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
        status = (thread / "status").read_text()
        wakes += int(next(line.split()[1] for line in status.splitlines() if line.startswith("voluntary")))
    return work, wakes


def verdict(is_met):
    return "met" if is_met else "**not met**"
