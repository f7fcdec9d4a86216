#!/usr/bin/env python3
"""Checks that every include goes down: a file includes only from its own floor or a lower one, and only the code for
one operating system includes headers beyond the C++ library."""

import pathlib
import re
import sys

FLOORS = ["base", "platform", "storage", "cleanup", "cleanup/command", "monitoring", "apps", "core", "surfaces"]

SYSTEM_FOLDERS = ("platform/linux/", "base/linux/")
# The screens alone know the toolkit.
SCREENS = ("surfaces/desktop/",)
LIBRARIES = {
    "simdjson.h": ("base/JsonReader.cpp", "base/linux/"),
    "utf8proc.h": ("base/Unicode.cpp",),
    "nettle/sha2.h": ("base/Sha256.cpp",),
}

CXX_LIBRARY = set("""
algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts condition_variable
coroutine deque exception execution expected filesystem flat_map flat_set format forward_list fstream functional future
generator initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map mdspan memory
memory_resource mutex new numbers numeric optional ostream print queue random ranges ratio regex scoped_allocator
semaphore set shared_mutex source_location span spanstream sstream stack stacktrace stdexcept stdfloat stop_token
streambuf string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo
unordered_map unordered_set utility valarray variant vector version
cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef cstdint cstdio
cstdlib cstring ctime cuchar cwchar cwctype
""".split())

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def floor_of(path):
    """The floor of a path below src/: the deepest one whose folder it stands in; none where no floor fits."""
    fitting = [floor for floor in FLOORS if path.startswith(floor + "/")]
    return max(fitting, key=len, default=None)


def fault(path, kind, header):
    """What is wrong with one include of the file at `path`, or nothing."""
    if kind == '"':
        floor = floor_of(header)
        if floor is None:
            return "is not written as a path below src/"
        if FLOORS.index(floor) > FLOORS.index(floor_of(path)):
            return f"goes up from {floor_of(path)} to {floor}"
    elif re.fullmatch(r"Q[A-Za-z]+", header):
        if not path.startswith(SCREENS):
            return f"belongs into {' or '.join(SCREENS)} alone"
    elif header in LIBRARIES:
        if not path.startswith(LIBRARIES[header]):
            return f"belongs into {' or '.join(LIBRARIES[header])} alone"
    elif header not in CXX_LIBRARY and not path.startswith(SYSTEM_FOLDERS):
        return f"is a system header outside of {' and '.join(SYSTEM_FOLDERS)}"
    return None


def main(source_folder):
    source = pathlib.Path(source_folder)
    faults = []
    for file in sorted(source.rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        path = file.relative_to(source).as_posix()
        if floor_of(path) is None:
            faults.append(f"{path}: stands on no known floor ({', '.join(FLOORS)})")
            continue
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            if include := INCLUDE.match(line):
                if problem := fault(path, *include.groups()):
                    faults.append(f"{path}:{number}: {include[2]} {problem}")
    print(*faults, sep="\n", end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
