#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxSystemFacts.h"
#include "storage/SystemDataScanner.h"
#include "support/FakeTools.h"
#include "support/HookedReader.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

constexpr std::int64_t mebibyte = 1'048'576;

class FakeFacts final : public SystemFacts {
 public:
  std::vector<SwapFile> swaps{};
  DeletedOpenFiles deleted{};
  std::optional<std::int64_t> reserved{};
  std::optional<RoomOnVolume> rooms{};

  std::string kernelRelease() const override { return "6.1.0-9"; }
  std::vector<SwapFile> swapFiles() const override { return swaps; }
  std::vector<std::string> openPaths() const override { return {}; }
  DeletedOpenFiles deletedOpenFiles() const override { return deleted; }
  std::optional<std::int64_t> reservedBytes(const std::string&) const override { return reserved; }
  std::optional<RoomOnVolume> room(const std::string&) const override { return rooms; }
};

class FakeVolumes final : public VolumeReader {
 public:
  SystemResult<VolumeCapacity> capacity(const std::string&) const override {
    return VolumeCapacity{.totalBytes = 100 * mebibyte, .availableBytes = 30 * mebibyte};
  }
  std::optional<std::string> label(const Mount&) const override { return std::nullopt; }
  bool isRemovable(const Mount&) const override { return false; }
};

struct Explained {
  TemporaryHome disk;
  LinuxFileReader reader;
  FakeTools tools;
  FakeFacts facts;
  FakeVolumes volumes;
  MadeMounts mounts;
  std::map<std::string, std::int64_t, std::less<>> knownSizes{};
  std::optional<std::int64_t> measured{};

  SystemDataScanner scanner() { return {{reader, tools, facts, volumes, mounts}, disk.root(), knownSizes, measured}; }
  /// Places of this machine aren't measured.
  SystemDataReport report() {
    std::stop_source stop;
    stop.request_stop();
    return scanner().scan(stop.get_token());
  }

