"""What it takes to find files with the same bytes: beside hashing alone, and beside other programs."""

import hashlib
import json
import os
import random
import subprocess
import sys

import scan
import trees
from measuring import Command, comparison, ratios_of, say, spread, times

MEBIBYTE = 1 << 20
SMALLEST = 10 * MEBIBYTE
SAMPLES = 2 * MEBIBYTE  # what is read of a file to tell it from others of its size
COLD_ROUNDS = 3


def run(programs, options):
    folder, truth = corpus(programs)
    kept = programs.folder / "kept-digests"
    first = found(programs, folder, "-")
    wrong = [f"{what}: {first[what]:,}, expected {expected:,}" for what, expected in truth.items() if first[what] != expected]
    if wrong:
        sys.exit("The duplicates that are found aren't those that were made. " + "; ".join(wrong))

    ours = Command("the search", [programs.tool("find_duplicates"), str(folder), "-"])
    hashing = Command("hashing as many bytes in memory", [programs.tool("find_duplicates"), "hash", str(truth["bytesRead"])])
    again = Command("the search with kept digests", [programs.tool("find_duplicates"), str(folder), str(kept)])
    commands = [ours, hashing, *peers(folder)]
    found(programs, folder, str(kept))
    second = found(programs, folder, str(kept))
    say("duplicates, warm")
    programs.run_in_turn(1, commands)
    results = programs.run_in_turn(options.rounds, [*commands, again])
    print(f"### Duplicates: {truth['groups']} groups, {truth['bytesRead']:,} bytes to read, warm cache, "
          f"{options.rounds} rounds\n")
    print(comparison(commands, results[:-1]))
    print(f"With kept digests {second['bytesRead']:,} bytes are read, and it takes "
          f"{spread(ratios_of([one.wall for one in results[-1]], [one.wall for one in results[0]]), times)} of the first "
          f"time.\n")
    if options.cold and scan.can_drop_caches():
        commands = [ours, *peers(folder)]
        results = [[] for _ in commands]
        for turn in range(COLD_ROUNDS):
            say(f"duplicates, cold, round {turn + 1} of {COLD_ROUNDS}")
            for step in range(len(commands)):
                index = (turn + step) % len(commands)
                os.sync()
                scan.CACHES.write_text("3")
                results[index] += programs.run_in_turn(1, [commands[index]])[0]
        print(f"### Duplicates: the same, cold cache, {COLD_ROUNDS} rounds\n")
        print(comparison(commands, results))


def found(programs, folder, kept):
    done = subprocess.run([programs.tool("find_duplicates"), folder, kept], env=programs.environment, check=True,
                          stdout=subprocess.PIPE)
    return json.loads(done.stdout)


def peers(folder):
    """All asked for files of 10 MiB and more; none of them changes anything."""
    folder = str(folder)
    return [Command("`jdupes -r -X size+=:10M`", ["jdupes", "-q", "-r", "-m", "-X", "size+=:10M", folder]),
            Command("`rdfind -checksum sha256`", ["rdfind", "-checksum", "sha256", "-minsize", str(SMALLEST), "-dryrun",
                                                  "true", "-outputname", "/dev/null", folder]),
            Command("`rmlint -a sha256`", ["rmlint", "-a", "sha256", *RMLINT, folder]),
            Command("`rmlint`", ["rmlint", *RMLINT, folder]),
            Command("`fdupes -r -G 10485760`", ["fdupes", "-q", "-r", "-m", "-G", str(SMALLEST), folder])]


RMLINT = ["-T", "df", "--size", str(SMALLEST), "-o", "summary:/dev/null"]


def corpus(programs):
    """Files of which the answer is known, and what has to be read to find it."""
    folder = programs.folder / "duplicates"
    version = hashlib.sha256(open(__file__, "rb").read()).hexdigest()
    maker = Maker(folder)
    if not (folder.exists() and trees.stamp(folder).exists() and trees.stamp(folder).read_text() == version):
        trees.remove(folder)
        say("making duplicates")
        maker.writes = True
    maker.make()
    if maker.writes:
        os.sync()
        trees.stamp(folder).write_text(version)
    return folder, maker.truth


class Maker:
    """Goes the same way whether it writes or only counts."""

    def __init__(self, folder):
        self.folder = folder
        self.writes = False
        self.random = random.Random(1)
        self.pool = hashlib.shake_256(b"pool").digest(48 * MEBIBYTE)
        self.truth = {"groups": 0, "extras": 0, "bytesRead": 0}

    def make(self):
        for group in range(24):  # true duplicates; one of four has another name, which is no further file
            size = self.size(10, 48)
            copies = 3 if group % 3 == 0 else 2
            for copy in range(copies):
                self.put(f"dup{group}-{copy}.bin", size, head=f"dup{group}")
            if group % 4 == 1:
                self.put(f"linked{group}.bin", size, head=f"linked{group}")
                self.put(f"linked{group}-2.bin", 0, link=f"linked{group}.bin")
            self.truth["groups"] += 1
            self.truth["extras"] += copies - 1
            sharing = copies + (1 if group % 4 == 1 else 0)
            self.truth["bytesRead"] += sharing * SAMPLES + copies * size
        for group in range(12):  # of one size only
            size = self.size(10, 30)
            for copy in range(3):
                self.put(f"size{group}-{copy}.bin", size, head=f"s{group}{copy}")
            self.truth["bytesRead"] += 3 * SAMPLES
        for group in range(8):  # with the same ends
            size = self.size(12, 32)
            for copy in range(2):
                self.put(f"ends{group}-{copy}.bin", size, head=f"e{group}", middle=f"m{copy}")
            self.truth["bytesRead"] += 2 * SAMPLES + 2 * size
        for index in range(30):
            self.put(f"alone{index}.bin", 64 * MEBIBYTE + index * 8192, head=f"u{index}", sparse_tail=True)
        for group in range(6):  # just below what is looked at
            for copy in range(2):
                self.put(f"nine{group}-{copy}.bin", 9 * MEBIBYTE + group * 8192, head=f"n{group}")

    def size(self, smallest, largest):
        """No two groups have the same one."""
        self.used = getattr(self, "used", 0) + 1
        return self.random.randint(smallest, largest) * MEBIBYTE + self.used * 4096

    def put(self, name, size, head="", middle="", link=None, sparse_tail=False):
        place = self.folder / f"folder{self.random.randrange(8)}"
        if not self.writes:
            return
        place.mkdir(parents=True, exist_ok=True)
        if link:
            [known] = self.folder.glob(f"*/{link}")
            os.link(known, place / name)
            return
        with open(place / name, "wb") as file:
            for at in range(0, size if not sparse_tail else MEBIBYTE, len(self.pool)):
                file.write(self.pool[:min(len(self.pool), (MEBIBYTE if sparse_tail else size) - at)])
            os.pwrite(file.fileno(), head.encode(), 0)
            if middle:
                os.pwrite(file.fileno(), middle.encode(), size // 2)
            file.truncate(size)
