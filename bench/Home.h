#pragma once

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Folder.h"
#include "Random.h"

inline constexpr std::size_t mebibyte = std::size_t{1} << 20;

inline constexpr std::array words = {"index", "util",  "core",   "parse",  "lib",    "types",  "config", "helper",
                                     "map",   "node",  "edge",   "view",   "model",  "store",  "fetch",  "cache",
                                     "queue", "tree",  "stream", "buffer", "event",  "error",  "format", "réglage",
                                     "theme", "größe", "button", "table",  "router", "action", "schema", "資料"};

inline std::string word(Random& random) { return words.at(random.below(words.size())); }

inline std::string hex(Random& random, std::size_t digits) {
  std::string text;
  for (std::size_t index = 0; index < digits; ++index) {
    text += "0123456789abcdef"[random.below(16)];
  }
  return text;
}

inline std::string hexByte(std::size_t value) {
  return {"0123456789abcdef"[value / 16 % 16], "0123456789abcdef"[value % 16]};
}

/// A part of a home that one thread makes.
struct Part {
  std::string name;
  std::function<void(const Folder&, Random&)> fill;
};

/// Makes the parts of a home of that many times the usual size.
class Home {
 public:
  explicit Home(double scale) : scale_(scale) {}

  std::vector<Part> parts() const {
    std::vector<Part> parts;
    const auto add = [&](std::string name, void (Home::*make)(const Folder&, Random&) const) {
      parts.push_back({std::move(name), [this, make](const Folder& at, Random& random) { (this->*make)(at, random); }});
    };
    for (int index = 0; index < 14; ++index) {
      add("webapp-" + std::to_string(index), &Home::makeWebApp);
    }
    for (int index = 0; index < 16; ++index) {
      add("repository-" + std::to_string(index), &Home::makeRepository);
    }
    for (int index = 0; index < 5; ++index) {
      add("crate-" + std::to_string(index), &Home::makeCrate);
    }
    add(".cache", &Home::makeCaches);
    add(".packages", &Home::makePackageStore);
    add("Pictures", &Home::makePictures);
    add("Vidéos", &Home::makeVideos);
    add("Documents", &Home::makeDocuments);
    add(".local", &Home::makeApplicationData);
    return parts;
  }

 private:
  std::size_t scaled(std::size_t count) const {
    return std::max<std::size_t>(1, static_cast<std::size_t>(static_cast<double>(count) * scale_));
  }

  /// Files named by their content, in `mostFolders` folders, or fewer where each would hold less than four.
  void makeFan(const Folder& at, Random& random, std::size_t files, std::size_t digits, std::size_t mostFolders) const {
    const std::size_t width = std::min(mostFolders, files / 4 + 1);
    for (std::size_t index = 0; index < width; ++index) {
      const std::size_t count = files / width + (random.below(width) < files % width ? 1 : 0);
      if (count == 0) {
        continue;
      }
      const Folder fan(at, hexByte(index));
      for (std::size_t file = 0; file < count; ++file) {
        fan.file(hex(random, digits), random.fileSize());
      }
    }
  }

  void makeSources(const Folder& at, Random& random, std::size_t files, std::size_t level = 0) const {
    const std::size_t here = level == 6 ? files : std::min(files, random.between(3, 14));
    for (std::size_t index = 0; index < here; ++index) {
      at.file(word(random) + "_" + std::to_string(index) + ".cpp", random.fileSize());
    }
    std::size_t left = files - here;
    for (std::size_t index = 0; left > 0; ++index) {
      const std::size_t part = std::min(left, std::max<std::size_t>(12, files / random.between(2, 5)));
      makeSources(Folder(at, word(random) + "-" + std::to_string(index)), random, part, level + 1);
      left -= part;
    }
  }

