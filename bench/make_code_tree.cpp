// Makes code folders to measure with.
//
//   make_code_tree projects FOLDER               500 projects, 400,000 files in their build output and repositories
//   make_code_tree moves FOLDER COUNT FILES      COUNT projects, each with a node_modules of FILES files
//
// FOLDER must not exist. It gets `code`, the tree; `store`, what a package manager links into it; and last of all
// `artifacts`, the paths of all build output, each with a NUL at its end: a set with that list is complete. The same
// arguments give the same names, sizes and contents: each project has random numbers of its own, so it doesn't matter
// which thread makes it. About three of five projects carry dates of 2020, the others the date of their making.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Folder.h"
#include "OnAllCores.h"
#include "Random.h"

namespace {

constexpr std::size_t projectCount = 500;
constexpr std::size_t fileCount = 400'000;
constexpr std::size_t storeCount = 4'000;
constexpr std::time_t year2020 = 1'577'836'800;
constexpr std::size_t secondsOfYear = 31'536'000;

/// How the files of a folder are laid out below it, and whether they are links into a store.
struct Shape {
  std::string_view extension;
  std::size_t filesInFolder = 6;  ///< about
  std::size_t depth = 4;
  const Folder* store = nullptr;
};

void fill(const Folder& folder, Random& random, std::size_t files, const Shape& shape, std::size_t level = 0) {
  const std::size_t here = level == shape.depth ? files : std::min(files, random.between(1, 2 * shape.filesInFolder));
  for (std::size_t index = 0; index < here; ++index) {
    const std::string name = "module-" + std::to_string(index) + std::string(shape.extension);
    if (shape.store != nullptr) {
      folder.hardLink(name, *shape.store, std::to_string(random.below(storeCount)));
    } else {
      folder.file(name, random.fileSize());
    }
  }
  std::size_t left = files - here;
  for (std::size_t index = 0; left > 0; ++index) {
    const std::size_t part = std::min(left, random.between(1, 8 * shape.filesInFolder));
    fill(Folder(folder, "package-" + std::to_string(index)), random, part, shape, level + 1);
    left -= part;
  }
}

void makeNodeModules(const Folder& project, Random& random, std::size_t files, const Folder* store) {
  const Folder modules(project, "node_modules");
  fill(modules, random, files, {.extension = ".js", .store = store});
  const Folder commands(modules, ".bin");
  for (std::size_t index = 0; index < 10; ++index) {
    commands.symbolicLink("command-" + std::to_string(index), "../package-0/module-0.js");
  }
}

void makeVirtualEnvironment(const Folder& project, Random& random, std::size_t files) {
  const Folder environment(project, ".venv");
  environment.file("pyvenv.cfg", 80);
  Folder(environment, "bin").symbolicLink("python", "/usr/bin/python3");
  const Folder library(environment, "lib");
  const Folder python(library, "python3.11");
  fill(Folder(python, "site-packages"), random, files, {.extension = ".py", .filesInFolder = 12});
}

/// Cargo gives what it made in `deps` a second name beside that folder.
void makeCargoTarget(const Folder& project, Random& random, std::size_t files) {
  const Folder target(project, "target");
  const Folder debug(target, "debug");
  const Folder dependencies(debug, "deps");
  const std::size_t libraries = files / 10;
  for (std::size_t index = 0; index < libraries; ++index) {
    const std::string name = "lib-" + std::to_string(index) + ".rlib";
    dependencies.file(name, random.between(1, 40) == 1 ? random.between(1 << 20, 8 << 20) : random.fileSize());
    debug.hardLink(name, dependencies, name);
  }
  fill(Folder(debug, "incremental"), random, files - 2 * libraries, {.extension = ".o", .filesInFolder = 20});
}

void makeRepository(const Folder& project, Random& random, std::size_t files) {
  const Folder repository(project, ".git");
  for (const char* name : {"HEAD", "config", "index", "packed-refs"}) {
    repository.file(name, random.between(20, 4000));
  }
  const Folder objects(repository, "objects");
  Folder(objects, "pack").file("pack-0.pack", random.between(1 << 20, 4 << 20));
  for (std::size_t index = 0, left = files; left > 0; ++index) {
    const std::size_t part = std::min(left, files / 200 + 1);
    fill(Folder(objects, std::to_string(index)), random, part, {.extension = "", .filesInFolder = 256, .depth = 0});
    left -= part;
  }
}

std::vector<std::string> makeNodeProject(const Folder& project, Random& random, std::size_t files,
                                         const Folder& store) {
  project.file("package.json", 600);
  const bool isLinked = random.below(4) == 0;
  makeNodeModules(project, random, files * 9 / 10, isLinked ? &store : nullptr);
  const std::string output = std::array{"dist", ".next", "build"}.at(random.below(3));
  fill(Folder(project, output), random, files / 10, {.extension = ".js"});
  return {"node_modules", output};
}

std::vector<std::string> makePythonProject(const Folder& project, Random& random, std::size_t files) {
  project.file("pyproject.toml", 400);
  makeVirtualEnvironment(project, random, files * 19 / 20);
  const Folder package(project, "package");
  fill(package, random, 10, {.extension = ".py", .depth = 0});
  fill(Folder(package, "__pycache__"), random, files / 20, {.extension = ".pyc", .depth = 0});
  return {".venv", "package/__pycache__"};
}

std::vector<std::string> makeRustProject(const Folder& project, Random& random, std::size_t files) {
  project.file("Cargo.toml", 500);
  makeCargoTarget(project, random, files);
  return {"target"};
}

std::vector<std::string> makeJavaProject(const Folder& project, Random& random, std::size_t files) {
  const bool isMaven = random.below(2) == 0;
  const std::string output = isMaven ? "target" : "build";
  project.file(isMaven ? "pom.xml" : "build.gradle", 3000);
  fill(Folder(project, output), random, files, {.extension = ".class", .filesInFolder = 10, .depth = 6});
  return {output};
}

std::vector<std::string> makeSwiftProject(const Folder& project, Random& random, std::size_t files) {
  project.file("Package.swift", 700);
  const std::string output = random.below(3) == 0 ? "DerivedData" : ".build";
  fill(Folder(project, output), random, files, {.extension = ".o", .filesInFolder = 15});
  return {output};
}

std::vector<std::string> makeProject(const Folder& project, Random& random, std::size_t index, std::size_t files,
                                     const Folder& store) {
  project.file("README.md", 1500);
  fill(Folder(project, "sources"), random, 40, {.extension = ".txt"});
  const std::size_t kind = index % 10;
  if (kind == 9) {
    makeRepository(project, random, files);
    return {};
  }
  makeRepository(project, random, files / 8);
  files -= files / 8;
  return kind < 4    ? makeNodeProject(project, random, files, store)
         : kind < 6  ? makePythonProject(project, random, files)
         : kind == 6 ? makeRustProject(project, random, files)
         : kind == 7 ? makeJavaProject(project, random, files)
                     : makeSwiftProject(project, random, files);
}

/// Few projects are large: the shares of 400,000 files fall like 1/x.
std::vector<std::size_t> filesOfProjects() {
  Random random(2020);
  std::vector<std::size_t> shares;
  std::size_t sum = 0;
  for (std::size_t index = 0; index < projectCount; ++index) {
    sum += shares.emplace_back(100'000 / random.between(20, 1000));
  }
  for (std::size_t& share : shares) {
    share = share * fileCount / sum;
  }
  return shares;
}

/// One to three levels below the root.
std::string placeOf(std::size_t index) {
  const std::string area = "area-" + std::to_string(index % 20) + "/";
  const std::string team = "team-" + std::to_string(index % 5) + "/";
  const std::string name = "project-" + std::to_string(index);
  return std::array{name, area + name, area + team + name}.at(index % 3);
}

/// What a set consists of, shared by the threads that make it.
class Set {
 public:
  explicit Set(const std::string& path)
      : path_(path), top_(AT_FDCWD, path, 0), code_(top_, "code"), store_(top_, "store") {}

  const Folder& code() const { return code_; }
  const Folder& store() const { return store_; }

  void addArtifact(const std::string& place) {
    const std::lock_guard lock(adding_);
    artifacts_.push_back(path_ + "/code/" + place);
  }

  void finish() {
    std::ranges::sort(artifacts_);
    std::string list;
    for (const std::string& artifact : artifacts_) {
      list += artifact + '\0';
    }
    const std::string unfinished = path_ + "/artifacts.new";
    std::FILE* file = std::fopen(unfinished.c_str(), "w");
    const bool isWritten = file != nullptr && std::fwrite(list.data(), 1, list.size(), file) == list.size();
    if (!isWritten || std::fclose(file) != 0 || std::rename(unfinished.c_str(), (path_ + "/artifacts").c_str()) != 0) {
      fail("artifacts");
    }
  }

 private:
  const std::string path_;
  const Folder top_;
  const Folder code_;
  const Folder store_;
  std::mutex adding_;
  std::vector<std::string> artifacts_;
};

void makeProjects(Set& set) {
  Random random(1);
  for (std::size_t index = 0; index < storeCount; ++index) {
    set.store().file(std::to_string(index), random.fileSize());
  }
  for (std::size_t index = 0; index < projectCount; ++index) {
    const std::string place = placeOf(index);
    for (std::size_t slash = place.find('/'); slash != std::string::npos; slash = place.find('/', slash + 1)) {
      const Folder around(set.code(), place.substr(0, slash));
    }
  }
  const std::vector<std::size_t> files = filesOfProjects();
  onAllCores(projectCount, [&](std::size_t index) {
    Random own(1000 + index);
    const std::time_t date = own.below(5) < 3 ? year2020 + static_cast<std::time_t>(own.below(secondsOfYear)) : 0;
    const Folder project(set.code().number(), placeOf(index), date);
    for (const std::string& artifact : makeProject(project, own, index, files[index], set.store())) {
      set.addArtifact(placeOf(index) + "/" + artifact);
    }
  });
}

void makeMoves(Set& set, std::size_t count, std::size_t files) {
  onAllCores(count, [&](std::size_t index) {
    Random own(1000 + index);
    const std::string name = "project-" + std::to_string(index);
    const Folder project(set.code().number(), name, year2020 + static_cast<std::time_t>(own.below(secondsOfYear)));
    project.file("package.json", 600);
    fill(Folder(project, "node_modules"), own, files, {.extension = ".js"});
    set.addArtifact(name + "/node_modules");
  });
}

std::size_t number(std::string_view text) {
  std::size_t value = 0;
  return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc() ? value : 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
  const bool isProjects = words.size() == 2 && words[0] == "projects";
  const bool isMoves = words.size() == 4 && words[0] == "moves";
  if (!isProjects && !isMoves) {
    std::fputs("Usage: make_code_tree projects FOLDER | moves FOLDER COUNT FILES\n", stderr);
    return 2;
  }
  if (::access(words[1].c_str(), F_OK) == 0) {
    std::fprintf(stderr, "%s exists.\n", words[1].c_str());
    return 1;
  }
  Set set(words[1]);
  if (isProjects) {
    makeProjects(set);
  } else {
    makeMoves(set, number(words[2]), number(words[3]));
  }
  set.finish();
}
