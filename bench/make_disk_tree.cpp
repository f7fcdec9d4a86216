// Makes folders as they stand on a person's disk, to measure scans with.
//
//   make_disk_tree home FOLDER [SCALE]     a home: 457,000 files in 60,000 folders, 3 % of them hard links
//   make_disk_tree large FOLDER [SCALE]    2,000,000 files in 200,000 folders
//   make_disk_tree wide FOLDER [SCALE]     one folder of 300,000 files
//   make_disk_tree deep FOLDER [SCALE]     a chain of 3,000 folders with a file in each
//   make_disk_tree empty FOLDER FOLDERS FILES
//
// FOLDER must not exist; it gets its name when all is made. SCALE multiplies the numbers of files. The same arguments
// give the same names, kinds and sizes: each part has random numbers of its own, so it doesn't matter which thread
// makes it. A home takes 6 GB. Its large files have blocks, but nothing was ever written into them.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Folder.h"
#include "Home.h"
#include "OnAllCores.h"
#include "Random.h"

namespace {

constexpr std::array<std::string_view, 5> kinds = {"home", "large", "wide", "deep", "empty"};

void makeHome(const Folder& top, double scale) {
  const Home home(scale);
  const std::vector<Part> parts = home.parts();
  onAllCores(parts.size(), [&](std::size_t index) {
    Random random(1 + index * 1'000'003);  // neighbours would give the same numbers, shifted by one
    parts[index].fill(Folder(top, parts[index].name), random);
  });
}

/// Spreads the files evenly over folders of three levels. One file in `filesWithContent` holds something.
void makeEven(const Folder& top, std::size_t folders, std::size_t files, std::size_t filesWithContent) {
  constexpr std::size_t siblings = 100;
  const std::size_t groups = (folders + siblings - 1) / siblings;
  onAllCores(groups, [&](std::size_t group) {
    const Folder around(top, "area-" + std::to_string(group / siblings));
    const Folder middle(around, "group-" + std::to_string(group));
    for (std::size_t folder = group * siblings; folder < std::min(folders, (group + 1) * siblings); ++folder) {
      const Folder leaf(middle, "folder-" + std::to_string(folder));
      for (std::size_t file = files * folder / folders; file < files * (folder + 1) / folders; ++file) {
        leaf.file("file-" + std::to_string(file), file % filesWithContent == 1 ? 7 : 0);
      }
    }
  });
}

void makeWide(const Folder& top, std::size_t files) {
  const Folder wide(top, "wide");
  Random random(1);
  for (std::size_t index = 0; index < files; ++index) {
    wide.file(hex(random, 10) + "-" + std::to_string(index), random.below(4) == 0 ? 0 : random.between(1, 900));
  }
}

void makeDeep(const Folder& top, std::size_t levels) {
  auto at = std::make_unique<Folder>(top, "chain");
  for (std::size_t level = 0; level < levels; ++level) {
    auto next = std::make_unique<Folder>(*at, "level-" + std::to_string(level));
    next->file("file", 6 + level % 50);
    at = std::move(next);
  }
}

template <class Number>
Number number(std::string_view text) {
  Number value{};
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

int usage() {
  std::fputs("Usage: make_disk_tree home|large|wide|deep FOLDER [SCALE] | empty FOLDER FOLDERS FILES\n", stderr);
  return 2;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::vector<std::string> given(arguments + 1, arguments + argumentCount);
  if (given.size() < 2 || given.size() > 4 || (given[0] == "empty") != (given.size() == 4)) {
    return usage();
  }
  const std::string& kind = given[0];
  const double scale = given.size() == 3 ? number<double>(given[2]) : 1;
  const auto scaled = [&](double count) { return static_cast<std::size_t>(count * scale); };
  if (scale <= 0 || std::ranges::find(kinds, kind) == kinds.end()) {
    return usage();
  }
  if (::access(given[1].c_str(), F_OK) == 0) {
    std::fprintf(stderr, "%s exists.\n", given[1].c_str());
    return 1;
  }
  const std::string unfinished = given[1] + ".new";
  const Folder top(AT_FDCWD, unfinished, 0);
  if (kind == "home") {
    makeHome(top, scale);
  } else if (kind == "large") {
    makeEven(top, scaled(198'000), scaled(2'000'000), 10);
  } else if (kind == "wide") {
    makeWide(top, scaled(300'000));
  } else if (kind == "deep") {
    makeDeep(top, scaled(3'000));
  } else {
    makeEven(top, number<std::size_t>(given[2]), number<std::size_t>(given[3]), number<std::size_t>(given[3]) + 2);
  }
  if (std::rename(unfinished.c_str(), given[1].c_str()) != 0) {
    fail(given[1]);
  }
}
