#include <gtest/gtest.h>

#include "platform/linux/LinuxVolumeReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

Mount mountOf(const std::string& source) { return {1, "/m", "ext4", MountKind::local, "8:1", source}; }

TEST(LinuxVolumeReader, TellsTheCapacityOfAnyPath) {
  const TemporaryTree tree({{"file", 10}});
  const LinuxVolumeReader volumes;
  const auto capacity = volumes.capacity(tree.path("file"));
  ASSERT_TRUE(capacity);
  EXPECT_GT(capacity->totalBytes, 0);
  EXPECT_GE(capacity->availableBytes, 0);
  EXPECT_LE(capacity->availableBytes, capacity->totalBytes);
  EXPECT_TRUE(volumes.capacity(tree.path("missing")).error().isMissing());
}

TEST(LinuxVolumeReader, KnowsTheLabelOfADeviceByItsLink) {
  const TemporaryTree tree({{"dev/sdb1"},
                            {"dev/sdc1"},
                            {"dev/disk"},
                            {"labels/Holiday\\x20\\xc3\\xa9t\\xc3\\xa9", LinkTo{"../dev/sdb1"}},
                            {"labels/gone", LinkTo{"../dev/sdx"}}});
  const LinuxVolumeReader volumes(tree.path("labels"), tree.root());
  EXPECT_EQ(volumes.label(mountOf(tree.path("dev/sdb1"))), "Holiday été");
  for (const std::string& source : {tree.path("dev/sdc1"), tree.path("dev/sdx"), std::string("tmpfs"), std::string()}) {
    EXPECT_EQ(volumes.label(mountOf(source)), std::nullopt) << source;
  }
  EXPECT_EQ(LinuxVolumeReader(tree.path("missing"), "").label(mountOf(tree.path("dev/sdb1"))), std::nullopt);
  EXPECT_EQ(labelOfLinkName("a\\x2"), "a\\x2");
  EXPECT_EQ(labelOfLinkName("a\\xzz\\x5c"), "a\\xzz\\");
}

TEST(LinuxVolumeReader, KnowsWhatCanBeTakenOut) {
  // An ordinary file has the device number 0:0.
  const std::pair<std::string, bool> cases[] = {{"devices/pci/ata1/block/sda/sda1", false},
                                                {"devices/pci/usb2/2-1/block/sdb/sdb1", true},
                                                {"devices/platform/mmc_host/mmc0/block/mmcblk0/mmcblk0p1", true},
                                                {"devices/pci/ata2/block/sr0/whole", true}};
  for (const auto& [device, isRemovable] : cases) {
    TemporaryTree tree({{"source"}, {device + "/"}, {"block/0:0", LinkTo{"../" + device}}});
    if (device.ends_with("whole")) {
      tree.build({{device + "/removable", Content{"1\n"}}});
    } else {
      tree.build({{device + "/../removable", Content{"0\n"}}});
    }
    const LinuxVolumeReader volumes("", tree.path("block"));
    EXPECT_EQ(volumes.isRemovable(mountOf(tree.path("source"))), isRemovable) << device;
    EXPECT_FALSE(volumes.isRemovable(mountOf(tree.path("missing"))));
  }
}

}  // namespace
}  // namespace lumenary
