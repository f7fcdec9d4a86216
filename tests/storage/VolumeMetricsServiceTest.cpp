#include <gtest/gtest.h>

#include <cerrno>
#include <map>

#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxMountTable.h"
#include "storage/VolumeMetricsService.h"

namespace lumenary {
namespace {

class FakeVolumes final : public VolumeReader {
 public:
  std::map<std::string, std::string> labels;  ///< by mount point
  mutable std::vector<std::string> asked;

  SystemResult<VolumeCapacity> capacity(const std::string& path) const override {
    asked.push_back(path);
    return path == "/gone" ? SystemResult<VolumeCapacity>(std::unexpect, SystemError{ENOENT})
                           : VolumeCapacity{.totalBytes = 100, .availableBytes = 30};
  }
  std::optional<std::string> label(const Mount& mount) const override {
    const auto found = labels.find(mount.point);
    return found == labels.end() ? std::nullopt : std::optional(found->second);
  }
  bool isRemovable(const Mount& mount) const override { return mount.source.starts_with("/dev/usb"); }
};

class TextMountTable final : public MountTable {
 public:
  std::string text;
  SystemResult<std::vector<Mount>> mounts() const override {
    return text.empty() ? SystemResult<std::vector<Mount>>(std::unexpect, SystemError{EACCES}) : parseMountInfo(text);
  }
};

class VolumeMetrics : public testing::Test {
 protected:
  VolumeMetrics() { places.driveFolders = {"/media", "/mnt"}; }

  std::vector<std::string> drives() {
    std::vector<std::string> found;
    for (const DriveInfo& drive : service.mountedDrives()) {
      found.push_back(drive.name + " " + fileURLString(drive.url) + (drive.isStartup ? " startup" : "") +
                      (drive.isRemovable ? " removable" : ""));
    }
    return found;
  }

  LinuxFileReader reader;
  FakeVolumes volumes;
  TextMountTable mountTable;
  Places places;
  VolumeMetricsService service{reader, volumes, mountTable, places};
};

using Drives = std::vector<std::string>;

TEST_F(VolumeMetrics, OffersTheStartupDriveThenTheOthersByName) {
  mountTable.text =
      "27 1 0:52 / /media rw - tmpfs tmpfs rw\n"
      "20 27 8:17 / /media/ada/stick rw - vfat /dev/usb1 rw\n"
      "21 1 8:33 / /mnt/archive rw - ext4 /dev/sdc1 rw\n"
      "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
      "22 1 8:34 / /Volumes/X rw - xfs /dev/sdd1 rw\n"
      "23 1 8:35 / /srv rw - ext4 /dev/sde1 rw\n"
      "24 1 0:50 / /mnt/server rw - nfs4 server:/ rw\n"
      "25 1 0:51 / /mnt/phone rw - fuse.sshfs phone: rw\n"
      "26 1 7:1 / /mnt/image ro - squashfs /dev/loop1 ro\n"
      "30 1 7:2 / /mnt/disc ro - iso9660 /dev/loop2 ro\n"
      "28 1 8:33 /sub /mnt/again rw - ext4 /dev/sdc1 rw\n"
      "29 1 8:1 /usr /mnt/usr rw - ext4 /dev/sda1 rw\n";
  volumes.labels = {{"/", "System"}, {"/mnt/archive", "Zoo"}};
  EXPECT_EQ(drives(), (Drives{"System file:/// startup", "X file:///Volumes/X/", "Zoo file:///mnt/archive/",
                              "stick file:///media/ada/stick/ removable"}));
  volumes.labels.clear();
  mountTable.text = "1 0 8:1 / / rw - overlay overlay rw\n";
  EXPECT_EQ(drives(), Drives{"/ file:/// startup"});
  mountTable.text.clear();
  EXPECT_EQ(drives(), Drives{});
}

TEST_F(VolumeMetrics, OffersTheVolumeOfTheHomeEvenAsAPartOfTheStartupDrives) {
  places.home = "/home/nobody-of-this-name";
  for (const char* number : {"8:2", "8:1"}) {
    mountTable.text = "1 0 8:1 / / rw - btrfs /dev/sda1 rw\n2 1 " + std::string(number) +
                      " /@home /home rw - btrfs /dev/sda1 rw\n3 1 8:1 /@home /mnt/same rw - btrfs /dev/sda1 rw\n";
    EXPECT_EQ(drives(), (Drives{"/ file:/// startup", "home file:///home/"})) << number;
  }
  mountTable.text = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 0:9 / /home rw - nfs server:/home rw\n";
  EXPECT_EQ(drives(), Drives{"/ file:/// startup"});
}

TEST_F(VolumeMetrics, CapturesAVolumeThatAnswers) {
  mountTable.text = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 0:9 / /net rw - nfs server:/ rw\n";
  EXPECT_EQ(service.capture("/home"), (VolumeSnapshot{"Macintosh HD", 100, 30}));
  volumes.labels["/"] = "System";
  EXPECT_EQ(service.capture("/home"), (VolumeSnapshot{"System", 100, 30}));
  EXPECT_EQ(service.capture("/gone"), std::nullopt);
  EXPECT_EQ(service.capture("/net/x"), std::nullopt);
  mountTable.text.clear();
  EXPECT_EQ(service.capture("/home"), std::nullopt);
  EXPECT_EQ(volumes.asked, (Drives{"/home", "/home", "/gone"})) << "a server that is away is not waited for";
}

}  // namespace
}  // namespace lumenary
