#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "base/Date.h"
#include "platform/Descriptor.h"
#include "platform/FileIdentity.h"
#include "platform/FileReader.h"
#include "platform/SystemError.h"

/// The way out and the way back: the only interface through which an item leaves its place or returns to it.
namespace lumenary {

/// An item that was looked at through its opened parent. The check and the move act on this one value, so that
/// nothing can be swapped in between.
struct OpenedItem {
  Descriptor parent;
  std::string path;  ///< standardised; the parent was reached through no link
  std::string name;  ///< the last component of `path`
  FileIdentity identity;
};

/// Opens the parent of `path` through no link, and looks at the item without following it.
SystemResult<OpenedItem> openItem(const FileReader& reader, const std::string& path);

/// Why an item stays where it is. Each has one sentence for the person.
enum class TrashRefusal : std::uint8_t {
  changed,        ///< another thing stands there than the one that was confirmed
  missing,        ///< nothing stands there
  guarded,        ///< on the guard list, or the list could not be made
  mountInside,    ///< something is mounted on it or inside it
  unchangeable,   ///< it, or something in it, is marked immutable or append-only
  foreignInside,  ///< a folder of another user stands in it, and the Trash could not be emptied of it
  folderClosed,   ///< the folder around it, or the item, can't be changed by this person
  readOnlyVolume,
  noTrash,           ///< no Trash folder can be used on its volume
  onlyByCopy,        ///< its file system can move it only as a copy (an overlay, a quota of a project)
  noFreeName,        ///< no free name in the Trash
  noExclusiveMove,   ///< the file system can't move a folder without the risk of overwriting
  noSpace,           ///< the disk is full
  recordUnwritable,  ///< the record that must stand before the move can't be written
  occupied,          ///< restore: something stands at the former place
  parentGone,        ///< restore: the folder around the former place is gone or reached through a link
  parentClosed,      ///< restore: it can't be opened by this person
  notInTrash,        ///< restore: the recorded item isn't in the Trash any more
  failed,            ///< any other error of the system
};

struct TrashError {
  TrashRefusal refusal = TrashRefusal::failed;
  SystemError cause{};    ///< code 0 where no call failed
  bool isSettled = true;  ///< false: something of the attempt is left in the Trash's folders; `settle` puts it right

  /// The sentence for the person.
  std::string description() const;
  bool operator==(const TrashError&) const = default;
};

/// What is about to happen, written down before it does.
struct TrashIntent {
  std::string originalPath;
  std::string trashPath;  ///< …/files/NAME
  FileIdentity identity;
  Date date;  ///< of the move, which its info file carries; of the record, where the item is put back
};

/// Takes an intent down durably before the act goes on. An error stops the act with nothing moved.
class IntentRecorder {
 public:
  virtual ~IntentRecorder() = default;
  virtual SystemResult<void> intend(const TrashIntent& intent) = 0;
};

/// An act that was done, and read back from the disk.
struct TrashedItem {
  std::string trashPath;  ///< …/files/NAME; empty on a system that doesn't tell where an item went
  bool isSettled = true;  ///< false: done, but not surely on the disk yet, or an info file is left; see `settle`
};

/// Where an intended act ended, read from the disk.
enum class ActState : std::uint8_t {
  atOrigin,  ///< the item stands at its original path
  inTrash,   ///< the item stands in the Trash, with its info file
  neither,   ///< it stands in neither place any more
  unknown,   ///< the disk could not be read (a volume that is away); settle it another time
};

/// Blocks. One thread at a time.
class Trash {
 public:
  virtual ~Trash() = default;

  /// Refuses what this person may not move, or what could be moved but not emptied afterwards. Changes nothing.
  virtual std::expected<void, TrashError> check(const OpenedItem& item) = 0;
  /// Moves the item to the Trash of its own file system. Never copies, never overwrites, never follows a link, never
  /// deletes. `allocatedBytes` is the measured size of a folder, for the Trash's own list of sizes.
  virtual std::expected<TrashedItem, TrashError> move(const OpenedItem& item, std::int64_t allocatedBytes,
                                                      IntentRecorder& recorder) = 0;
  /// Moves the item at `trashPath` back to `originalPath`, if it is the one that came from there, by an act that was on
  /// record at `recorded`: what went to the Trash later is another one.
  virtual std::expected<TrashedItem, TrashError> putBack(const std::string& trashPath, const std::string& originalPath,
                                                         Date recorded, IntentRecorder& recorder) = 0;
  /// Looks where an act that was intended by a process that died has ended, and makes the info file agree with it.
  virtual ActState settle(const TrashIntent& intent) = 0;
  /// Writes the sizes of the folders moved so far to the Trash's list of sizes. Best effort.
  virtual void writeSizes() = 0;
};

}  // namespace lumenary
