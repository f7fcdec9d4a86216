"""What the program says of two made homes: one of projects and pictures, one with the places that Linux has."""

import hashlib
import os
import subprocess

import trees
from measuring import say

KIB, MIB = 1 << 10, 1 << 20

# Below the home, with the size of each file; a folder that a project or a person would have has what marks it.
FILES = {
    ".cache/mozilla/firefox/p.default/cache2/entries/{}": [700 * KIB] * 400,
    ".cache/google-chrome/Default/Cache/Cache_Data/{}": [900 * KIB] * 500,
    ".cache/thumbnails/large/{}.png": [40 * KIB] * 1500,
    ".cache/mesa_shader_cache_db/{}": [3 * MIB] * 20,
    ".cache/pip/http-v2/{}": [5 * MIB] * 30,
    ".cache/go-build/{}": [200 * KIB] * 900,
    ".cache/pypoetry/virtualenvs/app-py3/lib/{}": [4 * MIB] * 50,
    ".cache/pypoetry/artifacts/{}": [4 * MIB] * 20,
    ".cache/huggingface/hub/models--org--model/blobs/{}": [400 * MIB] * 3,
    ".cache/JetBrains/IntelliJIdea2025.1/index/{}": [30 * MIB] * 12,
    ".cache/rclone/vfs/remote/{}": [80 * MIB] * 2,
    ".cache/tracker3/files/{}": [60 * MIB],
    ".cache/spotify/Data/{}": [3 * MIB] * 60,
    ".cache/small-tool/{}": [200 * KIB] * 3,
    ".mozilla/firefox/p.default/{}.sqlite": [60 * MIB] * 3,
    ".thunderbird/p.default/ImapMail/{}": [300 * MIB] * 2,
    ".config/Code/CachedData/{}": [6 * MIB] * 20,
    ".config/Slack/Cache/Cache_Data/{}": [2 * MIB] * 60,
    ".config/Slack/IndexedDB/{}": [20 * MIB] * 3,
    ".cargo/registry/cache/index/{}.crate": [900 * KIB] * 200,
    ".rustup/toolchains/stable/lib/{}": [200 * MIB] * 3,
    ".gradle/caches/modules-2/{}.jar": [3 * MIB] * 80,
    ".m2/repository/org/{}.jar": [2 * MIB] * 60,
    ".npm/_cacache/content-v2/{}": [600 * KIB] * 300,
    ".local/share/Steam/steamapps/common/Game/{}": [500 * MIB] * 4,
    ".local/share/Steam/steamapps/shadercache/570/{}": [60 * MIB] * 3,
    ".local/share/Steam/steamapps/compatdata/570/pfx/{}": [90 * MIB] * 3,
    ".local/share/containers/storage/overlay/{}": [300 * MIB] * 3,
    ".local/share/gnome-boxes/images/{}": [900 * MIB],
    ".local/share/Trash/files/{}": [50 * MIB] * 2,
    ".local/share/flatpak/repo/objects/{}": [30 * MIB] * 20,
    ".local/share/pnpm/store/v3/{}": [1 * MIB] * 120,
    ".local/share/some-app/{}": [25 * MIB] * 2,
    ".var/app/org.gimp.GIMP/cache/{}": [30 * MIB] * 3,
    ".var/app/org.gone.App/data/{}": [80 * MIB],
    ".ollama/models/blobs/sha256-{}": [600 * MIB] * 2,
    "snap/firefox/common/.cache/{}": [40 * MIB] * 2,
    "Nextcloud/{}.pdf": [15 * MIB] * 10,
    "VirtualBox VMs/box/{}.vdi": [700 * MIB],
    "Pictures/2024/IMG_{}.JPG": [6 * MIB] * 100,
    "Videos/clip {}.mp4": [120 * MIB] * 6,
    "Music/{}.flac": [30 * MIB] * 12,
    "Documents/{}.odt": [400 * KIB] * 80,
    "Downloads/distribution-{}.iso": [600 * MIB],
    "Downloads/tool-{}.deb": [90 * MIB],
    "code/app/node_modules/pkg/{}.js": [300 * KIB] * 700,
    "code/app/{}/package.json": [4 * KIB],
    "code/engine/target/debug/deps/{}.rlib": [8 * MIB] * 40,
    "code/engine/.git/objects/{}": [30 * MIB] * 4,
}
MARKERS = ["code/app/package.json", "code/engine/Cargo.toml"]
COPIES = [("Videos/clip 0.mp4", "Downloads/clip 0 (1).mp4")]
OLD = 1_700_000_000


def run(programs, _options):
    projects = trees.tree(programs, "make_disk_tree", "home-marked", "home")
    mark(projects)
    for title, folder in [("A home of projects and pictures", projects),
                          ("A home with the places that Linux has", linux_home(programs))]:
        say(folder.name)
        done = subprocess.run([programs.tool("explain_home"), folder], env=programs.environment, check=True, text=True,
                              stdout=subprocess.PIPE)
        print(f"### {title}\n\n{done.stdout}")


def mark(home):
    """What a project has beside what was made for it, and what a desktop writes down of a person's folders."""
    for crate in home.glob("crate-*"):
        (crate / "Cargo.toml").touch()
    for app in home.glob("webapp-*"):
        (app / "package.json").touch()
    (home / ".config").mkdir(exist_ok=True)
    names = [f'XDG_{key}_DIR="$HOME/{name}"\n' for key, name in
             {"VIDEOS": "Vidéos", "PICTURES": "Photos", "DOCUMENTS": "Documents"}.items() if (home / name).exists()]
    (home / ".config/user-dirs.dirs").write_text("".join(names))


def linux_home(programs):
    folder = programs.folder / "linux-home"
    version = hashlib.sha256(open(__file__, "rb").read()).hexdigest()
    if folder.exists() and trees.stamp(folder).exists() and trees.stamp(folder).read_text() == version:
        return folder
    trees.remove(folder)
    say("making linux-home")
    for pattern, sizes in FILES.items():
        for index, size in enumerate(sizes):
            make(folder / pattern.format(index), size)
    for marker in MARKERS:
        make(folder / marker, 4 * KIB)
    for original, copy in COPIES:
        (folder / copy).write_bytes((folder / original).read_bytes())
        os.utime(folder / copy, (OLD, OLD))
    trees.stamp(folder).write_text(version)
    return folder


def make(path, size):
    """The blocks are given to the file without being written, but for the first bytes, which no other file has."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "wb") as file:
        os.posix_fallocate(file.fileno(), 0, size)
        file.write(str(path).encode()[:size])
    os.utime(path, (OLD, OLD))
