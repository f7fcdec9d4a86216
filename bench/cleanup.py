"""What the `cleanup` command takes: its listing, its start, its moves."""

import json
import re
import shutil
import statistics
import subprocess
import sys
import urllib.parse

import trees
from measuring import Command, comparison, duration, memory, ratios, say, spread, table, times

ALWAYS_ARTIFACTS = ["node_modules", ".next", "dist", "build", "__pycache__", ".build", "DerivedData"]
SOMETIMES_ARTIFACTS = ["target", ".venv"]
DAYS = "1000"  # the old projects of the trees are of 2020, the others as young as the tree

PEER = "oh-my-node-modules"
PEER_VERSION = "1.6.1"
PEER_ROUNDS = 3

FOLDERS_OF = {10: 100, 100: 100, 1_000: 100, 10_000: 20}  # files in a folder: how many such folders are moved
NUMBERS_OF_FOLDERS = [10, 100, 1_000]  # with 10 files each
MOVE_ROUNDS = 5


def run(programs, options):
    projects = trees.tree(programs, "make_code_tree", "projects", "projects")
    goals = [*listing(programs, projects, options.rounds), *start(programs), *moves(programs)]
    if options.peer:
        peer(programs, projects)
    print("### Goals\n")
    print(table(["goal", "at most", "measured", ""],
                [[goal, limit, measured, "met" if is_met else "**not met**"]
                 for goal, limit, measured, is_met in goals]))


def artifacts(folder):
    return (folder / "artifacts").read_text().split("\0")[:-1]


# Listing

def list_command(programs, folder, *options):
    return [programs.program, "cleanup", "--root", str(folder / "code"), "--json", *options]


def find_command(folder):
    """Finds what the program finds, but takes every target and .venv without a look beside or into it."""
    names = [word for name in ALWAYS_ARTIFACTS + SOMETIMES_ARTIFACTS for word in ("-o", "-name", name)][1:]
    return ["find", str(folder / "code"), "-maxdepth", "5", "-type", "d",
            "(", "-name", ".git", "-prune", "-o", "(", *names, ")", "-prune", "-print0", ")"]


def check_listing(programs, folder):
    """What is slow or fast must first be right: all of the artifacts, and the sizes that the kernel tells."""
    listed = json.loads(subprocess.run(list_command(programs, folder), env=programs.environment, check=True,
                                       stdout=subprocess.PIPE).stdout)
    if sorted(item["path"] for item in listed) != artifacts(folder):
        sys.exit(f"The listing of {folder.name} isn't what was made.")
    return sum(item["bytes"] for item in listed)


def listing(programs, folder, rounds):
    say("listing")
    check_listing(programs, folder)
    walk = [programs.tool("walk_once"), str(folder / "artifacts")]
    commands = [
        Command("`Lumenary cleanup --root TREE --json`", list_command(programs, folder)),
        Command("the bare walk, twice (`walk_once LIST 2`)", [*walk, "2"]),
        Command("the bare walk, once (`walk_once LIST 1`)", [*walk, "1"]),
        Command("`du -sx ARTIFACT…`", ["du", "-sx", *artifacts(folder)]),
        Command("`find TREE … -prune -print0`: no sizes", find_command(folder)),
        Command("`find … -print0`, piped to `du -sx --files0-from=-`: no dates",
                ["sh", "-c", '"$@" | du -sx --files0-from=-', "sh", *find_command(folder)])]
    programs.run_in_turn(1, commands)
    results = programs.run_in_turn(rounds, commands)
    own = results[0]
    print(f"### Listing: {len(artifacts(folder))} artifacts of 500 projects, warm cache, {rounds} rounds\n")
    print(comparison(commands, results))

    twice = ratios(own, results[1])
    peak = max(run.peak for run in own)
    return [("listing, in bare walks of the artifacts twice", "1.20", spread(twice, times),
             statistics.median(twice) <= 1.2),
            ("memory of the listing", "16.0 MiB", memory(peak), peak < 16 * 2**20)]


def peer(programs, folder):
    """Another program for the same person. It looks for node_modules alone, at any depth."""
    place = programs.folder / "peer"
    package = f"{PEER}@{PEER_VERSION}"
    script = place / "node_modules" / PEER / "dist/cli.js"
    if not script.exists():
        say(f"installing {package}")
        installed = subprocess.run(["npm", "install", "--silent", "--ignore-scripts", "--prefix", place, package],
                                   stdout=sys.stderr)
        if installed.returncode != 0:
            say("the peer can't be installed, so it is left out")
            return
    say("peer")
    commands = [Command("`Lumenary cleanup --root TREE --json`", list_command(programs, folder)),
                Command(f"`onm --scan --json TREE` ({PEER} {PEER_VERSION}): `node_modules` only",
                        ["node", str(script), "--scan", "--json", str(folder / "code")])]
    programs.run_in_turn(1, commands)
    print(f"### A peer, {PEER_ROUNDS} rounds\n")
    print(comparison(commands, programs.run_in_turn(PEER_ROUNDS, commands)))


# Start

