#include <gtest/gtest.h>

#include <cerrno>

#include "cleanup/TrashContents.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using enum TrashEmptyResult::Kind;

const std::string notAllowed =
    "Hearthkeep isn't allowed to control Finder. Turn it on in System Settings › Privacy & Security › Automation.";
const std::string tooLong = "Finder took too long. It may still be emptying the Trash.";

TEST(TrashContents, ReadTheEndOfAnEmptying) {
  struct Case {
    int status;
    std::string output;
    std::string errors;
    TrashEmptyResult expected;
  };
  const std::vector<Case> cases = {
      {0, "empty\n", "", {alreadyEmpty}},
      {0, "emptied", "(-128)", {emptied}},
      {0, "", "", {emptied}},
      {1, "empty", "", {failed, "Finder couldn't empty the Trash."}},
      {1, "", "error (-) (-x) (12) (-12", {failed, "Finder couldn't empty the Trash."}},
      {1, "", "not allowed. (-1743)", {failed, notAllowed}},
      {1, "", "(-1743) then (-128) (-x)", {failed, "The request was cancelled."}},
      {1, "", "((-1712))", {failed, tooLong}},
      {1, "", "x(-50)", {failed, "A file in the Trash may be locked or in use. (Finder error -50)"}},
      {1, "", "(-(-7)", {failed, "A file in the Trash may be locked or in use. (Finder error -7)"}},
  };
  for (const auto& [status, output, errors, expected] : cases) {
    EXPECT_EQ(interpretEmptyTrash(status, output, errors), expected) << errors;
  }
}

class MadeBin final : public TrashBin {
 public:
  TrashEmptying emptying;

  SystemResult<std::vector<std::string>> itemFolders() const override { return std::vector<std::string>(); }
  TrashEmptying empty(const EmptyingProgress&, const std::stop_token&) override { return emptying; }
};

TEST(TrashContents, TellHowEmptyingEnded) {
  const std::vector<std::pair<TrashEmptying, TrashEmptyResult>> cases = {
      {{}, {alreadyEmpty}},
      {{.removedCount = 3}, {emptied}},
      {{.removedCount = 3, .leftCount = 1, .cause = {EACCES}},
       {failed, "A file in the Trash may be locked or in use. (Finder error -13)"}},
      {{.cause = {EIO}}, {failed, "A file in the Trash may be locked or in use. (Finder error -5)"}},
      {{.cause = {EIO}, .isUnreachable = true}, {failed, "Finder couldn't be reached."}},
      {{.cause = {ETIMEDOUT}}, {failed, tooLong}},
      {{.removedCount = 1, .leftCount = 1, .cause = {EIO}, .isCancelled = true},
       {failed, "The request was cancelled."}},
  };
  for (const auto& [emptying, expected] : cases) {
    MadeBin bin;
    bin.emptying = emptying;
    EXPECT_EQ(emptyTrash(bin), expected);
  }
}

TEST(TrashContents, MeasureWhatIsThere) {
  TemporaryTree tree{{"nothing/"}, {"finder/.DS_Store", 10},  {"zero/file"}, {"full/a/b", 5000}, {"full/c", 10},
                     {"file", 10}, {"linked", LinkTo{"full"}}};
  const LinuxFileReader reader;
  const std::int64_t full = tree.allocatedBytes({"full/a/b", "full/c"});
  const std::vector<std::pair<std::string, std::optional<std::int64_t>>> cases = {
      {"nothing", 0}, {"finder", 0}, {"zero", 1}, {"full", full}, {"file", std::nullopt}, {"gone", std::nullopt}};
  for (const auto& [path, bytes] : cases) {
    EXPECT_EQ(trashSize(reader, tree.path(path)), bytes) << path;
  }
  const auto total = [&](const std::vector<std::string>& folders) {
    std::vector<std::string> paths;
    for (const std::string& folder : folders) {
      paths.push_back(tree.path(folder));
    }
    return totalTrashSize(reader, paths);
  };
  EXPECT_EQ(total({"gone", "full", "linked", "zero", "file/x"}), full + 1) << "each counted once";
  EXPECT_EQ(total({}), 0);
  EXPECT_EQ(total({"file", "full"}), std::nullopt) << "the home Trash can't be read";
}

}  // namespace
}  // namespace lumenary
