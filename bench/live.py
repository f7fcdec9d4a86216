"""What watching a machine costs: a reading of the load, of all processes, of all ports, and all three, beside the system's
own tools."""

import json
import re
import shutil
import statistics
import subprocess
import tempfile
import time

from measuring import Command, comparison, duration, say, spread, table, times

PROCESSES = 1000
ROUNDS = 25
SETTLING_SECONDS = 12
NAMES = {"metrics": "load and memory", "usage": "all processes, by app", "ports": "all ports", "again": "all ports, nothing changed",
         "pass": "a pass of everything"}


def run(programs, options):
    say("live")
    tool = programs.tool("live_times")
    with subprocess.Popen([tool, "make", str(PROCESSES)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as made:
        made.stdout.readline()
        try:
            # A process is asked for its app again while it is young.
            time.sleep(SETTLING_SECONDS)
            told = {what: measured(tool, what, ROUNDS, programs) for what in NAMES}
            print(f"### Live: {PROCESSES:,} made processes with {2 * PROCESSES:,} sockets, {ROUNDS} rounds\n")
            print(table(["", "found", "wall", "processor", "system calls"],
                        [[name, f"{told[what]['found']:,}", spread(told[what]["times"], shown),
                          shown(statistics.median(told[what]["processor"])), calls(tool, what, programs)]
                         for what, name in NAMES.items()]))
            at_two_seconds = statistics.median(told["pass"]["processor"]) / 2e9
            # With nothing shown the load is read each half minute and the ports each five minutes.
            unseen = (statistics.median(told["metrics"]["processor"]) / 30e9 +
                      statistics.median(told["ports"]["processor"]) / 300e9)
            print(f"A pass each two seconds takes {at_two_seconds:.2%} of a core; with nothing shown "
                  f"{unseen:.4%}.\n")
            beside(programs, options, told)
        finally:
            made.stdin.close()


def beside(programs, options, told):
    """Other programs start anew for each reading, so their start is in their times and ours is told as well."""
    commands = [Command("`live_times usage 1`, start and a first reading included", [programs.tool("live_times"), "usage", "1"]),
                Command("`ps -eo pid,rss,time,comm`", ["ps", "-eo", "pid,rss,time,comm"]),
                Command("`live_times ports 1`, two readings", [programs.tool("live_times"), "ports", "1"]),
                Command("`ss -tulpn`", ["ss", "-tulpn"]),
                Command("`lsof -nP -i`", ["lsof", "-nP", "-i"]),
                Command("`top -bn1`", ["top", "-bn1"])]
    results = programs.run_in_turn(options.rounds, commands)
    print(f"#### Live: the same beside other programs, {options.rounds} rounds\n")
    print(table(["", "wall", "user + system"],
                [[command.name, spread([one.wall for one in runs], duration),
                  duration(statistics.median(one.processor for one in runs))]
                 for command, runs in zip(commands, results)]))
    ports = statistics.median(told["ports"]["times"]) / 1e9
    usage = statistics.median(told["usage"]["times"]) / 1e9
    of = {command.arguments[0]: statistics.median(one.wall for one in runs) for command, runs in zip(commands, results)}
    print(f"One reading of the ports takes {times(ports / of['ss'])} of `ss -tulpn` and {times(ports / of['lsof'])} of "
          f"`lsof -nP -i`; one of the processes {times(usage / of['ps'])} of `ps` and {times(usage / of['top'])} of `top`.\n")


def measured(tool, what, rounds, programs):
    done = subprocess.run([tool, what, str(rounds)], env=programs.environment, check=True, text=True, stdout=subprocess.PIPE)
    return json.loads(done.stdout)


def calls(tool, what, programs):
    """Of one reading: the difference between few and more, so that the start and the first reading don't count."""
    if not shutil.which("strace"):
        return "not counted"
    few, more = (counted(tool, what, rounds, programs) for rounds in (1, 3))
    return f"{(more - few) / 2:,.0f}"


def counted(tool, what, rounds, programs):
    with tempfile.NamedTemporaryFile("r") as summary:
        subprocess.run(["strace", "-c", "-o", summary.name, tool, what, str(rounds)], env=programs.environment, check=True,
                       stdout=subprocess.DEVNULL)
        lines = summary.read().splitlines()
    return int(re.split(r"\s+", next(line for line in lines if line.endswith("total")).strip())[3])


def shown(nanoseconds):
    return f"{nanoseconds / 1e3:.0f} µs" if nanoseconds < 1e6 else duration(nanoseconds / 1e9)