  void makeGit(const Folder& project, Random& random, std::size_t objects) const {
    const Folder git(project, ".git");
    for (const char* name : {"HEAD", "config", "index", "packed-refs", "description"}) {
      git.file(name, random.between(20, 4000));
    }
    const Folder hooks(git, "hooks");
    for (int index = 0; index < 12; ++index) {
      hooks.file("hook-" + std::to_string(index) + ".sample", random.between(100, 4000));
    }
    const Folder store(git, "objects");
    makeFan(store, random, objects, 38, 256);
    const Folder packs(store, "pack");
    const std::string pack = "pack-" + hex(random, 40);
    packs.file(pack + ".pack", random.between(mebibyte, 12 * mebibyte));
    packs.file(pack + ".idx", random.between(2'000, 60'000));
  }

  void makePackage(const Folder& modules, Random& random, std::size_t files, std::size_t index) const {
    const Folder package(modules, word(random) + "-" + std::to_string(index));
    for (const char* name : {"package.json", "LICENSE", "README.md"}) {
      package.file(name, random.between(300, 6'000));
    }
    for (std::size_t left = files, folder = 0; left > 0; ++folder) {
      const std::size_t here = std::min(left, random.between(8, 20));
      const Folder library(package, std::array{"lib", "dist", "src", "esm", "types"}.at(folder % 5) +
                                        (folder < 5 ? std::string() : std::to_string(folder)));
      for (std::size_t file = 0; file < here; ++file) {
        library.file(word(random) + std::to_string(file) + (file % 3 == 0 ? ".d.ts" : ".js"), random.fileSize());
      }
      left -= here;
    }
  }

  void makeWebApp(const Folder& at, Random& random) const {
    makeSources(Folder(at, "src"), random, scaled(300));
    makeGit(at, random, scaled(1'500));
    const Folder modules(at, "node_modules");
    const Folder commands(modules, ".bin");
    const std::size_t wanted = scaled(15'600);
    for (std::size_t made = 0, index = 0; made < wanted; ++index) {
      const std::size_t files = random.between(2, random.below(12) == 0 ? 80 : 16);
      makePackage(modules, random, files, index);
      made += files + 3;
      if (index % 8 == 0) {
        commands.symbolicLink("command-" + std::to_string(index), "../package-" + std::to_string(index) + "/cli.js");
      }
    }
    Folder(modules, ".cache").file("big.pack", random.between(mebibyte, 6 * mebibyte));
  }

  void makeRepository(const Folder& at, Random& random) const {
    makeSources(Folder(at, "src"), random, scaled(1'500));
    makeGit(at, random, scaled(2'600));
  }

  void makeCrate(const Folder& at, Random& random) const {
    makeSources(Folder(at, "src"), random, scaled(200));
    const Folder target(at, "target");
    const Folder debug(target, "debug");
    const Folder libraries(debug, "deps");
    const Folder prints(debug, ".fingerprint");
    const Folder units(debug, "incremental");
    for (std::size_t index = 0; index < scaled(900); ++index) {
      const std::string name = "lib" + word(random) + "-" + hex(random, 16) + ".rlib";
      libraries.file(name, random.below(33) == 0 ? random.between(mebibyte, 6 * mebibyte) : random.fileSize());
      if (index % 3 == 0) {
        debug.hardLink(name, libraries, name);
      }
      const Folder print(prints, "crate-" + std::to_string(index));
      for (const char* file : {"invoked.timestamp", "lib", "lib.json", "dep-lib"}) {
        print.file(file, random.between(8, 1'200));
      }
    }
    for (std::size_t index = 0; index < scaled(60); ++index) {
      const Folder unit(units, "unit-" + std::to_string(index));
      for (int object = 0; object < 40; ++object) {
        unit.file(std::to_string(object) + ".o", random.fileSize());
      }
    }
  }

  void makeCaches(const Folder& at, Random& random) const {
    makeFan(Folder(at, "go-build"), random, scaled(22'000), 64, 256);
    const Folder browser(at, "browser");
    const Folder pages(browser, "Cache_Data");
    for (std::size_t index = 0; index < scaled(14'000); ++index) {
      pages.file(hex(random, 16) + "_0", random.fileSize());
    }
    for (std::size_t index = 0; index < scaled(30); ++index) {
      browser.file("data_" + std::to_string(index), random.between(mebibyte, 16 * mebibyte));
    }
    const Folder web(at, "http");
    for (std::size_t index = 0; index < scaled(1'500); ++index) {
      const Folder first(web, hex(random, 1));
      const Folder second(first, hex(random, 1));
      const Folder third(second, hex(random, 1));
      Folder(third, hex(random, 1)).file(hex(random, 56), random.fileSize());
    }
    const Folder compiled(at, "ccache");
    for (std::size_t index = 0; index < 16; ++index) {
      makeFan(Folder(compiled, hexByte(index)), random, scaled(900), 30, 16);
    }
    const Folder thumbnails(at, "thumbnails");
    for (std::size_t index = 0; index < scaled(6'000); ++index) {
      thumbnails.file(hex(random, 32) + ".png", random.between(300, 12'000));
    }
  }

  /// As package managers do: each file once in a store, and linked into every project that needs it.
  void makePackageStore(const Folder& at, Random& random) const {
    const Folder store(at, "store");
    const std::size_t stored = scaled(8'000);
    for (std::size_t index = 0; index < stored; ++index) {
      store.file(std::to_string(index), random.fileSize());
    }
    const Folder projects(at, "projects");
    for (std::size_t index = 0; index < 5; ++index) {
      const Folder project(projects, "project-" + std::to_string(index));
      for (std::size_t file = 0; file < scaled(2'500); file += 10) {
        const Folder package(project, "package-" + std::to_string(file));
        for (std::size_t link = 0; link < 10; ++link) {
          package.hardLink(std::to_string(link) + ".js", store, std::to_string(random.below(stored)));
        }
        project.symbolicLink("link-" + std::to_string(file), "package-" + std::to_string(file));
      }
    }
  }

  void makePictures(const Folder& at, Random& random) const {
    for (int year = 2008; year < 2025; ++year) {
      const Folder ofYear(at, std::to_string(year));
      for (int month = 1; month <= 12; ++month) {
        const Folder ofMonth(ofYear, std::to_string(month) + " – été");
        for (std::size_t index = 0; index < scaled(95); ++index) {
          ofMonth.file("IMG_" + std::to_string(index) + ".JPG", random.between(200, 9'000));
        }
        ofMonth.file("RAW.NEF", random.between(mebibyte, 5 * mebibyte));
      }
    }
  }

  void makeVideos(const Folder& at, Random& random) const {
    for (std::size_t index = 0; index < scaled(220); ++index) {
      at.file("clip " + std::to_string(index) + ".mp4", random.between(2 * mebibyte, 20 * mebibyte));
    }
  }

  void makeDocuments(const Folder& at, Random& random) const {
    makeSources(Folder(at, "notes"), random, scaled(5'000));
    const Folder machines(at, "machines");
    for (std::size_t index = 0; index < scaled(40); ++index) {
      machines.sparseFile("disk-" + std::to_string(index) + ".img", random.between(mebibyte, 4'096 * mebibyte));
    }
    const Folder links(at, "links");
    links.file("target", 100);
    links.symbolicLink("around", "..");
    links.symbolicLink("itself", "itself");
    links.symbolicLink("long", std::string(200, 'x'));
    for (int index = 0; index < 50; ++index) {
      links.hardLink("hard-" + std::to_string(index), links, "target");
    }
    if (::mkfifoat(links.number(), "pipe", 0644) != 0) {
      fail("pipe");
    }
  }

  void makeApplicationData(const Folder& at, Random& random) const {
    const Folder share(at, "share");
    for (std::size_t index = 0; index < scaled(1'000); ++index) {
      const Folder application(share, word(random) + "-" + std::to_string(index));
      for (std::size_t file = random.between(1, 14); file > 0; --file) {
        application.file("settings-" + std::to_string(file) + ".json", random.between(10, 3'000));
      }
      const Folder empty(application, "state");
    }
  }

  double scale_;
};
