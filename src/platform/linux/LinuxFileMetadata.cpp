#include "platform/linux/LinuxFileMetadata.h"

#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <set>

#include "base/Text.h"
#include "platform/linux/RecentFiles.h"

namespace lumenary {
namespace {

constexpr std::size_t recentFilesLimit = std::size_t{16} * 1024 * 1024;
constexpr std::size_t addressLimit = 8192;
constexpr std::size_t longestHost = 253;
constexpr std::array<std::string_view, 4> schemes = {"http://", "https://", "ftp://", "ftps://"};
constexpr std::array<const char*, 2> addressAttributes = {"user.xdg.origin.url", "user.xdg.referrer.url"};

bool isOfHostName(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-' || letter == '.' ||
         letter == '_';
}

bool isOfHostNumber(char letter) {
  return (letter >= 'a' && letter <= 'f') || (letter >= '0' && letter <= '9') || letter == ':' || letter == '.';
}

std::optional<std::string> attribute(const std::string& path, const char* name) {
  std::array<char, addressLimit> value{};
  const ssize_t length = ::lgetxattr(path.c_str(), name, value.data(), value.size());
  return length <= 0 ? std::nullopt : std::optional(std::string(value.data(), static_cast<std::size_t>(length)));
}

}  // namespace

std::optional<Date> LinuxFileMetadata::lastOpened(std::span<const std::string> paths) const {
  const auto text = files_.read(recentFiles_, recentFilesLimit);
  if (!text) {
    return std::nullopt;
  }
  const std::set<std::string, std::less<>> wanted(paths.begin(), paths.end());
  std::optional<Date> newest;
  forEachRecentFile(*text, [&](const RecentFile& file) {
    if (wanted.contains(file.path)) {
      newest = std::max(newest.value_or(file.opened), file.opened);
    }
  });
  return newest;
}

std::optional<std::string> LinuxFileMetadata::downloadedFrom(const std::string& path) const {
  for (const char* name : addressAttributes) {
    const auto address = attribute(path, name);
    if (auto host = address ? hostOfAddress(*address) : std::nullopt) {
      return host;
    }
  }
  return std::nullopt;
}

std::optional<std::string> hostOfAddress(std::string_view address) {
  const std::string lowered = loweredASCII(address.substr(0, addressLimit));
  const auto* const scheme =
      std::ranges::find_if(schemes, [&](std::string_view each) { return lowered.starts_with(each); });
  if (scheme == schemes.end()) {
    return std::nullopt;
  }
  std::string_view host = std::string_view(lowered).substr(scheme->size());
  host = host.substr(0, host.find_first_of("/?#\\"));
  // Whatever stands before the last "@" says who asks, and may look like a host.
  host.remove_prefix(host.rfind('@') + 1);
  const bool isNumber = host.starts_with('[') && host.contains(']');
  host = isNumber ? host.substr(1, host.find(']') - 1) : host.substr(0, host.find(':'));
  host.remove_prefix(host.starts_with("www.") ? 4 : 0);
  const bool isHost = !host.empty() && host.size() <= longestHost && !host.starts_with('.') &&
                      std::ranges::all_of(host, isNumber ? isOfHostNumber : isOfHostName);
  return isHost ? std::optional(std::string(host)) : std::nullopt;
}

}  // namespace lumenary
