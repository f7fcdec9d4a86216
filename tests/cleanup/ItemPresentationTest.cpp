#include <gtest/gtest.h>

#include "cleanup/CleanupTier.h"
#include "cleanup/ItemPresentation.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

TEST(ItemPresentation, NamesAndPlacesWhatAFileNameDoesNotTell) {
  const JudgedHome home;
  struct Case {
    std::string path;
    std::string name;
    std::string location;
  };
  const std::vector<Case> cases = {
      {"~/Library/Application Support/Claude/vm_bundles/a/rootfs.img", "Claude virtual machine disk",
       "Claude · Local virtual machine data · rootfs.img"},
      {"~/.ollama/models/blobs/sha256-0123456789abcdefgh", "Ollama AI model file",
       "Ollama · Downloaded local AI model · sha256-0123456789a…"},
      {"~/.ollama/models/blobs/ééééééééééééééééééééé", "Ollama AI model file",
       "Ollama · Downloaded local AI model · éééééééééééééééééé…"},
      {"~/.cache/huggingface/hub/models--org--Big/blobs/x", "Hugging Face model cache — org--Big",
       "Hugging Face · Downloaded model cache"},
      {"~/.cache/huggingface/x", "Hugging Face model cache", "Hugging Face · Downloaded model cache"},
      {"~/Library/Android/sdk/system-images/a.img", "Android SDK system image",
       "~/Library/Android/sdk/system-images/a.img"},
      {"/opt/homebrew/var/postgresql@14/base", "PostgreSQL database storage", "PostgreSQL · Local database data"},
      {"~/Library/Group Containers/group.net.whatsapp.x/a.zip", "WhatsApp media archive",
       "WhatsApp · Local media storage · a.zip"},
      {"~/Library/Group Containers/group.net.whatsapp.x/a.bin", "a.bin", "WhatsApp · Local media storage · a.bin"},
      {"~/.codex/thread_history.db", "Codex conversation history",
       "Codex · Local conversation data · thread_history.db"},
      {"~/.android/avd/p.avd/userdata-qemu.img", "Android emulator user data",
       "Android Studio · Virtual device storage · userdata-qemu.img"},
      {"~/.android/avd/p.avd/rootfs.img", "Android emulator system image",
       "Android Studio · Virtual device storage · rootfs.img"},
      {"~/.android/avd/p.avd/ram.bin", "Android emulator saved memory",
       "Android Studio · Virtual device storage · ram.bin"},
      {"~/.android/avd/p.avd/x", "Android emulator file", "Android Studio · Virtual device storage · x"},
      {"~/.docker/x", "Docker data layer", "Docker Desktop · Managed application data · x"},
      {"~/Library/Containers/com.docker.docker/Docker.raw", "Docker data layer",
       "Docker Desktop · Managed application data · Docker.raw"},
      {"/srv/sha256-abc", "Docker data layer", "/srv"},
      {"~/Library/Application Support/Google/Chrome/x/weights.bin", "Chrome on-device AI model",
       "Application support · weights.bin"},
      {"/srv/weights.bin", "AI model data", "/srv"},
      {"~/x/Cursor/User/state.vscdb", "Cursor workspace database", "~/x/Cursor/User/state.vscdb"},
      {"/state.vscdb", "App state database", "/"},
      {"~/Library/Caches/x/data", "data", "Temporary app data · data"},
      {"~/Downloads/A.DMG", "Installer — A.DMG", "~/Downloads/A.DMG"},
      {"~/a.tar.gz", "Archive — a.tar.gz", "~/a.tar.gz"},
      {"~/a.MKV", "Video — a.MKV", "~/a.MKV"},
      {"~/a.txt", "a.txt", "~/a.txt"},
      {"/home/annabel/a.txt", "a.txt", "/home/annabel"},
  };
  for (const auto& [path, name, location] : cases) {
    const FileEntry entry = fileEntry(home.at(path));
    EXPECT_EQ(friendlyName(entry), name) << path;
    EXPECT_EQ(friendlyLocation(entry, home.places.home), location) << path;
  }
}

TEST(ItemPresentation, SaysWhatARemovalDoes) {
  const JudgedHome home;
  const std::string docker = "Managed by Docker Desktop. Remove images and containers from Docker instead.";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"~/Library/Caches/",
       "Safe to remove. Apps and tools rebuild this when needed, so the first launch or build afterwards may be "
       "slower. "
       "Quit them first."},
      {"~/Library/Application Support/Claude/vm_bundles/a",
       "Claude manages this virtual machine. Removing one internal file could stop Claude features from working."},
      {"~/.ollama/models/blobs/sha256-1",
       "This is part of an Ollama model. Remove the model through Ollama so its files stay consistent."},
      {"~/.cache/huggingface/x",
       "Safe to redownload later. The related AI model may take time and bandwidth to download again."},
      {"/opt/homebrew/var/postgresql/x",
       "This contains live database data. Remove databases through PostgreSQL, not as individual files."},
      {"~/Library/x/group.net.whatsapp/a",
       "May remove locally stored WhatsApp media. Confirm the media exists elsewhere before deleting."},
      {"~/.codex/x", "Removes local Codex history or state."},
      {"~/Library/Android/sdk/system-images/x",
       "Android Studio needs this image for matching emulators. Uninstall it through SDK Manager."},
      {"~/.android/avd/x", "May reset or break an Android virtual device. Close Android Studio first."},
      {"~/.docker/x", docker},
      {"~/Library/Containers/com.docker.docker/x", docker},
      {"~/Documents/sha256-abc", docker},
      {"/Library/Caches/x", "Usually temporary. Close the related app before removing it."},
      {"~/.cache/foo/x", "Usually temporary. Close the related app before removing it."},
      {"/Applications/Foo.app/", "Uninstalls this app. Its settings stay in Library until you remove them too."},
      {"~/Library/Foo/x", "App data. Removing it can reset the app or lose its local data. Quit the app first."},
      {"~/Documents/a.txt", "This is one of your files. Open or reveal it if you are unsure."},
      {"~/stuff/a.bin", "Look at the file before moving it to Trash."},
      {"/etc/passwd", "This location is protected from direct removal."},
  };
  for (const auto& [text, sentence] : cases) {
    const std::string path = home.at(text);
    const FileEntry entry = path.ends_with('/') ? folderEntry(path.substr(0, path.size() - 1)) : fileEntry(path);
    EXPECT_EQ(deletionImpact(entry, home.gate), sentence) << text;
  }
}

TEST(CleanupTier, FollowsGateCatalogAndPlace) {
  const JudgedHome home;
  using enum CleanupTier;
  const std::vector<std::pair<std::string, CleanupTier>> cases = {
      {"/etc/passwd", managed},
      {"~/Documents/", managed},
      {"~/.npm/_cacache/", recommended},
      {"~/.codex/sessions/x", review},
      {"~/Library/Application Support/Cursor/User/globalStorage/state.vscdb", managed},
      {"~/Library/Caches/", recommended},
      {"~/work/caches/x", recommended},
      {"~/work/.cache/x", recommended},
      {"~/work/x", review},
      {"~/.cache/pypoetry/", review},
  };
  for (const auto& [text, tier] : cases) {
    const std::string path = home.at(text);
    const FileEntry entry = path.ends_with('/') ? folderEntry(path.substr(0, path.size() - 1)) : fileEntry(path);
    EXPECT_EQ(cleanupTier(entry, home.catalog, home.gate), tier) << text;
  }
}

}  // namespace
}  // namespace lumenary
