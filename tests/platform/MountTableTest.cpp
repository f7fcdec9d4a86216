#include <gtest/gtest.h>

#include "platform/linux/LinuxMountTable.h"

namespace lumenary {
namespace {

Mount mount(std::string point, MountKind kind = MountKind::local) { return {0, std::move(point), "", kind}; }

TEST(MountTable, ReadsTheKernelsText) {
  EXPECT_EQ(parseMountInfo("28 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda1 rw,errors=remount-ro\n"
                           "29 28 0:5 / /media/ada/My\\040Disk\\012\\134 ro,nosuid - ext4 /dev/sdb1 rw\n"
                           "30 28 0:6 / /srv rw shared:2 master:1 propagate_from:3 - btrfs /dev/sdc ro,space_cache"),
            (std::vector<Mount>{{28, "/", "ext4", MountKind::local, "254:0", "/dev/vda1"},
                                {29, "/media/ada/My Disk\n\\", "ext4", MountKind::local, "0:5", "/dev/sdb1"},
                                {30, "/srv", "btrfs", MountKind::local, "0:6", "/dev/sdc"}}));
}

TEST(MountTable, LeavesOutLinesThatAreBroken) {
  for (const char* line : {"", "28", "x 1 0:1 / / rw - ext4 d rw", "28 1 0:1 / / rw shared:1", "28 1 0:1 / / rw -",
                           "28 1 0:1 / relative rw - ext4 d rw", "28x 1 0:1 / / rw - ext4 d rw", "- - - - - - -"}) {
    const auto mounts = parseMountInfo(std::string(line) + "\n40 1 0:2 / /kept\\04 rw - xfs d rw\n" + line);
    EXPECT_EQ(mounts, (std::vector<Mount>{{40, "/kept\\04", "xfs", MountKind::local, "0:2", "d"}})) << line;
  }
}

TEST(MountTable, KeepsTheLastOfSeveralMountsAtOnePoint) {
  EXPECT_EQ(parseMountInfo("1 0 0:1 / / rw - rootfs rootfs rw\n2 1 0:2 / /home rw - nfs server:/ rw\n"
                           "3 1 0:3 / / rw - ext4 d rw\n4 3 0:4 / /home rw - ext4 d rw\n"),
            (std::vector<Mount>{{3, "/", "ext4", MountKind::local, "0:3", "d"},
                                {4, "/home", "ext4", MountKind::local, "0:4", "d"}}));
}

TEST(MountTable, LeavesOutWhatALaterMountHides) {
  const auto points = [](const std::string& text) {
    std::vector<std::string> points;
    for (const Mount& mount : parseMountInfo(text)) {
      points.push_back(mount.point);
    }
    return points;
  };
  const std::string root = "1 0 0:1 / / rw - ext4 d rw\n";
  const std::string drive = "2 1 0:2 / /mnt/x rw - ext4 d rw\n3 2 0:3 / /mnt/x/in rw - ext4 d rw\n";
  EXPECT_EQ(points(root + drive), (std::vector<std::string>{"/", "/mnt/x", "/mnt/x/in"}));
  EXPECT_EQ(points(root + drive + "4 1 0:4 / /mnt rw - ext4 d rw\n"), (std::vector<std::string>{"/", "/mnt"}));
  EXPECT_EQ(points(root + "4 1 0:4 / /mnt rw - ext4 d rw\n5 4 0:5 / /mnt/x rw - ext4 d rw\n"),
            (std::vector<std::string>{"/", "/mnt", "/mnt/x"}));
}

TEST(MountTable, TellsWhatMayStopAnswering) {
  const std::pair<std::string, MountKind> cases[] = {
      {"ext4", MountKind::local},           {"tmpfs", MountKind::local},    {"overlay", MountKind::local},
      {"ramfs", MountKind::local},          {"fuseblk", MountKind::local},  {"fuse", MountKind::userspace},
      {"fuse.sshfs", MountKind::userspace}, {"fusectl", MountKind::kernel}, {"nfs4", MountKind::network},
      {"cifs", MountKind::network},         {"9p", MountKind::network},     {"proc", MountKind::kernel},
      {"autofs", MountKind::kernel},        {"cgroup2", MountKind::kernel}};
  for (const auto& [type, kind] : cases) {
    EXPECT_EQ(parseMountInfo("1 0 0:1 / /x rw - " + type + " d rw").at(0).kind, kind) << type;
  }
}

TEST(MountTable, FindsTheMountThatHoldsAPath) {
  const std::vector<Mount> mounts = {mount("/home/ada"), mount("/"), mount("/home")};
  const std::pair<const char*, const char*> cases[] = {
      {"/", "/"}, {"/homestead", "/"}, {"/home", "/home"}, {"/home/bo", "/home"}, {"/home/ada/x", "/home/ada"}};
  for (const auto& [path, point] : cases) {
    EXPECT_EQ(mountHolding(mounts, path)->point, point) << path;
  }
  EXPECT_EQ(mountHolding({}, "/"), nullptr);
}

TEST(MountTable, NamesThePointsBelowAFolderThatAWalkMustNotEnter) {
  const std::vector<Mount> mounts = {
      mount("/"),          mount("/proc", MountKind::kernel),        mount("/code", MountKind::network),
      mount("/code/disk"), mount("/code/far", MountKind::userspace), mount("/codes", MountKind::network)};
  EXPECT_EQ(mountPointsNotToEnter(mounts, "/code"), (std::vector<std::string>{"/code/far"}));
  EXPECT_EQ(mountPointsNotToEnter(mounts, "/"), (std::vector<std::string>{"/proc", "/code", "/code/far", "/codes"}));
}

TEST(MountTable, ReadsThisMachinesMounts) {
  const auto mounts = LinuxMountTable().mounts();
  ASSERT_TRUE(mounts);
  const Mount* holding = mountHolding(*mounts, "/proc/self/mountinfo");
  ASSERT_NE(holding, nullptr);
  EXPECT_EQ(holding->type, "proc");
  EXPECT_EQ(holding->kind, MountKind::kernel);
}

}  // namespace
}  // namespace lumenary
