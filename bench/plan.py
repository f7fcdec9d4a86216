"""What judging a full-size scan takes: the plan without a disk, and one question to the gate and to the catalog."""

import json
import re
import shutil
import statistics
import subprocess

from measuring import duration, say, table

ROUNDS = 25
NAMES = {"plan": "the plan", "lookFirst": "what to look at first", "gate": "`canMoveToTrash`, a file",
         "catalog": "`match`, a folder"}


def run(programs, _options):
    say("plan")
    tool = programs.tool("plan_times")
    done = subprocess.run([tool, str(ROUNDS)], env=programs.environment, check=True, text=True, stdout=subprocess.PIPE)
    told = [json.loads(line) for line in done.stdout.splitlines()]
    print(f"### Plan: a scan of 20,000 files and 30,000 folders, {ROUNDS} rounds\n")
    print(table(["", "answers", "median", "longest", "instructions", "disk look-ups"],
                [[NAMES[one["what"]], f"{one['answers']:,}", shown(statistics.median(one["times"])),
                  shown(max(one["times"])), instructions(tool, one),
                  f"{one['pathsAsked']:,}, each {one['mostOften']} time" if one["pathsAsked"] else "none"]
                 for one in told]))


def shown(nanoseconds):
    return f"{nanoseconds:.0f} ns" if nanoseconds < 10_000 else duration(nanoseconds / 1e9)


def instructions(tool, one):
    """Of one question: the difference between few and more rounds, so that making the scan doesn't count."""
    if not shutil.which("valgrind"):
        return "not counted"
    few, more = (counted([tool, "only", one["what"], str(rounds)]) for rounds in (1, 3))
    return f"{(more - few) / 2 / one['count']:,.0f}"


def counted(command):
    done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command], check=True, text=True,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    return int(re.search(r"Collected : (\d+)", done.stderr)[1])
