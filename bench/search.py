"""What a search takes: the building of what it looks through, and each query that a person types on the way to a word."""

import json
import statistics
import subprocess

from measuring import duration, say, table

ROUNDS = 99


def run(programs, _options):
    say("search")
    done = subprocess.run([programs.tool("search_times"), str(ROUNDS)], env=programs.environment, check=True, text=True,
                          stdout=subprocess.PIPE)
    told = [json.loads(line) for line in done.stdout.splitlines()]
    builds = [one for one in told if one["kind"] == "build"]
    queries = [one for one in told if one["kind"] != "build"]
    print(f"### Search: building, {len(builds[0]['times'])} rounds\n")
    print(table(["", "holds", "median", "longest"], [row(one, one["what"]) for one in builds]))
    print(f"### Search: 50,000 nodes, {ROUNDS} rounds a query\n")
    print(table(["query", "found", "median", "longest"], [row(one, shown(one)) for one in queries]))
    medians = [statistics.median(one["times"]) for one in queries]
    print(f"Of {len(queries)} queries the median one takes {duration(statistics.median(medians) / 1e9)}, the slowest one "
          f"{duration(max(medians) / 1e9)}, and the longest of all runs took "
          f"{duration(max(max(one['times']) for one in queries) / 1e9)}.\n")


def row(one, head):
    return [head, f"{one['found']:,}", duration(statistics.median(one["times"]) / 1e9), duration(max(one["times"]) / 1e9)]


def shown(one):
    return f"`{one['what']}`" if one["kind"] in ("keystroke", "query") else one["kind"]
