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
                            {"elsewhere"},
                            {"dev/disk/by-label/Holiday\\x20\\xc3\\xa9t\\xc3\\xa9", LinkTo{"../../sdb1"}},
                            {"dev/disk/by-label/other", LinkTo{"../../../elsewhere"}},
                            {"dev/disk/by-label/gone", LinkTo{"../../sdx"}}});
  const LinuxVolumeReader volumes(tree.path("dev"), tree.root());
  EXPECT_EQ(volumes.label(mountOf(tree.path("dev/sdb1"))), "Holiday été");
  for (const std::string& source :
       {tree.path("dev/sdc1"), tree.path("dev/sdx"), tree.path("elsewhere"), std::string("tmpfs"), std::string()}) {
    EXPECT_EQ(volumes.label(mountOf(source)), std::nullopt) << source;
  }
  EXPECT_EQ(labelOfLinkName("a\\x2"), "a\\x2");
  EXPECT_EQ(labelOfLinkName("a\\xzz\\x5c"), "a\\xzz\\");
}

TEST(LinuxVolumeReader, KnowsWhatCanBeTakenOut) {
  // What the folder of a disk holds in sysfs; its partition is what is mounted. An ordinary file has the number 0:0.
  struct Case {
    std::string disk;
    TreeEntry said;
    bool isRemovable;
  };
  const Case cases[] = {
      {"devices/pci/ata1/block/sda", {"removable", Content{"0\n"}}, false},
      {"devices/pci/ata2/block/sr0", {"removable", Content{"1\n"}}, true},
      {"devices/pci/usb2/2-1/block/sdb", {"removable", Content{"0\n"}}, true},
      {"devices/mmc0/block/mmcblk0", {"device/type", Content{"MMC\n"}}, false},
      {"devices/mmc1/block/mmcblk1", {"device/type", Content{"SD\n"}}, true},
      {"devices/virtual/block/dm-0", {"part/slaves/sdc", LinkTo{"../../../../../../usb/sdc"}}, true},
      {"devices/virtual/block/dm-1", {"part/slaves/sdd", LinkTo{"../../../../../../ata/sdd"}}, false}};
  for (Case each : cases) {
    TemporaryTree tree({{"usb/sdc/"}, {"ata/sdd/"}, {"dev/source"}, {each.disk + "/part/"}});
    each.said.path = each.disk + "/" + each.said.path;
    tree.build({each.said, {"block/0:0", LinkTo{"../" + each.disk + "/part"}}});
    const LinuxVolumeReader volumes(tree.path("dev"), tree.path("block"));
    EXPECT_EQ(volumes.isRemovable(mountOf(tree.path("dev/source"))), each.isRemovable) << each.disk;
    EXPECT_FALSE(volumes.isRemovable(mountOf(tree.path("dev/missing"))));
  }
}

}  // namespace
}  // namespace lumenary
