#include "cleanup/DeveloperProject.h"

#include <utility>

namespace lumenary {

std::string_view rawValue(DeveloperProject::Runtime runtime) {
  switch (runtime) {
    case DeveloperProject::Runtime::node:
      return "Node.js";
    case DeveloperProject::Runtime::python:
      return "Python";
    case DeveloperProject::Runtime::swift:
      return "Swift";
    case DeveloperProject::Runtime::other:
      return "Other";
  }
  std::unreachable();
}

}  // namespace lumenary
