#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "platform/Trash.h"
#include "platform/linux/KernelFiles.h"

/// Where the Trash folders of a person are, and opening them so that nobody else can have put something in their way.
namespace lumenary {

/// An opened Trash: what is done in it is done through these descriptors.
struct TrashFolder {
  std::string path;  ///< the folder that holds `files` and `info`
  std::string top;   ///< the top folder of the volume; empty for the home Trash
  Descriptor folder;
  Descriptor files;
  Descriptor info;

  std::string pathOfItem(std::string_view name) const;
  /// How an info file of this Trash writes a path of its volume.
  std::string recordedPath(const std::string& originalPath) const;
};

class TrashFolders {
 public:
  TrashFolders(LinuxKernel& kernel, const FileReader& reader, const Places& places)
      : kernel_(kernel), reader_(reader), places_(places) {}

  /// The Trash of the file system that holds the opened item: the home Trash where that is the same one, otherwise the
  /// volume's shared `.Trash` if it is a real folder with the sticky bit, otherwise `.Trash-UID`. Made where it is
  /// missing.
  std::expected<TrashFolder, TrashError> openFor(const OpenedItem& item, const std::vector<Mount>& mounts);

  /// The Trash that holds `trashPath` ("…/files/NAME"), if it is one of this person's; nothing is made. ENODEV where no
  /// volume that is mounted has it.
  SystemResult<TrashFolder> openHolding(const std::string& trashPath, const std::vector<Mount>& mounts);

  /// Where Trash folders of this person may be, the home Trash first, then those of each local volume.
  std::vector<std::string> paths(const std::vector<Mount>& mounts) const;

  /// All that there are, each once, whatever mounts show it. Stricter than the others: none of its folders may be a
  /// link. `failed` is told why one that is there, and seems to be this person's, can't be used.
  std::vector<TrashFolder> openAll(const std::vector<Mount>& mounts,
                                   const std::function<void(const SystemError&)>& failed);

 private:
  enum class Missing { make, fail };

  SystemResult<Descriptor> openOwned(const Descriptor& parent, const char* name, int linkFlag, Missing missing);
  SystemResult<TrashFolder> openParts(Descriptor folder, std::string path, std::string top, int linkFlag,
                                      Missing missing);
  SystemResult<TrashFolder> openHome(Missing missing, int linkFlag = 0);
  SystemResult<TrashFolder> openShared(const Descriptor& top, const std::string& topPath, Missing missing);
  SystemResult<TrashFolder> openPrivate(const Descriptor& top, const std::string& topPath, Missing missing);
  SystemResult<bool> isHomeFileSystem(const KernelStatus& status);

  LinuxKernel& kernel_;
  const FileReader& reader_;
  const Places& places_;
};

}  // namespace lumenary
