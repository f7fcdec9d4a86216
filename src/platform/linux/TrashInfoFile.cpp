#include "platform/linux/TrashInfoFile.h"

#include <algorithm>
#include <chrono>

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = 64 * 1024;
/// How much later than its act an info file may be dated.
constexpr auto dateAllowance = std::chrono::minutes(2);

}  // namespace

/// A journey or the change of the clocks shifts the date in the file; the file's own date doesn't shift, and so both
/// must be later to tell of another act.
bool TrashInfoFile::Content::isOf(const std::string& originalPath, const TrashFolder& trash, Date latest) const {
  if (!info || originOf(*info, trash.top) != originalPath) {
    return false;
  }
  const std::optional<Date> deleted = info->deleted;
  return deleted && std::min(*deleted, modified) <= latest + dateAllowance;
}

TrashInfoFile::Content TrashInfoFile::read() const {
  const auto file = openAt(kernel_, trash_.info, name_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  if (!file) {
    return {.text = std::unexpected(file.error())};
  }
  const auto status = statusOf(kernel_, *file);
  if (!status) {
    return {.text = std::unexpected(status.error())};
  }
  auto text = readAll(kernel_, *file, byteLimit);
  auto info = text ? parseTrashInfo(*text) : std::nullopt;
  return {.text = std::move(text),
          .info = std::move(info),
          .modified = Date(std::chrono::seconds(status->modifiedSeconds))};
}

bool TrashInfoFile::isMissing() const {
  const auto standing = status();
  return !standing && standing.error().isMissing();
}

SystemResult<void> TrashInfoFile::write(const std::string& originalPath, Date date) const {
  const auto file = openAt(kernel_, trash_.info, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
  if (!file) {
    return std::unexpected(file.error());
  }
  auto written = writeAndSync(kernel_, *file, composeTrashInfo(trash_.recordedPath(originalPath), date));
  if (written) {
    written = sync(kernel_, trash_.info);
  }
  if (!written) {
    const auto made = statusOf(kernel_, *file);
    const auto standing = status();
    if (made && standing && made->identity == standing->identity) {
      static_cast<void>(remove());
    }
  }
  return written;
}

bool TrashInfoFile::remove() const {
  const auto removed = removeFile(kernel_, trash_.info, name_.c_str());
  return removed ? sync(kernel_, trash_.info).has_value() : removed.error().isMissing();
}

}  // namespace lumenary
