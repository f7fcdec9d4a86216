#include "cleanup/TrashContents.h"

#include <algorithm>
#include <cerrno>
#include <set>

#include "base/CheckedSum.h"
#include "base/Unicode.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

using enum TrashEmptyResult::Kind;

constexpr std::string_view notAllowedNumber = "-1743";
constexpr std::string_view cancelledNumber = "-128";
constexpr std::string_view tooLongNumber = "-1712";

/// The sentence for an error number with its minus sign.
TrashEmptyResult failureOf(std::string_view number) {
  if (number == notAllowedNumber) {
    return {failed,
            "Hearthkeep isn't allowed to control Finder. Turn it on in System Settings › Privacy & Security › "
            "Automation."};
  }
  if (number == cancelledNumber) {
    return {failed, "The request was cancelled."};
  }
  if (number == tooLongNumber) {
    return {failed, "Finder took too long. It may still be emptying the Trash."};
  }
  return {failed, "A file in the Trash may be locked or in use. (Finder error " + std::string(number) + ")"};
}

/// The last "(-NUMBER)" without its brackets; empty where there is none.
std::string_view lastErrorNumber(std::string_view errors) {
  for (std::size_t open = errors.rfind("(-"); open != std::string_view::npos && open < errors.size();
       open = open == 0 ? std::string_view::npos : errors.rfind("(-", open - 1)) {
    const std::string_view rest = errors.substr(open + 2);
    const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    if (digits > 0 && rest.substr(digits).starts_with(')')) {
      return errors.substr(open + 1, digits + 1);
    }
  }
  return {};
}

/// No value where the folder can't be read.
std::optional<bool> holdsAnything(const FileReader& reader, const Descriptor& folder) {
  FolderScratch scratch;
  for (;;) {
    const auto entries = reader.nextEntries(folder, scratch);
    if (!entries) {
      return std::nullopt;
    }
    if (entries->empty()) {
      return false;
    }
    const auto counts = [](const FolderEntry& entry) { return std::string_view(entry.name) != ".DS_Store"; };
    if (std::ranges::any_of(*entries, counts)) {
      return true;
    }
  }
}

std::string numberOf(const SystemError& cause) {
  return cause.code == ETIMEDOUT ? std::string(tooLongNumber) : "-" + std::to_string(cause.code);
}

}  // namespace

TrashEmptyResult emptyTrash(TrashBin& bin, const EmptyingProgress& progress, const std::stop_token& stop) {
  const TrashEmptying emptying = bin.empty(progress, stop);
  if (emptying.isUnreachable) {
    return {failed, "Finder couldn't be reached."};
  }
  if (emptying.isCancelled) {
    return failureOf(cancelledNumber);
  }
  if (emptying.cause.code != 0 || emptying.leftCount > 0) {
    return failureOf(numberOf(emptying.cause));
  }
  return {emptying.removedCount == 0 ? alreadyEmpty : emptied};
}

TrashEmptyResult interpretEmptyTrash(int status, std::string_view output, std::string_view errors) {
  if (status == 0) {
    return {trimmed(output) == "empty" ? alreadyEmpty : emptied};
  }
  const std::string_view number = lastErrorNumber(errors);
  return number.empty() ? TrashEmptyResult{failed, "Finder couldn't empty the Trash."} : failureOf(number);
}

std::optional<std::int64_t> trashSize(const FileReader& reader, const std::string& folder) {
  const auto opened = reader.openFolder(folder, LinkPolicy::follow);
  const auto holds = opened ? holdsAnything(reader, *opened) : std::nullopt;
  if (!holds) {
    return std::nullopt;
  }
  return *holds ? std::max<std::int64_t>(1, allocatedSize(reader, folder)) : 0;
}

std::optional<std::int64_t> totalTrashSize(const FileReader& reader, std::span<const std::string> folders) {
  std::int64_t total = 0;
  std::set<FileIdentity> counted;
  for (const std::string& folder : folders) {
    const auto attributes = reader.attributes(folder, LinkPolicy::follow);
    if (attributes && !counted.insert(attributes->identity).second) {
      continue;
    }
    const bool isMissing = !attributes && attributes.error().isMissing();
    const auto size = isMissing ? std::optional<std::int64_t>(0) : trashSize(reader, folder);
    if (!size && &folder == folders.data()) {
      return std::nullopt;
    }
    total = checkedSum(total, size.value_or(0));
  }
  return total;
}

}  // namespace lumenary