  /// "title bytes" of each part.
  static std::vector<std::string> lines(const std::vector<SystemDataPart>& parts) {
    std::vector<std::string> lines;
    for (const SystemDataPart& part : parts) {
      lines.push_back(part.title + (part.bytes ? " " + std::to_string(*part.bytes) : " ?"));
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

std::string volume(const std::string& name, const std::string& role, std::int64_t bytes) {
  return "<dict><key>Name</key><string>" + name + "</string><key>Roles</key><array><string>" + role +
         "</string></array><key>CapacityInUse</key><integer>" + std::to_string(bytes) + "</integer></dict>";
}

std::string container(const std::string& reference, const std::string& volumes) {
  return "<dict><key>ContainerReference</key><string>" + reference + "</string><key>Volumes</key><array>" + volumes +
         "</array></dict>";
}

std::string apfsList(const std::string& containers) {
  return "<plist version=\"1.0\"><dict><key>Containers</key><array>" + containers + "</array></dict></plist>";
}

TEST(SystemDataScanner, FindsTheContainerOfTheStartupVolume) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
      {"/dev/disk3s1s1", "disk3"}, {"disk12s5", "disk12"},      {"/dev/disk4", "disk4"},
      {"/dev/sda1", std::nullopt}, {"/dev/disk", std::nullopt}, {"", std::nullopt}};
  for (const auto& [device, found] : cases) {
    EXPECT_EQ(SystemDataScanner::startupContainer(device), found) << device;
  }
}

TEST(SystemDataScanner, TakesTheVolumesOfTheStartupDisk) {
  using Volume = SystemDataScanner::Volume;
  const std::string list =
      apfsList(container("disk5", volume("Other", "Data", 5)) +
               container("disk3", volume("Macintosh HD", "System", 10) + "<dict></dict><string>x</string>" +
                                      volume("Data", "Data", 20)));
  const std::vector<Volume> startup = {{"Macintosh HD", "System", 10}, {"Data", "Data", 20}};
  EXPECT_EQ(SystemDataScanner::startupVolumes(list, "disk3"), startup);
  EXPECT_EQ(SystemDataScanner::startupVolumes(list, "disk5"), (std::vector<Volume>{{"Other", "Data", 5}}));
  EXPECT_EQ(SystemDataScanner::startupVolumes(list, "disk9"), startup) << "the one with a system";
  EXPECT_EQ(SystemDataScanner::startupVolumes(list, std::nullopt), startup);
  for (const char* const damaged : {"", "no list", "<plist><array/></plist>", "<plist><dict/></plist>"}) {
    EXPECT_TRUE(SystemDataScanner::startupVolumes(damaged, "disk3").empty()) << damaged;
  }
}

TEST(SystemDataScanner, TellsVolumesByTheirRole) {
  const auto parts =
      SystemDataScanner::volumeParts(std::vector<SystemDataScanner::Volume>{{"a", "Recovery", mebibyte},
                                                                            {"b", "Data", 9 * mebibyte},
                                                                            {"c", "VM", mebibyte - 1},
                                                                            {"d", "System", 2 * mebibyte}});
  EXPECT_EQ(Explained::lines(parts), (Lines{"Recovery 1048576", "macOS itself 2097152"}));
  EXPECT_EQ(parts.front().explanation, "The tools you use to repair or reinstall macOS.");
}

TEST(SystemDataScanner, MeasuresPlacesEachByteOnce) {
  Explained explained;
  explained.disk.makeFolder("log/journal/deep");
  explained.disk.makeFolder("closed");
  explained.disk.makeFolder("small");
  const std::string& root = explained.disk.root();
  const std::string log = root + "/log";
  const std::string journal = root + "/log/journal";
  const std::string deep = root + "/log/journal/deep";
  const std::string closed = root + "/closed";
  const std::string small = root + "/small";
  const std::string gone = root + "/gone";
  explained.knownSizes = {{log, 9 * mebibyte}, {journal, 5 * mebibyte}, {deep, 2 * mebibyte}, {small, mebibyte - 1}};
  const std::vector<SystemPlace> places = {{log, "Logs", "Linux {release} wrote them."},
                                           {journal, "Journal", "Messages."},
                                           {deep, "Deep", ""},
                                           {closed, "Closed", ""},
                                           {small, "Small", ""},
                                           {gone, "Gone", ""},
                                           {"~/closed", "At home", ""}};
  const HookedReader reader(explained.reader, [&](HookedReader::Call call, std::string_view path) {
    const bool isClosed = call == HookedReader::Call::openFolder && path == closed;
    return isClosed ? std::optional(SystemError{EACCES}) : std::nullopt;
  });
  const SystemDataScanner scanner({reader, explained.tools, explained.facts, explained.volumes, explained.mounts}, root,
                                  explained.knownSizes, std::nullopt);
  const auto parts = scanner.locations(places, {});
  EXPECT_EQ(Explained::lines(parts),
            (Lines{"Logs 4194304", "Journal 3145728", "Deep 2097152", "Closed ?", "At home ?"}));
  EXPECT_EQ(parts.front().explanation, "Linux 6.1.0-9 wrote them.");
  EXPECT_EQ(parts.front().url, (FileURL{log, true}));
}

TEST(SystemDataScanner, ExplainsWhatNoScanSees) {
  Explained explained;
  explained.facts.swaps = {{"/swapfile", 4 * mebibyte}, {"/tiny", 10}};
  explained.facts.deleted = {
      .bytes = 3 * mebibyte, .programs = {"a", "b\n", "c", "d", "e", "f", "g"}, .unseenProcesses = 12};
  explained.facts.reserved = 5 * mebibyte;
  explained.facts.rooms = RoomOnVolume{.forImportantUse = 7, .now = 3};
  explained.measured = 50 * mebibyte;
  const SystemDataReport report = explained.report();
  EXPECT_EQ(Explained::lines(report.volumes),
            (Lines{"In use, but not measured 15728640", "Reserved by the file system 5242880",
                   "Memory overflow (swap) 4194304", "Deleted, but still open 3145728"}));
  EXPECT_EQ(report.volumes.back().explanation,
            "Removed files that running programs still hold: a, b\uFFFD, c, d, e and 2 more. The space is free once "
            "they quit. What 12 other processes hold can't be seen.");
  EXPECT_EQ(report.purgeableBytes, 4);
  explained.facts.rooms->now = 8;
  EXPECT_EQ(explained.scanner().purgeableBytes(), 0);
  explained.measured = 80 * mebibyte;
  EXPECT_EQ(explained.report().volumes.size(), 3U) << "a scan that saw more than is in use";
}

TEST(SystemDataScanner, TellsWhatTheToolsSayAndGoesOnWithoutThem) {
  Explained explained;
  EXPECT_EQ(explained.report().snapshotCount, 0) << "they all hang";
  explained.tools.answers["/usr/bin/snapper --machine-readable csv list --columns number"] = "number\n0\n1\n22\n";
  EXPECT_EQ(explained.report().snapshotCount, 2);
  explained.tools.answers["/usr/bin/tmutil listlocalsnapshots /"] =
      "Snapshots for disk /:\n\ncom.apple.TimeMachine.2026-11-22-1.local\nother\n";
  explained.tools.answers["/usr/sbin/diskutil apfs list -plist"] =
      apfsList(container("disk3", volume("M", "System", 10) + volume("D", "Data", 77)));
  const SystemDataReport report = explained.report();
  EXPECT_EQ(report.snapshotCount, 1);
  EXPECT_EQ(report.dataVolumeBytes, 77);
}

TEST(LinuxSystemFacts, ReadsTheListOfSwaps) {
  EXPECT_EQ(parseSwaps("Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
                       "/dev/sda2                               partition\t999\t0\t-2\n"
                       "/swap\\040file                           file\t\t2048\t\t0\t\t-3\n"
                       "/broken file x\n"),
            (std::vector<SwapFile>{{"/swap file", 2 * mebibyte}}));
  EXPECT_TRUE(parseSwaps("").empty());
}

TEST(LinuxSystemFacts, FindsAFileThatIsDeletedButOpen) {
  const LinuxSystemFacts facts;
  // Files in memory take up no disk, so this one is put where a disk most likely is.
  std::string path = "/var/tmp/lumenary-deleted-XXXXXX";
  const int file = ::mkostemp(path.data(), O_CLOEXEC);
  const std::string bytes(std::size_t{8} * 1024 * 1024, 'x');
  ASSERT_EQ(::write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::fsync(file);
  const int again = ::dup(file);
  const std::int64_t before = facts.deletedOpenFiles().bytes;
  ::unlink(path.c_str());
  const DeletedOpenFiles found = facts.deletedOpenFiles();
  EXPECT_NEAR(static_cast<double>(found.bytes - before), 8.0 * mebibyte, 2.0 * mebibyte) << "once, not twice";
  EXPECT_FALSE(found.programs.empty());
  ::close(file);
  ::close(again);
  EXPECT_FALSE(facts.kernelRelease().empty());
  EXPECT_GE(facts.reservedBytes("/").value_or(-1), 0);
  EXPECT_FALSE(facts.reservedBytes("/nowhere"));
}

}  // namespace
}  // namespace lumenary
