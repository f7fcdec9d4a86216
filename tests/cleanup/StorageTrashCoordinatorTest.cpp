#include <gtest/gtest.h>

#include <algorithm>

#include "cleanup/StorageTrashCoordinator.h"
#include "platform/linux/LinuxContentReader.h"
#include "support/FakeFiles.h"
#include "support/FakeTrash.h"
#include "support/HookedReader.h"
#include "support/JudgedHome.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

constexpr std::int64_t mebibyte = 1'048'576;

/// A home with things in it, in front of a Trash that only notes.
struct Tended {
  TemporaryHome disk;
  JudgedHome home{disk.places()};
  std::map<std::string, std::int64_t, std::less<>> sizes;  ///< what the disk is said to hold, by name
  std::function<void(std::string_view)> beforeRead = [](std::string_view) {};
  HookedReader reader{home.reader,
                      [this](HookedReader::Call, std::string_view name) {
                        beforeRead(name);
                        return std::optional<SystemError>();
                      },
                      [this](std::string_view name, FileAttributes& attributes) {
                        const auto size = sizes.find(name);
                        attributes.allocatedBytes = size == sizes.end() ? attributes.allocatedBytes : size->second;
                      }};
  LinuxContentReader contents{home.reader};
  FakeTrash trash;
  FakeFiles files;
  CleanupJournal journal{files, "/support"};

  StorageTrashCoordinator coordinator() { return {reader, contents, trash, home.gate, home.places}; }
  std::string refusal(const FileEntry& entry) {
    const auto item = coordinator().validate(entry);
    return item ? "" : description(item.error());
  }
  std::vector<CleanupOutcome> move(const std::vector<StorageMove>& moves, const std::stop_token& stop = {}) {
    return coordinator().moveToTrash(moves, CleanupTransaction::Source::tidy, UUID{}, journal, stop);
  }
  FileEntry file(const std::string& path, std::int64_t byteCount = 0) { return fileEntry(disk.path(path), byteCount); }
  FileEntry folder(const std::string& path) { return folderEntry(disk.path(path)); }
};

const std::string missing = "The file is no longer at this location.";
const std::string changedType = "This item changed type after the scan. Scan again before removing it.";
const std::string isLink = "Shortcuts and symbolic links are protected.";
const std::string isProtected = "Hearthkeep protects system files and files outside your account.";
const std::string changed = "The file changed after the scan. Scan again before removing it.";
const std::string notPermitted =
    "macOS doesn't allow Hearthkeep to remove this. It may belong to another user or the system.";

TEST(StorageTrashCoordinator, LooksAgainBeforeItMoves) {
  Tended tended;
  tended.disk.build({{"notes.txt"},
                     {"work/a/"},
                     {"to-file", LinkTo{"notes.txt"}},
                     {"to-folder", LinkTo{"work"}},
                     {"dangling", LinkTo{"gone"}},
                     {"loop", LinkTo{"loop"}},
                     {"elsewhere", LinkTo{"work"}},
                     {"work/b"},
                     {"odd\n\xff name"}});
  const std::vector<std::pair<FileEntry, std::string>> cases = {
      {tended.file("notes.txt"), ""},
      {tended.folder("work"), ""},
      {tended.file("odd\n\xff name"), ""},
      {tended.file("gone"), missing},
      {tended.file("notes.txt/x"), missing},
      {tended.file("dangling"), missing},
      {tended.file("loop"), missing},
      {tended.file("work"), changedType},
      {tended.folder("notes.txt"), changedType},
      {tended.file("to-file"), isLink},
      {tended.folder("to-folder"), isLink},
      {tended.folder("to-file"), changedType},
      {tended.file("elsewhere/b"), isLink},
      {tended.file(".zshrc"), isProtected},
      {fileEntry("/etc/passwd"), isProtected},
  };
  for (const auto& [entry, sentence] : cases) {
    EXPECT_EQ(tended.refusal(entry), sentence) << entry.url.path;
  }
}

