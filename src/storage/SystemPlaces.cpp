#include "storage/SystemPlaces.h"

#include <array>

namespace lumenary {

using enum AppDataVerdict;

std::span<const SystemPlace> systemPlaces() {
  static constexpr std::array places{
      SystemPlace{"~/Library/Developer/CoreSimulator", "iPhone and iPad simulators",
                  "Simulated devices from Xcode. Old ones can go: Xcode › Settings › Platforms, or "
                  "`xcrun simctl delete unavailable`.",
                  caution},
      SystemPlace{"/Library/Developer/CoreSimulator", "Simulator system images",
                  "iOS versions downloaded for the simulator. Remove old ones in Xcode › Settings › Platforms.",
                  caution},
      SystemPlace{"~/Library/Developer/Xcode/DerivedData", "Xcode build files",
                  "Rebuilt the next time you build. Safe to remove.", safe},
      SystemPlace{"~/Library/Developer/Xcode/iOS DeviceSupport", "Device support files",
                  "Copied from each iPhone you connected to Xcode. Copied again when needed.", safe},
      SystemPlace{"~/Library/Developer/Xcode/Archives", "Xcode archives",
                  "Builds you archived for release. Keep the ones you may need to debug crash reports.", caution},
      SystemPlace{"~/Library/Application Support/MobileSync/Backup", "iPhone and iPad backups",
                  "Backups made in Finder. Manage them in Finder › your device › Manage Backups.", caution},
      SystemPlace{"/System/Library/AssetsV2", "Downloaded system assets",
                  "Apple Intelligence models, voices, fonts and dictionaries macOS downloaded. macOS manages these.",
                  keep},
      SystemPlace{"/private/var/folders", "Temporary files",
                  "Scratch space apps use while running. macOS clears it on restart.", keep},
      SystemPlace{"/private/var/db", "System databases",
                  "Spotlight index, update records and other system bookkeeping.", keep},
      SystemPlace{"/Library/Caches", "Shared caches", "Caches used by every account on this Mac. Rebuilt when needed.",
                  caution},
  };
  return places;
}

std::span<const SystemPlace> linuxSystemPlaces() {
  static constexpr std::array places{
      SystemPlace{"/usr", "The system and its programs",
                  "What your distribution installed. Remove programs you don't need with its package manager.", keep},
      SystemPlace{"/opt", "Programs from elsewhere",
                  "Programs that didn't come from your distribution. Remove them the way they were installed.", keep},
      SystemPlace{"/boot", "Kernels and startup files",
                  "What the computer starts with; Linux {release} is running. Old kernels go with "
                  "`sudo apt autoremove --purge` or your package manager.",
                  keep},
      SystemPlace{"/usr/lib/modules", "Kernel modules",
                  "Drivers, for each kernel that is installed; Linux {release} is running. They go with their kernel.",
                  keep},
      SystemPlace{"/var/log/journal", "System journal",
                  "Messages of the system and its services. Keep the newest with "
                  "`sudo journalctl --vacuum-size=500M`.",
                  caution},
      SystemPlace{"/var/log", "System logs",
                  "Logs of services, which clear away old ones themselves. Services need the folders.", keep},
      SystemPlace{"/var/lib/systemd/coredump", "Crash dumps",
                  "The memory of programs that crashed, kept to look into it; `coredumpctl list` names them. Old ones "
                  "go by themselves, or at once with `sudo systemd-tmpfiles --clean`.",
                  caution},
      SystemPlace{"/var/crash", "Crash reports",
                  "Reports of programs that crashed, for whoever mends them. `sudo rm /var/crash/*.crash` removes "
                  "them.",
                  caution},
      SystemPlace{"/var/cache/apt/archives", "Downloaded packages",
                  "Packages that are installed already. `sudo apt-get clean` removes them.", safe},
      SystemPlace{"/var/cache/dnf", "Downloaded packages",
                  "Packages and lists of packages. `sudo dnf clean all` removes them.", safe},
      SystemPlace{"/var/cache/libdnf5", "Downloaded packages",
                  "Packages and lists of packages. `sudo dnf clean all` removes them.", safe},
      SystemPlace{"/var/cache/PackageKit", "Downloaded packages",
                  "Packages that the software center fetched. `sudo pkcon refresh force` makes its lists anew.",
                  caution},
      SystemPlace{"/var/cache/pacman/pkg", "Downloaded packages",
                  "Packages of every version that was installed. `sudo paccache -rk2` keeps the last two of each.",
                  caution},
      SystemPlace{"/var/lib/snapd/snaps", "Snap apps",
                  "Snap apps, each with an earlier revision or two. `snap list --all` names them, "
                  "`sudo snap remove NAME --revision=NUMBER` removes one.",
                  keep},
      SystemPlace{"/var/lib/snapd/snapshots", "Saved data of snap apps",
                  "What removed snap apps had kept. `snap saved` names them, `sudo snap forget NUMBER` removes one.",
                  caution},
      SystemPlace{"/var/lib/flatpak", "Flatpak apps",
                  "Flatpak apps for all users and what they share. `flatpak uninstall --unused` removes what no app "
                  "needs.",
                  keep},
      SystemPlace{"/var/lib/docker", "Docker images, containers and volumes",
                  "Volumes are data. `docker system df` tells what takes the space, `docker system prune` removes what "
                  "nothing uses.",
                  keep},
      SystemPlace{"/var/lib/containerd", "Container images",
                  "Images and containers of containerd. Remove them with the tool that runs them.", keep},
      SystemPlace{"/var/lib/containers", "Podman images, containers and volumes",
                  "Volumes are data. `sudo podman system df` tells what takes the space, `sudo podman system prune` "
                  "removes what nothing uses.",
                  keep},
      SystemPlace{"/var/lib/libvirt/images", "Virtual machines",
                  "Disks of virtual machines. Remove machines you don't need in Virtual Machine Manager.", keep},
      SystemPlace{"/var/lib/postgresql", "PostgreSQL databases", "Data. Drop databases you don't need with `dropdb`.",
                  keep},
      SystemPlace{"/var/lib/mysql", "MySQL databases", "Data. Drop databases you don't need with `mysqladmin drop`.",
                  keep},
      SystemPlace{"/var/lib/mongodb", "MongoDB databases", "Data. Drop databases you don't need in `mongosh`.", keep},
      SystemPlace{"/var/lib/redis", "Redis database", "Data of services on this computer.", keep},
      SystemPlace{"/timeshift", "Timeshift snapshots",
                  "Earlier states of the system. `sudo timeshift --list` names them, "
                  "`sudo timeshift --delete --snapshot NAME` removes one.",
                  caution},
      SystemPlace{"/.snapshots", "Snapper snapshots",
                  "Earlier states of the system; what they share counts in each. `sudo snapper list` names them, "
                  "`sudo snapper delete NUMBER` removes one.",
                  caution},
      SystemPlace{"/tmp", "Temporary files", "Scratch space of running programs. The system clears it when it starts.",
                  keep},
      SystemPlace{"/var/tmp", "Temporary files that last",
                  "Scratch space that outlives a restart. Some systems clear away what is older than a month.", keep},
      SystemPlace{"/nix/store", "Nix packages",
                  "Packages of every generation. `nix-collect-garbage --delete-old` keeps the current one.", keep},
  };
  return places;
}

}  // namespace lumenary
