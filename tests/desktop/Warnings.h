#pragma once

#include <string>
#include <vector>

namespace lumenary {

/// What the toolkit complained of in the screens since the test began.
std::vector<std::string>& screenWarnings();

}  // namespace lumenary