TEST(StorageTrashCoordinator, AllowsAFileToHaveGrownALittle) {
  Tended tended;
  tended.disk.build({{"grown"}});
  struct Case {
    std::int64_t then;
    std::int64_t measured;
    bool mayGo;
  };
  const std::vector<Case> cases = {
      {0, mebibyte, true},
      {0, mebibyte + 1, false},
      {20 * mebibyte - 1, 21 * mebibyte - 1, true},
      {20 * mebibyte - 1, 21 * mebibyte, false},
      {100 * mebibyte, 105 * mebibyte, true},
      {100 * mebibyte, 95 * mebibyte, true},
      {100 * mebibyte, 105 * mebibyte + 1, false},
      {100 * mebibyte, 0, false},
  };
  for (const auto& [then, measured, mayGo] : cases) {
    tended.sizes["grown"] = measured;
    EXPECT_EQ(tended.refusal(tended.file("grown", then)), mayGo ? "" : changed) << then << " to " << measured;
  }
}

TEST(StorageTrashCoordinator, ActsOnTheThingThatWasScanned) {
  Tended tended;
  tended.disk.build({{"a"}, {"b"}});
  FileEntry entry = tended.file("a");
  entry.identity = openItem(tended.home.reader, entry.url.path)->identity;
  EXPECT_EQ(tended.refusal(entry), "");
  tended.disk.rename("b", "a");
  EXPECT_EQ(tended.refusal(entry), changed);
}

TEST(StorageTrashCoordinator, TellsWhichFoldersThisPersonMayNotMove) {
  Tended tended;
  tended.disk.build({{"closed/"}, {"full/"}});
  tended.trash.checkFailures = {{tended.disk.path("closed"), {.refusal = TrashRefusal::folderClosed}},
                                {tended.disk.path("full"), {.refusal = TrashRefusal::failed}}};
  EXPECT_EQ(tended.refusal(tended.folder("closed")), notPermitted);
  EXPECT_EQ(tended.refusal(tended.folder("full")), "") << "the move itself will tell";
}

TEST(StorageTrashCoordinator, GivesOneOutcomeForEachItem) {
  Tended tended;
  tended.disk.build({{"a"}, {"c/x", 5000}, {"d"}});
  tended.trash.failures = {{tended.disk.path("d"), {.refusal = TrashRefusal::noSpace}}};
  const auto outcomes =
      tended.move({{tended.file("a", 4096)}, {tended.file("gone")}, {tended.folder("c")}, {tended.file("d")}});
  ASSERT_EQ(outcomes.size(), 4U);
  EXPECT_EQ(outcomes[0].message, "Moved to Trash");
  EXPECT_EQ(outcomes[0].trashURL, (FileURL{FakeTrash::placeOf("a"), false}));
  EXPECT_EQ(outcomes[1].message, missing);
  EXPECT_EQ(outcomes[1].trashURL, std::nullopt);
  EXPECT_EQ(outcomes[2].trashURL, (FileURL{FakeTrash::placeOf("c"), true}));
  EXPECT_FALSE(outcomes[3].success);
  EXPECT_EQ(tended.trash.calls, (std::vector<std::string>{"move " + tended.disk.path("a") + " 4096",
                                                          "move " + tended.disk.path("c") + " " +
                                                              std::to_string(tended.disk.allocatedBytes({"c/x"})),
                                                          "move " + tended.disk.path("d") + " 0", "writeSizes"}));
  const auto journal =
      std::ranges::find_if(tended.files.contents, [](const auto& file) { return file.first.ends_with(".journal"); });
  ASSERT_NE(journal, tended.files.contents.end());
  const auto entries = decodeJournal(journal->second)->entries;
  EXPECT_EQ(entries.front().itemID, outcomes[0].id);
  EXPECT_EQ(entries.front().ruleID, "tidy.Unclassified");
  EXPECT_EQ(entries.back().refusal, outcomes[3].message);
}

