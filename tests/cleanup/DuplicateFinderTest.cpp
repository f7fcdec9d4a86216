#include <gtest/gtest.h>

#include <chrono>
#include <map>

#include "base/Sha256.h"
#include "cleanup/DuplicateFinder.h"
#include "cleanup/FileDigest.h"
#include "cleanup/HashCache.h"
#include "platform/linux/LinuxContentReader.h"
#include "support/FakeFiles.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

constexpr std::int64_t mebibyte = 1'048'576;
constexpr std::int64_t big = 10 * mebibyte;
const Date day = std::chrono::sys_days(std::chrono::year(2026) / 1 / 1);

std::string sha256(std::string_view text) {
  Sha256 digest;
  digest.add(std::as_bytes(std::span(text)));
  return digest.finish();
}

TEST(Sha256, DigestsAsTheStandardSays) {
  EXPECT_EQ(sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(DuplicateGroup, KnowsTheNamesOfCopies) {
  for (const char* name : {"report copy.pdf", "report copy 2.pdf", "report (1).pdf", "report-2.pdf", "report_07.pdf",
                           "Report COPY", "a 12", "report copy 2024.pdf", "report (2024).pdf", " copy"}) {
    EXPECT_TRUE(looksLikeCopy(name)) << name;
  }
  for (const char* name : {"report 2024.pdf", "report.pdf", "copy.pdf", "report2.pdf", "report().pdf", "07", "copycat",
                           "report(1).pdf", "report copy.pdf.gz", "", ".pdf", "a)"}) {
    EXPECT_FALSE(looksLikeCopy(name)) << name;
  }
}

TEST(DuplicateGroup, KeepsTheRatherOriginalOne) {
  const auto earlier = day - std::chrono::days(1);
  const std::vector<std::pair<FileEntry, FileEntry>> cases = {
      {fileEntry("/z/Downloads/a.mov", 1, day), fileEntry("/a/a copy.mov", 1, earlier)},
      {fileEntry("/z/a.mov", 1, day), fileEntry("/a/Downloads/a.mov", 1, earlier)},
      {fileEntry("/z/a.mov", 1, earlier), fileEntry("/a/a.mov", 1, day)},
      {fileEntry("/a/a.mov", 1, day), fileEntry("/z/a.mov", 1, day)},
      {fileEntry("/a/a.mov", 1, day), fileEntry("/z/a.mov", 1)},
  };
  for (const auto& [first, second] : cases) {
    EXPECT_TRUE(keepFirst(first, second)) << first.url.path;
    EXPECT_FALSE(keepFirst(second, first)) << first.url.path;
  }
}

/// The rule over made digests: "digest of the ends|digest of the whole", "-" where there is none.
struct Rule {
  std::vector<FileEntry> entries;
  std::map<std::string, std::string> digests;
  std::vector<std::string> read;
  std::stop_source stop;
  std::size_t stopAfter = SIZE_MAX;

  void add(const std::string& path, std::int64_t size, const std::string& digest, std::optional<Date> date = day) {
    entries.push_back(fileEntry(path, size, date));
    digests[path] = digest;
  }
  std::vector<std::string> groups() {
    const auto digest = [&](bool isFull) {
      return [&, isFull](const FileEntry& entry) -> std::optional<std::string> {
        read.push_back((isFull ? "full " : "ends ") + entry.url.path);
        if (read.size() == stopAfter) {
          stop.request_stop();
        }
        const std::string& text = digests.at(entry.url.path);
        const std::string part = isFull ? text.substr(text.find('|') + 1) : text.substr(0, text.find('|'));
        return part == "-" ? std::nullopt : std::optional(part);
      };
    };
    const auto canMove = [](const FileEntry& entry) { return !entry.url.path.starts_with("/no/"); };
    std::vector<std::string> lines;
    for (const auto& group : DuplicateFinder::groups(
             entries, canMove, [](const FileEntry& entry) { return entry.byteCount; }, digest(false), digest(true),
             stop.get_token())) {
      std::string line = group.id + (group.sameFolder ? " together: " : ": ") + group.keep.url.path;
      for (const FileEntry& extra : group.extras) {
        line += " < " + extra.url.path;
      }
      lines.push_back(line);
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

TEST(DuplicateFinder, NarrowsDownBySizeEndsAndWhole) {
  Rule rule;
  rule.add("/a/a.mov", big, "e|w");
  rule.add("/a/a copy.mov", big, "e|w");
  rule.add("/h/Downloads/a.mov", big, "e|w");
  rule.add("/a/middle", big, "e|other");
  rule.add("/a/ends", big, "f|w");
  rule.add("/a/alone", big + 1, "e|w");
  rule.add("/b/x", 3 * big, "x|x");
  rule.add("/b/y", 3 * big, "x|x");
  rule.add("/b/unreadable", 3 * big, "-|x");
  rule.add("/c/p", 4 * big, "p|p");
  rule.add("/c/q", 4 * big, "p|-");
  rule.add("/d/1", big - 1, "d|d");
  rule.add("/d/2", big - 1, "d|d");
  for (const char* folder : {"/e/Tool.APP/", "/e/Mine.photoslibrary/", "/no/"}) {
    rule.add(std::string(folder) + "1", 5 * big, "e|e");
    rule.add(std::string(folder) + "2", 5 * big, "e|e");
  }
  EXPECT_EQ(rule.groups(), (Lines{"x together: /b/x < /b/y", "w: /a/a.mov < /h/Downloads/a.mov < /a/a copy.mov"}));
  EXPECT_EQ(std::ranges::count_if(rule.read, [](const auto& line) { return line.starts_with("full"); }), 8);
  EXPECT_EQ(rule.read.size(), 18U);
}

TEST(DuplicateFinder, GivesNothingOnceItIsStopped) {
  for (const std::size_t after : {1U, 3U}) {
    Rule rule;
    rule.add("/a", big, "e|w");
    rule.add("/b", big, "e|w");
    rule.stopAfter = after;
    EXPECT_EQ(rule.groups(), Lines());
    EXPECT_EQ(rule.read.size(), after);
  }
}

/// Counts what is read, and may change the disk in between.
class CountingReader final : public ContentReader {
 public:
  explicit CountingReader(const ContentReader& real) : real_(real) {}

  mutable std::uint64_t bytes = 0;
  std::function<void(std::uint64_t offset)> beforeRead = [](std::uint64_t) {};

  SystemResult<Descriptor> openFile(const std::string& path) const override { return real_.openFile(path); }
  SystemResult<Descriptor> openFile(const Descriptor& folder, const char* name) const override {
    return real_.openFile(folder, name);
  }
  SystemResult<ContentStamp> stamp(const Descriptor& file) const override { return real_.stamp(file); }
  SystemResult<std::size_t> read(const Descriptor& file, std::uint64_t offset,
                                 std::span<std::byte> into) const override {
    beforeRead(offset);
    auto count = real_.read(file, offset, into);
    bytes += count.value_or(0);
    return count;
  }
  bool isInMemory(const Descriptor& file, std::uint64_t offset) const override {
    return real_.isInMemory(file, offset);
  }
  void willRead(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override {
    real_.willRead(file, offset, length);
  }
  void release(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const override {
    real_.release(file, offset, length);
  }

 private:
  const ContentReader& real_;
};

/// Real files in a home.
struct Disk {
  TemporaryHome tree;
  JudgedHome home{tree.places()};
  LinuxContentReader plain{home.reader};
  CountingReader contents{plain};
  FakeFiles files;
  PerfProbe probe;
  std::stop_source stop;

  std::string cachePath() const { return home.places.support + "/file-hashes.json"; }
  FileEntry entry(const std::string& path) {
    const auto attributes = home.reader.attributes(tree.path(path), LinkPolicy::refuse);
    return fileEntry(tree.path(path), attributes->allocatedBytes, attributes->modified);
  }
  std::vector<DuplicateGroup> find(const std::vector<std::string>& paths) {
    std::vector<FileEntry> entries;
    for (const std::string& path : paths) {
      entries.push_back(entry(path));
    }
    return DuplicateFinder(home.reader, contents, files, home.gate, home.places, probe).find(entries, stop.get_token());
  }
};

std::string bytesOf(std::int64_t count, char middle = 'x') {
  std::string bytes(static_cast<std::size_t>(count), 'x');
  bytes[bytes.size() / 2] = middle;
  return bytes;
}

TEST(DuplicateFinder, ReadsWhatTheStagesNeedAndNothingTheSecondTime) {
  Disk disk;
  disk.tree.build({{"a", Content{bytesOf(big)}},
                   {"b", Content{bytesOf(big)}},
                   {"middle", Content{bytesOf(big, 'y')}},
                   {"start", Content{"y" + bytesOf(big).substr(1)}},
                   {"alone", Content{bytesOf(2 * big)}}});
  const auto groups = disk.find({"a", "b", "middle", "start", "alone"});
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0].id, sha256(bytesOf(big)));
  EXPECT_EQ(groups[0].keep.name, "a");
  EXPECT_EQ(disk.contents.bytes, static_cast<std::uint64_t>(4 * 2 * mebibyte + 3 * big));

  disk.contents.bytes = 0;
  EXPECT_EQ(disk.find({"a", "b", "middle", "start", "alone"}).size(), 1U);
  EXPECT_EQ(disk.find({"a", "b"}).front().id, groups[0].id);
  EXPECT_EQ(disk.contents.bytes, 0U);
  EXPECT_FALSE(disk.files.contents[disk.cachePath()].contains("start")) << "only what the last run used";

  disk.tree.setModified("b", day);
  EXPECT_EQ(disk.find({"a", "b"}).size(), 1U);
  EXPECT_EQ(disk.contents.bytes, static_cast<std::uint64_t>(2 * mebibyte + big)) << "another date: read again";

  disk.contents.bytes = 0;
  disk.probe.disabled = {"hashcache"};
  disk.files.calls.clear();
  EXPECT_EQ(disk.find({"a", "b"}).size(), 1U);
  EXPECT_EQ(disk.contents.bytes, static_cast<std::uint64_t>(4 * mebibyte + 2 * big));
  EXPECT_TRUE(disk.files.calls.empty());
}

TEST(DuplicateFinder, LeavesOutWhatIsNoFurtherFile) {
  Disk disk;
  disk.tree.build({{"a", Content{bytesOf(big)}},
                   {"same", HardLinkTo{"a"}},
                   {"b", Content{bytesOf(big)}},
                   {"x", Content{bytesOf(2 * big)}},
                   {"y", Content{bytesOf(2 * big)}},
                   {"elsewhere/y", HardLinkTo{"y"}}});
  const auto groups = disk.find({"a", "same", "b", "x", "y"});
  ASSERT_EQ(groups.size(), 1U) << "y has another name, so its removal frees nothing";
  EXPECT_EQ(groups[0].keep.name, "a");
  EXPECT_EQ(groups[0].extras.size(), 1U);
  EXPECT_EQ(groups[0].extras[0].name, "b");
}

TEST(DuplicateFinder, LeavesOutWhatChanges) {
  Disk disk;
  disk.tree.build({{"a", Content{bytesOf(big)}}, {"b", Content{bytesOf(big)}}, {"c", Content{bytesOf(big)}}});
  auto changed = disk.entry("c");
  changed.modifiedAt = day;
  const DuplicateFinder finder(disk.home.reader, disk.contents, disk.files, disk.home.gate, disk.home.places,
                               disk.probe);
  EXPECT_EQ(finder.find(std::vector{disk.entry("a"), changed}, {}).size(), 0U) << "changed since the scan";

  int reads = 0;
  disk.contents.beforeRead = [&](std::uint64_t) {
    if (++reads == 8) {  // in the middle of the first whole file
      disk.tree.build({{"a", Content{bytesOf(big)}}});
    }
  };
  EXPECT_EQ(disk.find({"a", "b"}).size(), 0U);
  EXPECT_GT(reads, 8);
}

TEST(DuplicateFinder, KeepsNothingOfAStoppedRunAndSurvivesADamagedCache) {
  Disk disk;
  disk.tree.build({{"a", Content{bytesOf(big)}}, {"b", Content{bytesOf(big)}}});
  disk.contents.beforeRead = [&](std::uint64_t offset) {
    if (offset == 5 * mebibyte) {
      disk.stop.request_stop();
    }
  };
  EXPECT_EQ(disk.find({"a", "b"}).size(), 0U);
  EXPECT_FALSE(disk.files.contents.contains(disk.cachePath()));
  disk.stop = {};
  disk.contents.beforeRead = [](std::uint64_t) {};
  const std::string path = disk.tree.path("a");
  for (const std::string& text : {std::string(), std::string("{"), std::string("[]"), "{\"" + path + "\":{}}",
                                  "{\"" + path + R"(":{"size":1,"modified":0,"full":"zz"}})"}) {
    disk.files.contents[disk.cachePath()] = text;
    EXPECT_EQ(disk.find({"a", "b"}).size(), 1U) << text;
  }
  EXPECT_EQ(disk.find({}).size(), 0U);
  EXPECT_EQ(disk.files.contents[disk.cachePath()], "{}");
}

TEST(HashCache, KeepsDigestsOfUnchangedFiles) {
  const std::string digest(64, 'a');
  const std::string other(64, 'b');
  const HashCache::Records stored = {{"/n\xff", {.size = 5, .modified = 1767225600.25, .full = digest}},
                                     {"/undated", {.size = 5, .modified = 0, .partial = digest, .full = other}}};
  EXPECT_EQ(decodeHashRecords(encodeHashRecords(stored)), stored);
  const auto compute = [&] { return std::optional(other); };
  const Date date = day + std::chrono::milliseconds(250);
  struct Case {
    FileEntry entry;
    DigestKind kind;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {fileEntry("/n\xff", 5, date), DigestKind::full, digest},
      {fileEntry("/n\xff", 5, date), DigestKind::partial, other},
      {fileEntry("/n\xff", 6, date), DigestKind::full, other},
      {fileEntry("/n\xff", 5, day), DigestKind::full, other},
      {fileEntry("/undated", 5), DigestKind::partial, digest},
      {fileEntry("/new", 5), DigestKind::full, other},
  };
  for (const auto& [entry, kind, expected] : cases) {
    HashCache cache(stored);
    EXPECT_EQ(cache.hash(entry, kind, compute), expected);
    EXPECT_EQ(cache.used().size(), 1U);
    EXPECT_EQ(cache.hash(entry, kind, [] { return std::optional<std::string>(); }), expected) << "known by now";
  }
  HashCache cache({});
  EXPECT_EQ(cache.hash(fileEntry("/x"), DigestKind::full, [] { return std::optional<std::string>(); }), std::nullopt);
  EXPECT_TRUE(cache.used().empty());
}

TEST(FileDigest, SamplesBothEndsOfALargeFile) {
  TemporaryTree tree;
  const LinuxFileReader reader;
  const LinuxContentReader contents(reader);
  const auto partial = [&](const std::string& bytes) {
    tree.build({{"f", Content{bytes}}});
    return partialDigest(contents, *contents.openFile(tree.path("f")));
  };
  const std::string a(mebibyte, 'a');
  EXPECT_EQ(partial(""), sha256(""));
  EXPECT_EQ(partial(a + a), sha256(a));
  EXPECT_EQ(partial(a + "bc"), sha256(a));
  EXPECT_EQ(partial(a + "b" + a), sha256(a + a));
}

}  // namespace
}  // namespace lumenary
