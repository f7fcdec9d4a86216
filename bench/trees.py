"""The trees that are measured: made where they are missing, kept for the next run, and walked slowly for the truth."""

import dataclasses
import hashlib
import os
import pathlib
import stat
import subprocess

from measuring import say

PARTS = ["Folder.h", "Home.h", "OnAllCores.h", "Random.h"]  # of the makers


def stamp(folder):
    """Stands beside a complete tree and tells which maker made it, of which arguments."""
    return folder.with_name(folder.name + ".made-by")


def tree(programs, maker, name, kind, *numbers):
    """A complete tree of that name, made anew where another version of the maker made it."""
    sources = [pathlib.Path(__file__).with_name(source).read_bytes() for source in [f"{maker}.cpp", *PARTS]]
    version = hashlib.sha256(b"".join(sources) + repr((kind, numbers)).encode()).hexdigest()
    folder = programs.folder / name
    if not (folder.exists() and stamp(folder).exists() and stamp(folder).read_text() == version):
        remove(folder)
        say(f"making {name}")
        subprocess.run([programs.tool(maker), kind, folder, *map(str, numbers)], check=True)
        stamp(folder).write_text(version)
    return folder


def remove(folder):
    """The library's own removal ends at a depth of a thousand, and takes one thread."""
    stamp(folder).unlink(missing_ok=True)
    for place in [folder, folder.with_name(folder.name + ".new")]:
        if place.exists():
            say(f"removing {place.name}")
            found = subprocess.run(["find", place, "-mindepth", "2", "-maxdepth", "2", "-print0"], check=True,
                                   stdout=subprocess.PIPE).stdout
            subprocess.run(["xargs", "-0", "-r", "-n", "20", "-P", "8", "rm", "-rf", "--"], input=found, check=True)
            subprocess.run(["rm", "-rf", "--", place], check=True)


@dataclasses.dataclass
class Contents:
    """What a slow walk finds: bytes are allocated ones, and a file with several names counts once."""
    files: int = 0  # names
    folders: int = 1
    others: int = 0  # links, pipes
    bytes_of_files: int = 0
    bytes_of_all: int = 0

    def __str__(self):
        return f"{self.files:,} files in {self.folders:,} folders"


def contents(root):
    """Holds one folder open at a time and climbs back by "..", so that no depth is too deep."""
    found = Contents()
    seen = set()

    def visit(folder):
        subfolders = []
        with os.scandir(folder) as entries:
            for entry in entries:
                status = entry.stat(follow_symlinks=False)
                if stat.S_ISDIR(status.st_mode):
                    subfolders.append(entry.name)
                    found.folders += 1
                elif stat.S_ISREG(status.st_mode):
                    found.files += 1
                else:
                    found.others += 1
                identity = (status.st_dev, status.st_ino)
                if not stat.S_ISDIR(status.st_mode) and status.st_nlink > 1:
                    if identity in seen:
                        continue
                    seen.add(identity)
                found.bytes_of_all += status.st_blocks * 512
                if stat.S_ISREG(status.st_mode):
                    found.bytes_of_files += status.st_blocks * 512
        return subfolders

    at = os.open(root, os.O_RDONLY | os.O_DIRECTORY)
    found.bytes_of_all += os.fstat(at).st_blocks * 512
    waiting = [visit(at)]
    while waiting:
        name = waiting[-1].pop() if waiting[-1] else ".."
        next_folder = os.open(name, os.O_RDONLY | os.O_DIRECTORY, dir_fd=at)
        os.close(at)
        at = next_folder
        if name == "..":
            waiting.pop()
        else:
            waiting.append(visit(at))
    os.close(at)
    return found
