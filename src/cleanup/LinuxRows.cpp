#include <vector>

#include "cleanup/CatalogRows.h"
#include "cleanup/LinuxCatalog.h"

namespace lumenary {
namespace {

using enum CleanupCatalog::Verdict;
using Rule = CleanupCatalog::Rule;

Rule profile(const std::string& name) {
  return {name + " profile",
          name,
          "Your logins, bookmarks, history and settings in " + name + ".",
          keep,
          "All of that is lost.",
          "Remove what you don't need in " + name + " itself."};
}

Rule shaderCache(const std::string& maker) {
  return {"Shader cache", maker, "Graphics programs prepared for your graphics card.", rebuildable,
          "Prepared again as you play or work; that may stutter at first."};
}

Rule buildCache(std::string title, std::string madeBy, std::string ownPurge) {
  return {std::move(title),
          std::move(madeBy),
          "Results of earlier builds, kept so the next one is faster.",
          rebuildable,
          "The next build takes longer, once.",
          std::move(ownPurge)};
}

Rule downloads(Rule rule, std::string ownPurge) {
  rule.betterWay = std::move(ownPurge);
  return rule;
}

Rule virtualMachines(const std::string& manager) {
  return {"Virtual machines",
          manager,
          "The disks of your virtual machines, with all that is in them.",
          keep,
          "Those machines and everything in them are lost.",
          "Delete machines you no longer need in " + manager + "."};
}

Rule containers(const std::string& name, const std::string& tool) {
  return {name + " data",
          name,
          "Images, containers and volumes. Volumes hold data, often databases.",
          keep,
          "Containers break, and the data in volumes is lost.",
          "Run " + tool + " system df to see what is used, then " + tool + " system prune."};
}

Rule syncFolder(const std::string& name) {
  return {name + " folder",
          name,
          "Files that " + name + " keeps the same here and in your account.",
          keep,
          "What goes here goes from your account and your other devices too.",
          "Leave folders you don't need here out of syncing, in the settings of " + name + "."};
}

/// The index of an IDE, in which it also keeps the Local History.
Rule localHistory(const std::string& maker) {
  return {maker + " index and Local History",
          maker,
          "Indexes of your projects, and the Local History.",
          review,
          "Local History, an undo for lost changes, is gone; indexes are made again.",
          "File → Invalidate Caches in the IDE lets you keep the Local History."};
}

Rule searchIndex(std::string betterWay) {
  return {"Search index",
          "Desktop search",
          "What your desktop knows of your files, so that search is fast.",
          keep,
          "Search finds nothing until everything was read again, which can take hours.",
          std::move(betterWay)};
}

Rule mail(const std::string& name) {
  return {name + " mail",
          name,
          "Your mail, calendars and contacts.",
          keep,
          "What isn't on a server is lost.",
          "Delete mail in " + name + " itself."};
}

Rule sessionState(std::string title, std::string madeBy, std::string what, std::string ifRemoved) {
  return {std::move(title), std::move(madeBy), std::move(what), keep, std::move(ifRemoved)};
}

Rule models(const std::string& title, const std::string& madeBy, std::string betterWay) {
  return {title,
          madeBy,
          "AI models downloaded to this computer; each is used as a whole.",
          review,
          "They download again the next time something uses them; they're often several GB.",
          std::move(betterWay)};
}

Rule confinedTrash() {
  return {"Trash of a confined app",
          "You",
          "Things you deleted inside an app that has a Trash of its own.",
          review,
          "They are gone for good.",
          "Empty the Trash in the app that they were deleted in."};
}

Rule electronFolder(const std::string& name) {
  return name.empty() ? rules::appCache(name) : rules::electronCache(name);
}

/// An app that has a name is installed: its data is in use.
Rule flatpakData(const std::string& name) {
  if (!name.empty()) {
    return {name + " data",
            name,
            "Settings, logins and files that " + name + " keeps.",
            keep,
            name + " starts as new; what it kept is lost.",
            "Clear what you don't need in " + name + " itself."};
  }
  return {"Flatpak app data",
          "A Flatpak app",
          "Settings, logins and files that an app from Flatpak keeps.",
          review,
          "What the app kept is lost; if it is still installed, it starts as new.",
          "Run flatpak uninstall --delete-data to remove the data of apps that are gone."};
}

}  // namespace

std::span<const LinuxRow> linuxRows() {
  using namespace rules;
  static const std::vector<LinuxRow> rows = {
      // What is in use by the session, or exists nowhere else, although it lies among caches.
      {"~/.cache/rclone",
       Rule{"rclone uploads", "rclone", "Files waiting to be uploaded, and copies of what was read.", keep,
            "What wasn't uploaded yet is lost.", "Stop the rclone mount once it has finished its uploads."}},
      {"~/.cache/obexd", sessionState("Bluetooth transfers", "Bluetooth", "Files being received over Bluetooth.",
                                      "A file that is on its way is lost.")},
      {"~/.cache/ibus", sessionState("Input method state", "IBus", "What typing needs while you are signed in.",
                                     "Typing may stop working until you sign in again.")},
      {"~/.cache/dconf", sessionState("Settings state", "dconf", "How running programs learn of changed settings.",
                                      "Programs may miss changed settings until you sign in again.")},
      {"~/.cache/keyring*", sessionState("Keyring connection", "GNOME Keyring", "How programs reach your passwords.",
                                         "Programs can't reach your passwords until you sign in again.")},
      {"~/.cache/at-spi*", sessionState("Accessibility connection", "Your desktop", "How assistive tools reach apps.",
                                        "Assistive tools may stop working until you sign in again.")},
      {"~/{.cache,.local/share}/tracker*", searchIndex("tracker3 reset --filesystem makes a new index.")},
      {"~/.local/share/baloo", searchIndex("balooctl purge makes a new index.")},
      {"~/.local/share/akonadi", mail("KDE PIM")},
      {"~/.local/share/evolution", mail("Evolution")},
      {"~/.cache/evolution",
       Rule{"Evolution mail copies", "Evolution", "Copies of mail from your servers, and what waits to be sent.",
            review, "Mail downloads again; what wasn't sent yet may be lost.", "Send what waits in the Outbox first."}},

      // Browsers and mail.
      {"~/.cache/{google-chrome,google-chrome-beta,google-chrome-unstable}", browser("Chrome", "Google Chrome")},
      {"~/.cache/chromium", browser("Chromium", "Chromium")},
      {"~/.cache/BraveSoftware", browser("Brave", "Brave")},
      {"~/.cache/microsoft-edge", browser("Edge", "Microsoft Edge")},
      {"~/.cache/vivaldi", browser("Vivaldi", "Vivaldi")},
      {"~/.cache/opera", browser("Opera", "Opera")},
      {"~/.cache/mozilla", browser("Firefox", "Firefox")},
      {"~/snap/firefox/common/.cache", browser("Firefox", "Firefox")},
      {"~/snap/chromium/common/.cache", browser("Chromium", "Chromium")},
      {"~/.cache/thunderbird", electronCache("Thunderbird")},
      {"~/{.mozilla,snap/firefox/common/.mozilla}", profile("Firefox")},
      {"~/{.thunderbird,snap/thunderbird/common/.thunderbird}", profile("Thunderbird")},
      {"~/.config/{google-chrome,google-chrome-beta,google-chrome-unstable}", profile("Chrome")},
      {"~/{.config/chromium,snap/chromium/common/chromium}", profile("Chromium")},
      {"~/.config/BraveSoftware", profile("Brave")},
      {"~/.config/microsoft-edge", profile("Edge")},
      {"~/.config/vivaldi", profile("Vivaldi")},
      {"~/.config/opera", profile("Opera")},

      // Apps built on a browser. These names of folders only: what stands beside them is data.
      {"~/.config/{Code,Code - OSS}/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronCache("VS Code")},
      {"~/.config/Cursor/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronCache("Cursor")},
      {"~/.config/Windsurf/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronCache("Windsurf")},
      {"~/.config/Antigravity/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronCache("Antigravity")},
      {"~/.config/{teams,teams-for-linux}/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronCache("Teams")},
      {"~/.config/*/{Cache,Code Cache,GPUCache,DawnCache,CachedData}", electronFolder},

      // Previews and games.
      {"~/{.cache/thumbnails,.thumbnails}",
       Rule{"Thumbnails", "Your desktop", "Small previews of your pictures, videos and documents.", rebuildable,
            "Made again as you look at folders."}},
      {"~/.cache/{mesa_shader_cache*,radv_builtin_shaders*}", shaderCache("The graphics driver")},
      {"~/{.cache/nvidia,.nv/ComputeCache,.nv/GLCache}", shaderCache("The NVIDIA driver")},
      {"**/steamapps/shadercache", shaderCache("Steam")},
      {"**/steamapps/compatdata",
       Rule{"Windows game data", "Steam", "The small Windows that each Windows game runs in. It may hold saved games.",
            review, "Saved games that aren't in the Steam Cloud are lost.",
            "Uninstall games you no longer play in Steam."}},
      {"**/steamapps/common", Rule{"Steam games", "Steam", "The games you installed.", keep,
                                   "Steam no longer finds those games.", "Uninstall games in Steam itself."}},
      {"~/{.steam,.local/share/Steam}",
       Rule{"Steam", "Steam", "Steam itself, with your games, saved games and settings.", keep,
            "Steam and its games stop working; saved games may be lost.", "Uninstall games in Steam itself."}},

      // Where apps come from.
      {"~/{snap/*/*/.local/share/Trash,.var/app/*/data/Trash}", confinedTrash()},
      {"~/.var/app/{com.jetbrains.*,com.google.AndroidStudio}/cache", localHistory("JetBrains")},
      {"~/snap/"
       "{android-studio,clion,datagrip,goland,intellij-idea-*,phpstorm,pycharm-*,rider,rubymine,webstorm}/common/"
       ".cache",
       localHistory("JetBrains")},
      {"~/.var/app/org.rclone.*/cache",
       Rule{"rclone uploads", "rclone", "Files waiting to be uploaded, and copies of what was read.", keep,
            "What wasn't uploaded yet is lost.", "Stop the rclone mount once it has finished its uploads."}},
      {"~/.var/app/org.gnome.Evolution/cache", mail("Evolution")},
      {"~/.var/app/*/cache", appCache},
      {"~/.var/app/*", flatpakData},
      {"~/snap/*/{common,current}/.cache", appCache},
      {"{~/.local/share/flatpak,/var/lib/flatpak}",
       Rule{"Flatpak apps", "Flatpak", "The apps you installed from Flatpak, and what they run on.", keep,
            "Those apps stop working.", "Run flatpak uninstall --unused to remove what no app needs."}},
      {"/var/lib/snapd/snaps",
       Rule{"Snap apps", "Snap", "Installed snaps, with an older version of each.", keep, "Those apps stop working.",
            "Run snap list --all; snap remove NAME --revision=N removes an old version."}},
      {"/var/lib/snapd/snapshots",
       Rule{"Saved data of snaps", "Snap", "Copies of the data of snaps, made when they were removed.", review,
            "You can't get that data back.", "Run snap saved, then snap forget N."}},
      {"~/.local/share/Trash",
       Rule{"Trash", "You", "Things you already deleted. They still use space.", keep,
            "Empty the Trash to get the space back.", "Use the Empty Trash button here, or your file manager."}},

      // What development tools download and make.
      {"~/.cache/go-build", buildCache("Go build cache", "Go", "go clean -cache does the same.")},
      {"~/{.cache/ccache,.ccache/0,.ccache/1,.ccache/2,.ccache/3,.ccache/4,.ccache/5,.ccache/6,.ccache/7,.ccache/"
       "8,.ccache/9,.ccache/a,.ccache/b,.ccache/c,.ccache/d,.ccache/e,.ccache/f}",
       buildCache("C and C++ build cache", "ccache", "ccache --clear does the same.")},
      {"~/.cache/sccache", buildCache("Compiler cache", "sccache", "Stop its server first: sccache --stop-server.")},
      {"~/.cache/bazel", buildCache("Bazel cache", "Bazel", "bazel clean --expunge does it for one project.")},
      {"~/.cache/zig", buildCache("Zig cache", "Zig", "Close running builds first.")},
      {"~/.cache/pre-commit", downloads(packageCache("pre-commit cache", "pre-commit", "Downloaded checking tools."),
                                        "pre-commit clean does the same.")},
      {"~/.cache/yarn", downloads(packageCache("Yarn cache", "Yarn", "Downloaded JavaScript packages."),
                                  "yarn cache clean does the same.")},
      {"~/.nuget/packages", downloads(packageCache("NuGet packages", "NuGet", "Downloaded .NET packages."),
                                      "dotnet nuget locals all --clear does the same.")},
      {"~/.local/share/pnpm/store",
       Rule{"pnpm store", "pnpm", "JavaScript packages that projects share by links.", review,
            "Little space comes back, as projects still hold the same files.", "Run pnpm store prune."}},
      {"~/.cache/pypoetry/virtualenvs",
       Rule{"Poetry environments", "Python Poetry", "The Python environments of your projects.", review,
            "Those projects don't run until you install their packages again.",
            "Run poetry env remove in a project you've finished."}},
      {"~/.cache/pypoetry/{cache,artifacts}",
       downloads(packageCache("Poetry cache", "Python Poetry", "Downloaded Python packages."),
                 "poetry cache clear --all . does the same.")},
      {"~/.rustup/toolchains",
       Rule{"Rust toolchains", "rustup", "The Rust compilers you installed.", review,
            "Rust projects don't build until you install one again.", "Run rustup toolchain uninstall NAME."}},
      {"~/.m2/repository",
       Rule{"Maven repository", "Maven", "Downloaded Java libraries, and what you installed there yourself.", review,
            "Libraries download again; what you built and installed locally must be built again.",
            "Run mvn dependency:purge-local-repository in a project."}},
      {"~/Android/Sdk", Rule{"Android SDK", "Android Studio", "Tools, platforms and emulator images for Android apps.",
                             review, "Android apps don't build until you download them again.",
                             "Remove old platforms and images in Android Studio's SDK Manager."}},
      {"~/.cache/JetBrains", localHistory("JetBrains")},
      {"~/.cache/Google", localHistory("Android Studio")},
      {"~/.cache/Cypress", automationBrowser("Cypress")},
      {"~/.cache/torch", models("PyTorch models", "PyTorch", "Delete the models you no longer use one by one.")},
      {"~/.cache/whisper", models("Whisper models", "Whisper", "Delete the models you no longer use one by one.")},
      {"~/.cache/lm-studio", models("LM Studio models", "LM Studio", "Delete models in LM Studio itself.")},
      {"/usr/share/ollama/.ollama/models",
       models("Ollama AI models", "Ollama", "Run ollama rm with a model name to remove just the ones you don't use.")},

      // Containers, machines, and what lies elsewhere as well.
      {"~/.local/share/containers", containers("Podman", "podman")},
      {"{/var/lib/docker,/var/lib/containerd}", containers("Docker", "docker")},
      {"~/.local/share/gnome-boxes", virtualMachines("Boxes")},
      {"{~/.local/share/libvirt,/var/lib/libvirt/images}", virtualMachines("Virtual Machine Manager")},
      {"~/VirtualBox VMs", virtualMachines("VirtualBox")},
      {"~/Nextcloud", syncFolder("Nextcloud")},
      {"~/{Dropbox,Dropbox (*}", syncFolder("Dropbox")},
      {"~/OneDrive*", syncFolder("OneDrive")},
  };
  return rows;
}

}  // namespace lumenary
