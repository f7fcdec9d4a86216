#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Random.h"
#include "storage/StorageScanResult.h"

/// The result of a scan as large as results get: 20,000 files in 30,000 folders. Always the same one, with the names
/// that stand on disks: a few words again and again, numbers, some of other alphabets, a few that are no UTF-8 or one
/// letter again and again.
class MadeScan {
 public:
  static constexpr std::size_t fileCount = 20'000;
  static constexpr std::size_t folderCount = 30'000;

  static lumenary::StorageScanResult make() { return MadeScan().takeResult(); }

 private:
  static constexpr std::string_view root = "/home/person";
  static constexpr std::array words = {"node_modules", "Library",   "build",    "cache",  "résumé",    "Fotos",
                                       "download",     "projects",  "工作資料", "Größen", "archive",   "backup",
                                       "video",        "Überblick", "invoice",  "report", "Документы", "screenshot",
                                       "model",        "training",  "dataset",  "index",  "assets",    "café au lait"};
  static constexpr std::array extensions = {".mp4", ".zip", ".JPG", ".rlib", ".pack", ".iso", ".db", ""};

  lumenary::StorageScanResult takeResult() {
    using lumenary::FileEntry;
    using lumenary::FolderByteTotals;
    std::vector<FolderByteTotals::Folder> folders = {{.path = std::string(root), .bytes = 0}};
    while (folders.size() < folderCount) {
      // Of the earlier ones rather than of all: half of the folders stand less than six levels deep.
      const std::size_t around = random_.below(random_.below(folders.size()) + 1);
      folders.push_back({.path = folders[around].path + "/" + name(folders.size()), .bytes = bytes()});
    }
    lumenary::StorageScanResult result{.root = {.path = std::string(root), .isFolder = true},
                                       .scannedAt = date(),
                                       .totalBytes = 0,
                                       .scannedItemCount = 1'234'567,
                                       .inaccessiblePaths = {},
                                       .entries = {},
                                       .categoryByteTotals = lumenary::CategoryTotals(),
                                       .folderByteTotals = {}};
    for (std::size_t index = 0; index < fileCount; ++index) {
      const std::string& around = folders[random_.below(folders.size())].path;
      const std::string fileName = name(index) + extensions.at(random_.below(extensions.size()));
      const auto category = static_cast<lumenary::StorageCategory>(random_.below(6));
      result.entries.push_back({.id = identity(),
                                .url = {.path = around + "/" + fileName, .isFolder = false},
                                .name = fileName,
                                .kind = FileEntry::Kind::file,
                                .byteCount = bytes(),
                                .modifiedAt = date(),
                                .category = category});
      (*result.categoryByteTotals)[category] += result.entries.back().byteCount;
      result.totalBytes += result.entries.back().byteCount;
    }
    for (std::size_t index = 0; index < 100; ++index) {
      result.inaccessiblePaths.push_back(folders[random_.below(folders.size())].path + "/locked");
    }
    result.folderByteTotals = FolderByteTotals(std::move(folders));
    return result;
  }

  std::string name(std::size_t number) {
    std::string text = words.at(random_.below(words.size()));
    switch (random_.below(500)) {
      case 0:
        text += "\xFF\xFE";
        break;
      case 1:
        text += std::string(100, 'e');
        break;
      default:
        break;
    }
    const std::string digits = std::to_string(number);
    return random_.below(2) == 0 ? text + " " + digits : digits + "-" + text;
  }

  std::int64_t bytes() { return static_cast<std::int64_t>(random_.between(256, 60'000) * 4096); }

  lumenary::Date date() {
    return lumenary::Date(std::chrono::seconds(1'500'000'000 + static_cast<std::int64_t>(random_.below(200'000'000))));
  }

  lumenary::UUID identity() {
    lumenary::UUID id;
    for (std::uint8_t& byte : id.bytes) {
      byte = static_cast<std::uint8_t>(random_.below(256));
    }
    return id;
  }

  Random random_ = Random(2026);
};
