"""What storing a scan takes: its JSON beside that of two libraries, and the store's files in a folder."""

import json
import pathlib
import shutil
import statistics
import subprocess

from measuring import duration, ratios_of, say, spread, table, times

DRIVERS = {"store_own": "the program", "store_nlohmann": "nlohmann, `json`", "store_qt": "Qt, `QJsonDocument`"}
FORMS = ["fast", "readable"]
ROUNDS_OF_A_RUN = 3
FOLDER_ROUNDS = 30


def run(programs, options):
    folder = programs.folder / "store"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    subprocess.run([programs.tool("make_scan_files"), folder], check=True)
    drivers = {name: label for name, label in DRIVERS.items() if pathlib.Path(programs.tool(name)).exists()}
    for name in DRIVERS.keys() - drivers.keys():
        say(f"{name} is left out: its library wasn't here when the benches were configured")
    for form in FORMS:
        json_of_a_scan(programs, folder / f"{form}.json", form, drivers, options.rounds)
    files_of_a_scan(programs, folder / "support")


def timed(programs, *arguments):
    """For each thing that the driver times, its seconds round by round."""
    done = subprocess.run([programs.tool(arguments[0]), *map(str, arguments[1:])], env=programs.environment, check=True,
                          stdout=subprocess.PIPE)
    return {what: [time / 1e9 for time in nanoseconds] for what, nanoseconds in json.loads(done.stdout).items()}


def json_of_a_scan(programs, text, form, drivers, rounds):
    say(f"store, {form} form")
    taken = {name: {"decode": [], "encode": [], "copy": []} for name in drivers}
    for _ in range(rounds):
        for name in drivers:
            for what, seconds in timed(programs, name, text, form, ROUNDS_OF_A_RUN).items():
                taken[name][what] += seconds
    own = taken["store_own"]
    print(f"### Store: the {form} form, {text.stat().st_size / 1e6:.1f} MB, 20,000 entries and 30,000 folders, "
          f"{rounds * ROUNDS_OF_A_RUN} rounds\n")
    rows = [[label, *[spread(taken[name][what], duration) for what in ("decode", "encode")],
             *["" if name == "store_own" else spread(ratios_of(taken[name][what], own[what]), times)
               for what in ("decode", "encode")]] for name, label in drivers.items()]
    rows.append(["copying the structs", duration(statistics.median(own["copy"])), "", "", ""])
    print(table(["", "decode", "encode", "decode, in the program's", "encode, in the program's"], rows))


def files_of_a_scan(programs, support):
    say("store, files")
    seconds = timed(programs, "store_folder", support, FOLDER_ROUNDS)
    print(f"### Store: a full-size scan in a folder, {FOLDER_ROUNDS} rounds\n")
    print(table(["", "median", "longest"],
                [[what, duration(statistics.median(rounds)), duration(max(rounds))] for what, rounds in seconds.items()]))
