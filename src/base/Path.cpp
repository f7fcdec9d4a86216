#include "base/Path.h"

#include <algorithm>
#include <utility>

namespace lumenary {

bool isStandard(std::string_view path) {
  if (path == "/") {
    return true;
  }
  while (path.starts_with('/')) {
    path.remove_prefix(1);
    const std::string_view component = path.substr(0, path.find('/'));
    if (component.empty() || component == "." || component == "..") {
      return false;
    }
    path.remove_prefix(component.size());
    if (path.empty()) {
      return true;
    }
  }
  return false;
}

std::string standardise(std::string_view path) {
  std::string result;
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string_view component = path.substr(begin, end - begin);
    if (component == "..") {
      result.erase(std::min(result.rfind('/'), result.size()));
    } else if (!component.empty() && component != ".") {
      result.append("/").append(component);
    }
    begin = end + 1;
  }
  return result.empty() ? "/" : result;
}

std::string standardised(std::string path) { return isStandard(path) ? std::move(path) : standardise(path); }

std::string_view lastPathComponent(std::string_view path) {
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string_view pathExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == 0 || dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string_view parentPath(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string_view::npos ? "/" : path.substr(0, slash);
}

std::size_t pathComponentCount(std::string_view path) {
  return path == "/" ? 1 : 1 + static_cast<std::size_t>(std::ranges::count(path, '/'));
}

std::string appendingPathComponent(std::string_view folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  path = folder;
  if (!path.ends_with('/')) {
    path += '/';
  }
  return path.append(name);
}

bool isSameOrInside(std::string_view path, std::string_view ancestor) {
  return path.starts_with(ancestor) &&
         (path.size() == ancestor.size() || ancestor.ends_with('/') || path[ancestor.size()] == '/');
}

}  // namespace lumenary
