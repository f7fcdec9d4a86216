"""What an inventory of 200 apps and their data takes, without and with the sizes of a scan."""

import json
import re
import shutil
import statistics
import subprocess

from measuring import duration, say, table

ROUNDS = 25
NAMES = {"without": "nothing known", "with": "sizes known from a scan"}


def run(programs, _options):
    say("apps")
    tool = programs.tool("app_inventory")
    home = programs.folder / "apps-home"
    shutil.rmtree(home, ignore_errors=True)
    try:
        done = subprocess.run([tool, home, str(ROUNDS)], env=programs.environment, check=True, text=True,
                              stdout=subprocess.PIPE)
        told = [json.loads(line) for line in done.stdout.splitlines()]
        around = system_calls(programs, tool, home, "none")
        rows = [[NAMES[one["what"]], f"{one['apps']:,}", f"{one['items']:,}",
                 duration(statistics.median(one["times"]) / 1e3), duration(max(one["times"]) / 1e3),
                 f"{one['folders']:,}", f"{one['again']:,}", f"{one['calls']:,}",
                 "not counted" if around is None
                 else f"{system_calls(programs, tool, home, one['what']) - around:,}"] for one in told]
    finally:
        shutil.rmtree(home, ignore_errors=True)
    print(f"### Apps: 200 apps with what they keep, warm cache, {ROUNDS} rounds\n")
    print(table(["", "apps", "items", "median", "longest", "folders listed", "more than once", "calls to the reader",
                 "system calls"], rows))


def system_calls(programs, tool, home, what):
    """Of a whole process; none where nothing is here that counts them."""
    if not shutil.which("strace"):
        return None
    done = subprocess.run(["strace", "-f", "-c", "-U", "calls,name", tool, home, "only", what], env=programs.environment,
                          check=True, text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    return int(re.search(r"^\s*(\d+)\s+total$", done.stderr, re.MULTILINE)[1])
