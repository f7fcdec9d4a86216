"""What a scan takes: beside the same system calls without a scan around them, and beside other programs."""

import json
import os
import pathlib
import signal
import statistics
import subprocess
import sys

import trees
from measuring import Command, comparison, duration, memory, say, table

COLD_ROUNDS = 3
MEMORY_ROUNDS = 5
CACHES = pathlib.Path("/proc/sys/vm/drop_caches")

# Folders and empty files of the trees whose peaks tell what a folder and a file cost.
EMPTY_TREES = {"empty-base": (20_000, 200_000), "empty-files": (20_000, 600_000), "empty-folders": (220_000, 200_000)}
TEN_MILLION = (1_000_000, 10_000_000)


def run(programs, options):
    kinds = ["home", *(["large"] if options.large else []), "wide", "deep"]
    if options.cold and not can_drop_caches():
        say("the cold rounds are left out: only root may empty the caches of the kernel, and not everywhere")
        options.cold = False
    for kind in kinds:
        folder = trees.tree(programs, "make_disk_tree", kind, kind)
        truth = check(programs, folder)
        measure(programs, folder, truth, options)
    memory_of_scans(programs)
    if options.ten_million:
        ten_million(programs, *TEN_MILLION)


def scan_command(programs, folder, workers=2):
    return Command("the scan" if workers == 2 else f"the scan with {workers} workers",
                   [programs.tool("scan_once"), str(folder), str(workers)])


def replay_command(programs, folder):
    return Command("its system calls alone (`replay_scan`)",
                   [programs.tool("replay_scan"), "run", str(folder), str(call_list(folder)), "2"])


def call_list(folder):
    return folder.with_name(folder.name + ".calls")


def peer_commands(programs, folder):
    # The index is replaced by each run, as it is when a person runs it again.
    index = str(programs.folder / "duc.db")
    return [Command("`du -sx`", ["du", "-sx", str(folder)]),
            Command("`gdu -npcsx`", ["gdu", "-npcsx", str(folder)]),
            Command("`ncdu -0x -o /dev/null`", ["ncdu", "-0x", "-o", "/dev/null", str(folder)]),
            Command("`duc index -x -d FILE`", ["duc", "index", "-x", "-d", index, str(folder)])]


def scanned(programs, folder):
    done = subprocess.run(scan_command(programs, folder).arguments, env=programs.environment, check=True,
                          stdout=subprocess.PIPE)
    return json.loads(done.stdout)


def check(programs, folder):
    """What is slow or fast must first be right, to the byte."""
    say(f"checking {folder.name}")
    truth = trees.contents(folder)
    scan = scanned(programs, folder)
    du = int(subprocess.run(["du", "-sx", "-B1", folder], check=True, stdout=subprocess.PIPE).stdout.split()[0])
    claims = [("the scan's bytes", scan["totalBytes"], truth.bytes_of_files),
              ("the scan's items", scan["items"], truth.files + truth.folders - 1 + truth.others),
              ("the folders that the scan could not read", scan["inaccessible"], 0),
              ("the bytes of du", du, truth.bytes_of_all)]
    wrong = [f"{what}: {value:,}, where a slow walk finds {expected:,}" for what, value, expected in claims
             if value != expected]
    if wrong:
        sys.exit(f"What is found in {folder} isn't what is there. " + "; ".join(wrong))
    return truth


def measure(programs, folder, truth, options):
    say(folder.name)
    subprocess.run([programs.tool("replay_scan"), "list", folder, call_list(folder)], check=True)
    commands = commands_for(programs, folder, options)
    programs.run_in_turn(1, commands)
    print(f"### Scan: {folder.name}, {truth}, warm cache, {options.rounds} rounds\n")
    print(comparison(commands, programs.run_in_turn(options.rounds, commands)))
    if options.cold:
        print(f"### Scan: {folder.name}, {truth}, cold cache, {COLD_ROUNDS} rounds\n")
        print(comparison(commands, run_cold(programs, folder, options)))


def commands_for(programs, folder, options):
    more_workers = [scan_command(programs, folder, 3)] if options.three_workers else []
    return [scan_command(programs, folder), *more_workers, replay_command(programs, folder),
            *peer_commands(programs, folder)]


# Cold

def can_drop_caches():
    try:
        CACHES.write_text("1")
    except OSError:
        return False
    return True


def run_cold(programs, folder, options):
    """Before each run the caches are emptied; then the programs themselves are read in again, by a run on nothing."""
    nothing = programs.folder / "nothing"
    nothing.mkdir(exist_ok=True)
    subprocess.run([programs.tool("replay_scan"), "list", nothing, call_list(nothing)], check=True)
    commands = commands_for(programs, folder, options)
    on_nothing = commands_for(programs, nothing, options)
    results = [[] for _ in commands]
    for turn in range(COLD_ROUNDS):
        say(f"{folder.name}, cold, round {turn + 1} of {COLD_ROUNDS}")
        for step in range(len(commands)):
            index = (turn + step) % len(commands)
            os.sync()
            CACHES.write_text("3")
            call_list(folder).read_bytes()
            programs.run_in_turn(1, [on_nothing[index]])
            results[index] += programs.run_in_turn(1, [commands[index]])[0]
    return results


# Memory

def memory_of_scans(programs):
    peaks = {}
    rows = []
    for name, (folders, files) in EMPTY_TREES.items():
        folder = trees.tree(programs, "make_disk_tree", name, "empty", folders, files)
        [runs] = programs.run_in_turn(MEMORY_ROUNDS, [scan_command(programs, folder)])
        peaks[name] = statistics.median(run.peak for run in runs)
        rows.append([f"{files:,} files in {folders:,} folders", memory(peaks[name])])
    base = EMPTY_TREES["empty-base"]
    of_file = (peaks["empty-files"] - peaks["empty-base"]) / (EMPTY_TREES["empty-files"][1] - base[1])
    of_folder = (peaks["empty-folders"] - peaks["empty-base"]) / (EMPTY_TREES["empty-folders"][0] - base[0])
    print(f"### Memory of a scan: median of {MEMORY_ROUNDS} rounds\n")
    print(table(["", "peak resident"], [*rows, ["a small file more", f"{of_file:.2f} bytes"],
                                        ["a folder more", f"{of_folder:.1f} bytes"]]))


def ten_million(programs, folders, files):
    """Made for this alone, and gone afterwards, however this ends."""
    room = os.statvfs(programs.folder)
    inodes = folders + files + folders // 100 + 1_000_000
    blocks = (folders + folders // 100) * 4096 + 2 * 2**30
    if room.f_favail < inodes or room.f_bavail * room.f_frsize < blocks:
        sys.exit(f"{files:,} files don't fit: that takes {inodes:,} inodes and {blocks / 2**30:.0f} GiB.")
    folder = programs.folder / "ten-million"
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("terminated"))
    try:
        trees.tree(programs, "make_disk_tree", folder.name, "empty", folders, files)
        items = scanned(programs, folder)["items"]
        if items < folders + files:
            sys.exit(f"The scan found {items:,} items, where {folders + files:,} were made.")
        [[once]] = programs.run_in_turn(1, [scan_command(programs, folder)])
    finally:
        trees.remove(folder)
    print(f"### Scan: {files:,} files in {folders:,} folders, once, after a round that doesn't count\n")
    print(table(["", "wall", "user + system", "peak resident"],
                [["the scan", duration(once.wall), duration(once.processor), memory(once.peak)]]))
