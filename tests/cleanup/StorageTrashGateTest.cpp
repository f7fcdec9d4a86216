#include <gtest/gtest.h>

#include "cleanup/StorageTrashGate.h"
#include "support/HookedReader.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

/// Paths with what the gate says: '+' may go, '-' stays; a folder ends in a slash.
void expectAnswers(const StorageTrashGate& gate, const JudgedHome& home,
                   const std::vector<std::pair<std::string, char>>& cases) {
  for (const auto& [text, expected] : cases) {
    const std::string path = home.at(text);
    const FileEntry entry = path.ends_with('/') ? folderEntry(path.substr(0, path.size() - 1)) : fileEntry(path);
    EXPECT_EQ(gate.canMoveToTrash(entry) ? '+' : '-', expected) << text;
  }
}

TEST(StorageTrashGate, LetsGoWhatIsThePersonsOwn) {
  JudgedHome home;
  std::vector<std::pair<std::string, char>> cases = {
      {"~/.zshrc", '-'},
      {"~/.cargo/", '+'},
      {"~/.ssh/id_rsa", '-'},
      {"~/.sshx/id_rsa", '+'},
      {"~/.docker/config.json", '-'},
      {"~/.docker/contexts/", '+'},
      {"~/.docker/", '+'},
      {"~/.docker/config.json/x", '-'},
      {"~/.config/app/settings", '-'},
      {"~/notes.txt", '+'},
      {"~/downloads/", '+'},
      {"~/Downloads/x", '+'},
      {"~/Library/", '-'},
      {"~/Library/Caches/", '+'},
      {"~/Library/Caches", '-'},
      {"~/Library/Logs/", '-'},
      {"~/Library/Logs/DiagnosticReports/", '+'},
      {"~/Library/Mail/V10/", '-'},
      {"~/Library/Application Support/", '-'},
      {"~/Library/Application Support/SomeApp/", '+'},
      {"~/Library/Other/", '+'},
      {"/Library/Caches/", '-'},
      {"/Applications/Safari.app/", '+'},
      {"/Applications/Suite/Safari.app/", '-'},
      {"~/Applications/Tool.app/", '+'},
      {"~/.gradle/", '+'},
      {"/home/anna/", '-'},
      {"/home/", '-'},
      {"/home/annabel/x", '-'},
      {"/", '-'},
      {"/etc/passwd", '-'},
      {"~/a/../../bert/x", '-'},
      {"~/../anna/.ssh/id", '-'},
      // Linux
      {"~/.cache/", '-'},
      {"~/.cache/foo/", '+'},
      {"~/.local/", '-'},
      {"~/.local/share/", '-'},
      {"~/.local/share/app/", '+'},
      {"~/.local/share/Trash/files/x", '-'},
      {"~/.config/Slack/Cache/", '+'},
      {"~/.config/Slack/Cache", '-'},
      {"~/.config/Slack/Cache/f", '-'},
      {"~/.config/Slack/Local Storage/", '-'},
      {"~/.config/Cache/", '-'},
      {"~/Videos/", '-'},
      {"~/Videos/film.mkv", '+'},
      {"~/Dropbox/a.txt", '-'},
      {"~/.local/share/Steam/steamapps/shadercache/1/", '+'},
      {"~/.local/share/Steam/", '-'},
  };
  for (const char* name :
       {"Desktop", "Documents", "Downloads", "Movies", "Music", "Pictures", "Public", "Applications", ".Trash"}) {
    cases.emplace_back(std::string("~/") + name + "/", '-');
    cases.emplace_back(std::string("~/") + name + "/x/", '+');
  }
  for (const char* name : {".ssh", ".gnupg", ".aws", ".kube", ".azure", ".password-store"}) {
    cases.emplace_back(std::string("~/") + name + "/", '-');
    cases.emplace_back(std::string("~/") + name + "/a/b/", '-');
  }
  for (const char* name : {"Keychains", "Preferences", "Mobile Documents", "CloudStorage", "Messages", "Accounts",
                           "Cookies", "Safari", "Autosave Information", "Application Scripts", "LaunchAgents",
                           "Calendars", "Passes", "IdentityServices", "Sharing", "HomeKit", "Photos"}) {
    cases.emplace_back(std::string("~/Library/") + name + "/", '-');
    cases.emplace_back(std::string("~/Library/") + name + "/a/", '-');
  }
  for (const char* name : {"Containers", "Group Containers", "Developer"}) {
    cases.emplace_back(std::string("~/Library/") + name + "/", '-');
    cases.emplace_back(std::string("~/Library/") + name + "/a/", '+');
  }
  expectAnswers(home.gate, home, cases);
  FileEntry link = fileEntry(home.at("~/link"));
  link.kind = FileEntry::Kind::symbolicLink;
  EXPECT_FALSE(home.gate.canMoveToTrash(link));
}

