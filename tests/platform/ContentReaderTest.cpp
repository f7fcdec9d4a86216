#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include "platform/linux/LinuxContentReader.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/TemporaryTree.h"

namespace lumenary {
namespace {

TEST(LinuxContentReader, OpensRegularFilesAlone) {
  TemporaryTree tree{{"a/file", Content{"hello"}}, {"a/link", LinkTo{"file"}}, {"b", LinkTo{"a"}}};
  ASSERT_EQ(::mkfifo(tree.path("a/pipe").c_str(), 0600), 0);
  const LinuxFileReader folders;
  const LinuxContentReader reader(folders);
  EXPECT_TRUE(reader.openFile(tree.path("a/file")));
  for (const char* path : {"a/link", "b/file", "a/pipe", "a", "a/gone"}) {
    EXPECT_FALSE(reader.openFile(tree.path(path))) << path;
  }
  const auto folder = folders.openFolder(tree.path("a"), LinkPolicy::refuse);
  EXPECT_TRUE(reader.openFile(*folder, "file"));
  EXPECT_FALSE(reader.openFile(*folder, "link"));
}

TEST(LinuxContentReader, ReadsAndTellsWhetherAFileWasWritten) {
  TemporaryTree tree{{"file", Content{"0123456789"}}};
  const LinuxFileReader folders;
  const LinuxContentReader reader(folders);
  const auto file = reader.openFile(tree.path("file"));
  ASSERT_TRUE(file);
  std::array<std::byte, 8> bytes{};
  EXPECT_EQ(reader.read(*file, 0, bytes), 8U);
  EXPECT_EQ(bytes[7], std::byte{'7'});
  EXPECT_EQ(reader.read(*file, 6, bytes), 4U);
  EXPECT_EQ(reader.read(*file, 10, bytes), 0U);
  EXPECT_TRUE(reader.isInMemory(*file, 0));
  const auto before = reader.stamp(*file);
  EXPECT_EQ(before, reader.stamp(*file));
  EXPECT_EQ(before->byteCount, 10);
  const Date date = before->modified;
  tree.build({{"file", Content{"9876543210"}, date}});
  EXPECT_NE(before, reader.stamp(*file)) << "even with its old date";
}

}  // namespace
}  // namespace lumenary
