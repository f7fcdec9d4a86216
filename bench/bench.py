#!/usr/bin/env python3
"""Measures the program: bench.py [NAME] [OPTIONS]. Prints Markdown; what it is doing goes to stderr."""

import argparse
import fcntl
import os
import pathlib
import sys

sys.dont_write_bytecode = True

import apps
import cleanup
import desktop
import duplicates
import gate
import home
import live
import machine
import measuring
import model
import plan
import scan
import search
import store

BENCHES = {"cleanup": cleanup.run, "scan": scan.run, "store": store.run, "search": search.run,
           "duplicates": duplicates.run, "plan": plan.run, "apps": apps.run, "live": live.run,
           "model": model.run, "desktop": desktop.run}
CHECKS = {"gate": gate.run, "home": home.run, "machine": machine.run}  # not a part of everything

TOP = pathlib.Path(__file__).resolve().parent.parent


def bench_folder():
    """Where trees are kept between runs. They are some gigabytes, and may be deleted at any time."""
    cache = os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache"
    return pathlib.Path(os.environ.get("LUMENARY_BENCH_DIR") or pathlib.Path(cache) / "lumenary-bench").resolve()


def main():
    options = argparse.ArgumentParser(description="Measures the program and prints Markdown.")
    options.add_argument("name", nargs="?", help=f"what to measure: {', '.join(BENCHES | CHECKS)}; everything unless told")
    options.add_argument("--rounds", type=int, default=9, help="how often each command is run (9 unless told)")
    options.add_argument("--peer", action="store_true", help="cleanup: install another program with npm, too")
    options.add_argument("--large", action="store_true", help="scan: a tree of 2,000,000 files, too")
    options.add_argument("--three-workers", action="store_true", help="scan: with three workers, too")
    options.add_argument("--cold", action="store_true", help="scan, duplicates: with emptied caches, too; root alone can")
    options.add_argument("--ten-million", action="store_true", help="scan: once a tree of 10,000,000 files, too")
    options.add_argument("--build", type=pathlib.Path, default=TOP / "build/release", help="a folder of a release build")
    wanted = options.parse_args()
    if wanted.name and wanted.name not in BENCHES | CHECKS:
        sys.exit(f"There is no bench {wanted.name}. There are: {', '.join(BENCHES | CHECKS)}")

    programs = measuring.Programs(wanted.build.resolve(), bench_folder())
    programs.folder.mkdir(parents=True, exist_ok=True)
    lock = open(programs.folder / "lock", "w")  # held until the process ends
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        sys.exit("Another run is measuring with these trees.")
    print(measuring.machine(programs), flush=True)
    for name, bench in (BENCHES | CHECKS).items():
        if wanted.name == name or wanted.name is None and name in BENCHES:
            bench(programs, wanted)


if __name__ == "__main__":
    main()