TEST(StorageTrashGate, KeepsWhatAnInstalledFlatpakKeeps) {
  TemporaryHome disk;
  disk.build({{".local/share/flatpak/app/org.x.Installed/current"}});
  const JudgedHome home(disk.places());
  for (const auto& [path, mayGo] :
       std::vector<std::pair<std::string, bool>>{{"~/.var/app", false},
                                                 {"~/.var/app/org.x.Installed", false},
                                                 {"~/.var/app/org.x.Installed/data", false},
                                                 {"~/.var/app/org.x.Installed/cache", true},
                                                 {"~/.var/app/org.x.Installed/cache/x", true},
                                                 {"~/.var/app/org.x.Gone", true},
                                                 {"~/.var/app/org.x.Gone/data", true}}) {
    EXPECT_EQ(home.gate.canMoveToTrash(folderEntry(home.at(path))), mayGo) << path;
  }
}

TEST(StorageTrashGate, LetsGoNearlyAllOnTheDrivesOfAPerson) {
  JudgedHome home;
  const auto drive = [](const char* point, MountKind kind = MountKind::local) {
    return Mount{.id = 2, .point = point, .type = "ext4", .kind = kind, .device = point, .source = "/dev/sdb1"};
  };
  home.mounts.all.push_back(drive("/media/anna/Backup"));
  home.mounts.all.push_back(drive("/mnt/share", MountKind::network));
  home.mounts.all.push_back(drive("/data"));
  const StorageTrashGate gate(home.reader, home.mounts, home.places);
  expectAnswers(gate, home,
                {{"/Volumes/Backup/", '-'},
                 {"/Volumes/Backup/Users/", '-'},
                 {"/Volumes/Backup/Users/x", '-'},
                 {"/Volumes/Backup/Movies/a.mov", '+'},
                 {"/Volumes/", '-'},
                 {"/media/anna/Backup/", '-'},
                 {"/media/anna/Backup/Movies/", '+'},
                 {"/media/anna/Backup/Users/x", '-'},
                 {"/media/anna/Backup/lost+found/", '-'},
                 {"/media/anna/Backup/.Trash-1000/files/x", '-'},
                 {"/media/anna/Backup/games/steamapps/common/Game/", '-'},
                 {"/media/anna/", '-'},
                 {"/media/anna/Other/x", '-'},
                 {"/mnt/share/x", '-'},
                 {"/data/x", '-'}});
}

TEST(StorageTrashGate, SeesTheStartupDriveBehindItsName) {
  JudgedHome home;
  int asked = 0;
  class Reader final : public FileReader {
   public:
    explicit Reader(int& count) : count_(count) {}
    SystemResult<Descriptor> openFolder(std::string_view, LinkPolicy) const override { return nothing(); }
    SystemResult<Descriptor> openFolder(const Descriptor&, const char*) const override { return nothing(); }
    SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor&, FolderScratch&) const override {
      return nothing();
    }
    SystemResult<FileAttributes> attributes(const Descriptor&, const char*) const override { return nothing(); }
    SystemResult<FileAttributes> attributes(const Descriptor&) const override { return nothing(); }
    SystemResult<FileAttributes> attributes(std::string_view, LinkPolicy) const override { return nothing(); }
    SystemResult<std::string> realPath(std::string_view path) const override {
      ++count_;
      return std::string(path == "/Volumes/Main" ? "/" : path);
    }

   private:
    static std::unexpected<SystemError> nothing() { return std::unexpected(SystemError{ENOENT}); }
    int& count_;
  };
  const Reader reader(asked);
  const StorageTrashGate gate(reader, home.mounts, home.places);
  expectAnswers(gate, home,
                {{"/Volumes/Main/home/anna/x", '-'}, {"/Volumes/Main/etc/", '-'}, {"/Volumes/Other/x", '+'}});
  EXPECT_EQ(asked, 2) << "once for each name";
}

TEST(StorageTrashGate, KnowsFoldersThatToolsMakeAgain) {
  const TemporaryHome disk;
  const JudgedHome home(disk.places());
  for (const char* root : {"~/.cache", "~/Library/Caches", "~/.gradle/caches", "~/.gradle/wrapper", "~/.npm/_cacache",
                           "~/Library/Developer/Xcode/DerivedData", "~/.gradle", "~/.config/Slack/Code Cache"}) {
    EXPECT_TRUE(home.gate.isRegenerableRoot(home.at(root))) << root;
    EXPECT_FALSE(home.gate.isRegenerableRoot(home.at(root) + "/x")) << root;
  }
  EXPECT_FALSE(home.gate.isRegenerableRoot("/.cache"));
  for (const char* own : {".gradle/gradle.properties", ".gradle/init.d/"}) {
    TemporaryHome tended;
    tended.build({{own}});
    const JudgedHome judged(tended.places());
    EXPECT_FALSE(judged.gate.isRegenerableRoot(judged.at("~/.gradle"))) << own;
    EXPECT_TRUE(judged.gate.canMoveToTrash(folderEntry(judged.at("~/.gradle")))) << "by the other road";
  }
}

}  // namespace
}  // namespace lumenary
