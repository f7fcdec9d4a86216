"""Runs commands in turn and makes medians, ratios and tables of what they took."""

import dataclasses
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys


def say(text):
    print(f"bench: {text}", file=sys.stderr, flush=True)


@dataclasses.dataclass
class Programs:
    """What is measured and what measures, and a home of their own for them: nothing here touches the person's."""
    build: pathlib.Path
    folder: pathlib.Path

    def __post_init__(self):
        self.program = str(self.build / "Lumenary")
        self.home = self.folder / "home"
        self.environment = os.environ | {"HOME": str(self.home), "LC_ALL": "C.UTF-8"} | {
            f"XDG_{name}_HOME": str(self.home / place) for name, place in
            {"DATA": ".local/share", "STATE": ".local/state", "CONFIG": ".config", "CACHE": ".cache"}.items()}

    def tool(self, name):
        return str(self.build / "bench" / name)

    def run_in_turn(self, rounds, commands):
        """Runs each command that often. A command that doesn't exit with its expected status ends everything."""
        words = []
        for command in commands:
            words += (["--"] if words else []) + list(command.arguments)
        done = subprocess.run([self.tool("spawn_times"), str(rounds), *words], env=self.environment, check=True,
                              text=True, stdout=subprocess.PIPE)
        all_runs = [[] for _ in commands]
        for line in done.stdout.splitlines():
            index, wall, processor, peak, status = map(int, line.split())
            if status != commands[index].status:
                sys.exit(f"{commands[index].name} exited with {status}: {' '.join(commands[index].arguments)[:500]}")
            all_runs[index].append(Run(wall / 1e9, processor / 1e9, peak * 1024))
        return all_runs


@dataclasses.dataclass
class Command:
    name: str
    arguments: list
    status: int = 0  # what it exits with where all is well


@dataclasses.dataclass
class Run:
    wall: float  # seconds
    processor: float  # seconds, user and system
    peak: int  # resident bytes


def ratios(runs, others):
    """Round by round, so that what slowed the machine down for a while counts on both sides."""
    return ratios_of([run.wall for run in runs], [other.wall for other in others])


def ratios_of(values, others):
    return [value / other for value, other in zip(values, others)]


def spread(values, text):
    """The median, and from where to where the values went."""
    return f"{text(statistics.median(values))} ({text(min(values))} to {text(max(values))})"


def duration(seconds):
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1e3:.1f} ms" if seconds >= 0.01 else f"{seconds * 1e3:.3f} ms"


def times(ratio):
    return f"{ratio:.2f}"


def memory(size):
    return f"{size / 2**20:.1f} MiB"


def comparison(commands, results):
    """A row for each command; the first one is held against all others."""
    return table(["", "wall", "user + system", "peak resident", f"{commands[0].name} against it"],
                 [[command.name, spread([run.wall for run in runs], duration),
                   duration(statistics.median(run.processor for run in runs)), memory(max(run.peak for run in runs)),
                   "" if index == 0 else spread(ratios(results[0], runs), times)]
                  for index, (command, runs) in enumerate(zip(commands, results))])


def table(heads, rows):
    lines = [heads, ["---"] + ["---:"] * (len(heads) - 1), *rows]
    return "\n".join("| " + " | ".join(cells) + " |" for cells in lines) + "\n"


def first_match(pattern, path):
    match = re.search(pattern, pathlib.Path(path).read_text(), re.MULTILINE)
    return match[1].strip() if match else "unknown"


def machine(programs):
    file_system = subprocess.run(["findmnt", "-no", "FSTYPE", "-T", programs.folder], text=True, stdout=subprocess.PIPE)
    compiler = first_match(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", programs.build / "CMakeCache.txt")
    version = subprocess.run([compiler, "--version"], text=True, stdout=subprocess.PIPE).stdout.splitlines()[0]
    memory_size = os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE")
    processor = first_match(r"^model name.*: (.*)$", "/proc/cpuinfo")
    system = first_match(r'^PRETTY_NAME="(.*)"$', "/etc/os-release")
    return (f"Machine: {os.cpu_count()} cores ({processor}), {memory_size / 2**30:.0f} GiB, {file_system.stdout.strip()}, "
            f"Linux {platform.release()}, {system}. Compiler: {version}. Load before: {os.getloadavg()[0]:.1f}.\n")
