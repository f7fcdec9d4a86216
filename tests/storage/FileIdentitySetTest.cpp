#include <gtest/gtest.h>

#include "storage/FileIdentitySet.h"

namespace lumenary {
namespace {

TEST(FileIdentitySet, KnowsEachFileFromItsSecondTimeOn) {
  FileIdentitySet files;
  for (const bool isNew : {true, false}) {
    for (std::uint64_t inode = 1; inode <= 20'000; ++inode) {
      // Neighbouring numbers, and ones that differ in their upper bits only, as file systems give them.
      EXPECT_EQ(files.insert({.device = 1, .inode = inode, .kind = FileKind::file}).isNew, isNew) << inode;
      EXPECT_EQ(files.insert({.device = 1, .inode = inode << 40, .kind = FileKind::file}).isNew, isNew) << inode;
      EXPECT_EQ(files.insert({.device = 2, .inode = inode, .kind = FileKind::file}).isNew, isNew) << inode;
    }
  }
}

}  // namespace
}  // namespace lumenary
