#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/AppControl.h"
#include "platform/AppNames.h"
#include "platform/AppRegistry.h"
#include "platform/ContentReader.h"
#include "platform/Defaults.h"
#include "platform/Desktop.h"
#include "platform/DurableFiles.h"
#include "platform/FileMetadata.h"
#include "platform/FileReader.h"
#include "platform/FolderWatcher.h"
#include "platform/Interruption.h"
#include "platform/MountTable.h"
#include "platform/MountWatcher.h"
#include "platform/PerfProbe.h"
#include "platform/Places.h"
#include "platform/ProcessReader.h"
#include "platform/Session.h"
#include "platform/SocketReader.h"
#include "platform/SystemCounters.h"
#include "platform/SystemFacts.h"
#include "platform/Terminal.h"
#include "platform/ToolRunner.h"
#include "platform/Trash.h"
#include "platform/TrashBin.h"
#include "platform/VolumeReader.h"

namespace lumenary {

/// Everything the operating system gives, made once at the entry and passed down.
struct Platform {
  Places places;
  std::unique_ptr<FileReader> reader;
  std::unique_ptr<ContentReader> contents;
  std::unique_ptr<MountTable> mountTable;
  std::unique_ptr<VolumeReader> volumes;
  std::unique_ptr<DurableFiles> files;
  std::unique_ptr<Trash> trash;
  std::unique_ptr<TrashBin> trashBin;
  std::unique_ptr<AppNames> appNames;
  std::unique_ptr<AppRegistry> apps;
  std::unique_ptr<FileMetadata> metadata;
  std::unique_ptr<Defaults> defaults;
  std::unique_ptr<Session> session;
  std::unique_ptr<ToolRunner> tools;
  std::unique_ptr<SystemFacts> systemFacts;
  std::unique_ptr<FolderWatcher> folderWatcher;   ///< of where apps are installed
  std::unique_ptr<FolderWatcher> supportWatcher;  ///< of the program's own files
  std::unique_ptr<MountWatcher> mountWatcher;
  std::unique_ptr<Desktop> desktop;
  std::unique_ptr<SystemCountersReader> systemCounters;
  std::unique_ptr<ProcessReader> processes;
  std::unique_ptr<SocketReader> sockets;
  std::unique_ptr<AppControl> appControl;
  std::unique_ptr<Terminal> terminal;
  std::unique_ptr<Interruption> interruption;
  std::function<Date()> now;
  PerfProbe probe;
  std::int32_t processID = 0;            ///< this process's own
  std::function<unsigned()> processors;  ///< how many this process may use, at least 1
};

/// The platform of this build, for the person who runs the process.
Platform makePlatform();

}  // namespace lumenary
