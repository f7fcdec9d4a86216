#include <gtest/gtest.h>

#include "cleanup/EmptiedItems.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

TEST(EmptiedItems, OnlyWhatIsSurelyGoneCountsAsEmptied) {
  TemporaryHome disk;
  disk.write("Trash/files/there");
  disk.write("Documents/back");
  disk.write("media/in/.Trash-1000/files/other");
  JudgedHome home(disk.places());
  home.mounts.all.push_back({.id = 2, .point = disk.path("media/in"), .type = "ext4"});
  struct Case {
    const char* name;
    std::string original;
    std::string trash;
    Outcome before;
    Outcome after;
  };
  const std::vector<Case> cases = {
      {"still in the Trash", "Documents/x", "Trash/files/there", Outcome::movedToTrash, Outcome::movedToTrash},
      {"gone", "Documents/x", "Trash/files/gone", Outcome::movedToTrash, Outcome::emptied},
      {"put back by hand", "Documents/back", "Trash/files/gone", Outcome::movedToTrash, Outcome::restored},
      {"gone from a drive", "Documents/x", "media/in/.Trash-1000/files/gone", Outcome::movedToTrash, Outcome::emptied},
      {"on a drive that is away", "Documents/x", "media/out/.Trash-1000/files/gone", Outcome::movedToTrash,
       Outcome::movedToTrash},
      {"was never moved", "Documents/x", "Trash/files/gone", Outcome::failed, Outcome::failed},
      {"put back before", "Documents/x", "Trash/files/gone", Outcome::restored, Outcome::restored},
  };
  for (const Case& tried : cases) {
    SCOPED_TRACE(tried.name);
    std::vector<CleanupTransaction> log{{.id = {}, .timestamp = {}, .source = {}, .items = {}}};
    log[0].items.push_back({.id = {},
                            .originalURL = {.path = disk.path(tried.original)},
                            .trashURL = FileURL{.path = disk.path(tried.trash)},
                            .ruleID = {},
                            .outcome = tried.before,
                            .message = {}});
    EXPECT_EQ(recordEmptied(log, home.reader, home.mounts), tried.before != tried.after);
    EXPECT_EQ(log[0].items[0].outcome, tried.after);
  }
}

TEST(EmptiedItems, ADriveInVolumesIsAwayWhereItsFolderIs) {
  JudgedHome home;
  std::vector<CleanupTransaction> log{{.id = {}, .timestamp = {}, .source = {}, .items = {}}};
  log[0].items.push_back({.id = {},
                          .originalURL = {.path = "/Volumes/Stick/a"},
                          .trashURL = FileURL{.path = "/Volumes/Stick/.Trashes/501/a"},
                          .ruleID = {},
                          .outcome = Outcome::movedToTrash,
                          .message = {}});
  EXPECT_FALSE(recordEmptied(log, home.reader, home.mounts));
}

}  // namespace
}  // namespace lumenary