TEST(StorageTrashCoordinator, KeepsTheCopyWhoseTwinIsGone) {
  Tended tended;
  const std::string bytes(3 * mebibyte, 'x');
  std::string other = bytes;
  other[2 * mebibyte] = 'y';
  tended.disk.build({{"kept", Content{bytes}},
                     {"twin", Content{bytes}},
                     {"same size", Content{other}},
                     {"longer", Content{bytes + "x"}},
                     {"name", HardLinkTo{"kept"}},
                     {"link", LinkTo{"kept"}},
                     {".local/share/Trash/files/thrown", Content{bytes}}});
  const std::int64_t size = 3 * mebibyte;
  const std::string gone = "The copy that was to stay can't be found, so this one stays.";
  const std::string differ = "The copies aren't the same any more, so both stay.";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"gone", gone},
      {"link", gone},
      {".local/share/Trash/files/thrown", gone},
      {"same size", differ},
      {"longer", differ},
      {"twin", "Both names are one file, so nothing would be freed."},
      {"kept", "Moved to Trash"},
  };
  for (const auto& [survivor, message] : cases) {
    const auto outcomes = tended.move({{tended.file("twin", size), tended.file(survivor, size)}});
    EXPECT_EQ(outcomes.front().message, message) << survivor;
  }
  EXPECT_EQ(tended.move({{tended.file("name", size), tended.file("kept", size)}}).front().message,
            "Both names are one file, so nothing would be freed.");
  std::stop_source stop;
  stop.request_stop();
  EXPECT_EQ(tended.move({{tended.file("kept", size)}}, stop.get_token()).front().message,
            "It was stopped before this item, so it stays.");
}

TEST(StorageTrashCoordinator, KeepsWhatStaysForACopyThatWent) {
  Tended tended;
  const std::string bytes(4096, 'x');
  tended.disk.build({{"folder/kept", Content{bytes}}, {"folder two/x"}, {"twin", Content{bytes}}});
  const auto outcomes = tended.move({{tended.file("twin", 4096), tended.file("folder/kept", 4096)},
                                     {tended.file("folder/kept", 4096)},
                                     {tended.folder("folder")},
                                     {tended.folder("folder two")}});
  std::vector<std::string> messages;
  for (const CleanupOutcome& outcome : outcomes) {
    messages.push_back(outcome.message);
  }
  const std::string stays = "Its other copy just went because this one stays, so it stays.";
  EXPECT_EQ(messages, (std::vector<std::string>{"Moved to Trash", stays, stays, "Moved to Trash"}));
}

/// The same in front of the real Trash, with somebody else at work on the disk.
TEST_F(LinuxTrashTest, AScannedItemThatIsSwappedForALinkStaysWhereItIs) {
  const JudgedHome judged(places);
  home.build({{"work/report", Content{"mine"}}, {"secret/report", Content{"other"}}});
  bool isSwapped = false;
  const HookedReader swapping(reader, [&](HookedReader::Call, std::string_view name) {
    if (name == "report" && !isSwapped) {
      isSwapped = true;
      home.rename("work", "away");
      home.build({{"work", LinkTo{"secret"}}});
    }
    return std::optional<SystemError>();
  });
  const LinuxContentReader contents(reader);
  FakeFiles files;
  CleanupJournal journal(files, places.support);
  const StorageTrashCoordinator coordinator(swapping, contents, trash, judged.gate, places);
  const auto outcomes = coordinator.moveToTrash({{{fileEntry(home.path("work/report"), 4096)}}},
                                                CleanupTransaction::Source::storage, UUID{}, journal);
  EXPECT_TRUE(isSwapped);
  EXPECT_FALSE(outcomes.front().success);
  EXPECT_EQ(contentsOf(home.path("secret/report")), "other");
  EXPECT_EQ(contentsOf(home.path("away/report")), "mine");
}

}  // namespace
}  // namespace lumenary
