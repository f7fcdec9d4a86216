#pragma once

#include <optional>
#include <span>
#include <stop_token>
#include <vector>

#include "platform/FileReader.h"
#include "storage/ScanState.h"
#include "storage/WorkExchange.h"

namespace lumenary {

/// One of the threads that read a tree. See the head of ScanWorker.cpp for how they go about it.
class ScanWorker {
 public:
  /// All references must outlive the worker; `root` is the root's open folder.
  ScanWorker(const FileReader& reader, const Descriptor& root, ScanState& state, WorkExchange& exchange,
             std::stop_token stop);

  /// Works until the whole tree is read or a stop is requested. `first` is where this worker begins.
  void run(std::optional<OpenFolder> first);

 private:
  // How it goes through the tree.
  void readPending();
  std::optional<OpenFolder> open(const OpenFolder& around, FolderID id);
  void leaveFinished();
  bool reopen(OpenFolder& folder);
  Descriptor climbTo(const OpenFolder& folder) const;
  Descriptor descendTo(const OpenFolder& folder) const;
  bool isStill(const OpenFolder& folder, const Descriptor& opened) const;
  void push(OpenFolder folder, std::span<const FolderRange> ranges);

  // How it reads a folder: the only place where the scan asks the file system for what stands in it.
  void list(OpenFolder folder);
  void look(const OpenFolder& folder, std::span<const FolderEntry> entries);
  void measure(const OpenFolder& folder, const FolderEntry& entry);

  // How it shares.
  bool giveEntries(const OpenFolder& folder);
  void giveFolders();
  void workOn(WorkExchange::Work work);

  const FileReader& reader_;
  const Descriptor& root_;
  ScanState& state_;
  WorkExchange& exchange_;
  const std::stop_token stop_;

  std::vector<PendingFolders> levels_;  ///< each one's folder stands above the next one's
  OpenFolder last_;                     ///< the folder read or left last, kept open as a way back up
  FolderScratch scratch_;
  Listing listing_;
  std::vector<FolderRange> ranges_;
};

}  // namespace lumenary
