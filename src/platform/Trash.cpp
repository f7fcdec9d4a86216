#include "platform/Trash.h"

#include "base/Path.h"

namespace lumenary {

SystemResult<OpenedItem> openItem(const FileReader& reader, const std::string& path) {
  OpenedItem item;
  item.path = standardise(path);
  item.name = std::string(lastPathComponent(item.path));
  auto parent = reader.openFolder(parentPath(item.path), LinkPolicy::refuse);
  if (!parent) {
    return std::unexpected(parent.error());
  }
  item.parent = *std::move(parent);
  // The root has no name inside a folder; it is looked at as itself, and the guard list keeps it.
  const auto attributes =
      item.path == "/" ? reader.attributes(item.parent) : reader.attributes(item.parent, item.name.c_str());
  if (!attributes) {
    return std::unexpected(attributes.error());
  }
  item.identity = attributes->identity;
  return item;
}

std::string TrashError::description() const {
  switch (refusal) {
    case TrashRefusal::changed:
      return "The item changed since it was reviewed. Refresh before continuing.";
    case TrashRefusal::missing:
      return "The item no longer exists.";
    case TrashRefusal::guarded:
      return "This place is protected and stays as it is.";
    case TrashRefusal::mountInside:
      return "Another volume is mounted there, so it stays where it is.";
    case TrashRefusal::unchangeable:
      return "It is marked as unchangeable, so it stays where it is.";
    case TrashRefusal::foreignInside:
      return "It holds folders of another user, so it stays where it is.";
    case TrashRefusal::folderClosed:
      return "You don't have permission to move it, so it stays where it is.";
    case TrashRefusal::readOnlyVolume:
      return "Its volume is read-only, so it stays where it is.";
    case TrashRefusal::noTrash:
      return "Its volume has no Trash that can be used, so it stays where it is.";
    case TrashRefusal::onlyByCopy:
      return "Its volume could move it only by copying it, so it stays where it is.";
    case TrashRefusal::noFreeName:
      return "The Trash has no free name for it, so it stays where it is.";
    case TrashRefusal::noExclusiveMove:
      return "Its volume can't move folders safely, so it stays where it is.";
    case TrashRefusal::noSpace:
      return "The disk is too full to write down the move first, so it stays where it is.";
    case TrashRefusal::recordUnwritable:
      return "The move can't be written down first, so it stays where it is.";
    case TrashRefusal::occupied:
      return "The original destination is already occupied.";
    case TrashRefusal::parentGone:
      return "The original parent folder no longer exists.";
    case TrashRefusal::parentClosed:
      return "The original parent folder can't be opened.";
    case TrashRefusal::notInTrash:
      return "The recorded Trash item is no longer available.";
    case TrashRefusal::failed:
      return cause.code == 0 ? "It could not be moved." : "It could not be moved: " + cause.description() + ".";
  }
  return "It could not be moved.";
}

}  // namespace lumenary