def start(programs, rounds=500):
    say("start")
    empty = programs.folder / "empty"
    empty.mkdir(exist_ok=True)
    commands = [Command("an empty program, linked statically", [programs.tool("empty_static")]),
                Command("`Lumenary cleanup --days`: wrong usage", [programs.program, "cleanup", "--days"], status=2),
                Command("`Lumenary cleanup --root EMPTY`", [programs.program, "cleanup", "--root", str(empty)])]
    programs.run_in_turn(20, commands)
    results = programs.run_in_turn(rounds, commands)
    against = [statistics.median(ratios(runs, results[0])) for runs in results]
    print(f"### Start: {rounds} rounds\n")
    print(table(["", "median", "quickest", "peak resident", "against the empty program"],
                [[command.name, duration(statistics.median(run.wall for run in runs)),
                  duration(min(run.wall for run in runs)), memory(max(run.peak for run in runs)), times(ratio)]
                 for command, runs, ratio in zip(commands, results, against)]))
    return [("start to a usage error, in empty programs", "2.00", times(against[1]), against[1] <= 2),
            ("start to the listing of an empty folder, in empty programs", "2.00", times(against[2]), against[2] <= 2)]


# Moves

class MovingSet:
    """Many folders of a kind, moved to the Trash of a home beside them, again and again."""

    def __init__(self, programs, count, files):
        self.programs, self.count, self.files = programs, count, files
        self.folder = trees.tree(programs, "make_code_tree", f"moves-{count}x{files}", "moves", count, files)
        self.walks, self.listings, self.runs = [], [], []  # wall times in seconds
        bytes_of_walk = subprocess.run(self.walk_command(), check=True, stdout=subprocess.PIPE).stdout
        if check_listing(programs, self.folder) != int(bytes_of_walk):
            sys.exit(f"The sizes of {self.folder.name} aren't those of the bare walk.")

    def walk_command(self):
        return [self.programs.tool("walk_once"), str(self.folder / "artifacts")]

    def move(self):
        list_words = list_command(self.programs, self.folder, "--days", DAYS)
        [listed], [walk] = self.programs.run_in_turn(
            1, [Command("listing", list_words), Command("walk", self.walk_command())])
        complete = trees.stamp(self.folder)
        incomplete = complete.rename(complete.with_suffix(".moving"))
        subprocess.run(["sync"], check=True)  # or the moves would wait for what others have left to write
        [[moved]] = self.programs.run_in_turn(1, [Command("moving", [*list_words, "--trash"])])
        self.put_back()
        incomplete.rename(complete)
        self.walks.append(walk.wall)
        self.listings.append(listed.wall)
        self.runs.append(moved.wall)

    def put_back(self):
        trash = self.programs.home / ".local/share/Trash"
        infos = list((trash / "info").glob("*.trashinfo"))
        if len(infos) != self.count:
            sys.exit(f"{len(infos)} of {self.count} folders went to the Trash.")
        for info in infos:
            origin = urllib.parse.unquote(re.search("^Path=(.*)$", info.read_text(), re.MULTILINE)[1])
            (trash / "files" / info.stem).rename(origin)
        shutil.rmtree(self.programs.home)

    def of_a_move(self):
        """What the moves take is what the run takes beyond the same run without them."""
        return [(run - listing) / self.count for run, listing in zip(self.runs, self.listings)]

    def beyond_the_walk(self):
        """Of the quickest runs: what slows a run down, as a busy disk does, has nothing to do with the folders."""
        return (min(self.runs) - min(self.listings) - min(self.walks)) / self.count

    def row(self, head):
        return [head, str(self.count), spread(self.of_a_move(), duration), duration(min(self.walks) / self.count),
                duration(self.beyond_the_walk())]


def moves(programs):
    shutil.rmtree(programs.home, ignore_errors=True)
    by_size = {files: MovingSet(programs, count, files) for files, count in FOLDERS_OF.items()}
    by_number = {count: by_size[10] if count == FOLDERS_OF[10] else MovingSet(programs, count, 10)
                 for count in NUMBERS_OF_FOLDERS}
    for turn in range(MOVE_ROUNDS):
        say(f"moves, round {turn + 1} of {MOVE_ROUNDS}")
        for moving_set in dict.fromkeys([*by_size.values(), *by_number.values()]):  # one of them is in both
            moving_set.move()

    heads = ["", "folders", "a move", "quickest bare walk of it", "quickest move without that walk"]
    print(f"### Moving to the Trash: wall for one folder, {MOVE_ROUNDS} rounds\n")
    print(table(heads, [moving_set.row(f"{files:,} files in it") for files, moving_set in by_size.items()]))
    print(table(heads, [moving_set.row(f"{count:,} folders of one name") for count, moving_set in by_number.items()]))
    return [("moving a folder of 10,000 files, in those of 10 files, without the walk", "1.50",
             *growth(by_size[10], by_size[10_000])),
            ("moving one of 1,000 folders, in those of 100 folders", "1.50", *growth(by_number[100], by_number[1_000]))]


def growth(small, large):
    ratio = large.beyond_the_walk() / small.beyond_the_walk()
    return times(ratio), ratio <= 1.5
