#include "cleanup/LinuxCatalog.h"

#include <algorithm>
#include <vector>

#include "base/Path.h"

namespace lumenary {
namespace {

enum class Anchor : std::uint8_t { home, root, anywhere };

/// A row's pattern without braces, cut into its components.
struct Pattern {
  const LinuxRow* row = nullptr;
  CleanupCatalog::Verdict verdict = CleanupCatalog::Verdict::keep;
  Anchor anchor = Anchor::home;
  std::vector<std::string> components;
};

/// Each text that the first pair of braces stands for, and so on for the next.
void expandBraces(const std::string& text, std::vector<std::string>& out) {
  const std::size_t open = text.find('{');
  if (open == std::string::npos) {
    out.push_back(text);
    return;
  }
  const std::size_t close = text.find('}', open);
  for (std::size_t begin = open + 1; begin <= close;) {
    const std::size_t end = std::min(text.find(',', begin), close);
    expandBraces(text.substr(0, open) + text.substr(begin, end - begin) + text.substr(close + 1), out);
    begin = end + 1;
  }
}

/// The component in front of the first slash, which is taken off `rest` with it.
std::string_view takeComponent(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('/'), rest.size());
  const std::string_view component = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return component;
}

Pattern compile(const LinuxRow& row, std::string_view text) {
  Pattern pattern{.row = &row, .verdict = verdictOf(row), .anchor = Anchor::root, .components = {}};
  if (text.starts_with("~/")) {
    pattern.anchor = Anchor::home;
    text.remove_prefix(2);
  } else if (text.starts_with("**/")) {
    pattern.anchor = Anchor::anywhere;
    text.remove_prefix(3);
  } else {
    text.remove_prefix(1);
  }
  while (!text.empty()) {
    pattern.components.emplace_back(takeComponent(text));
  }
  return pattern;
}

const std::vector<Pattern>& patterns() {
  static const std::vector<Pattern> compiled = [] {
    std::vector<Pattern> all;
    for (const LinuxRow& row : linuxRows()) {
      std::vector<std::string> texts;
      expandBraces(std::string(row.pattern), texts);
      for (const std::string& text : texts) {
        all.push_back(compile(row, text));
      }
    }
    return all;
  }();
  return compiled;
}

/// A "*" may stand once in a component.
bool fitsComponent(std::string_view pattern, std::string_view component) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    return pattern == component;
  }
  return component.size() + 1 >= pattern.size() && component.starts_with(pattern.substr(0, star)) &&
         component.ends_with(pattern.substr(star + 1));
}

enum class Fit : std::uint8_t {
  none,
  inside,  ///< the path is what the pattern speaks of, or lies in it
  around,  ///< the path is a folder in which that would lie
};

/// `relative` has no slash in front and isn't empty.
Fit fit(const Pattern& pattern, std::string_view relative, std::string_view& starred) {
  for (const std::string& expected : pattern.components) {
    if (relative.empty()) {
      return Fit::around;
    }
    const std::string_view component = takeComponent(relative);
    if (!fitsComponent(expected, component)) {
      return Fit::none;
    }
    if (starred.empty() && expected.contains('*')) {
      starred = component;
    }
  }
  return Fit::inside;
}

/// The pattern is tried from each component of the path on.
Fit fitAnywhere(const Pattern& pattern, std::string_view path, std::string_view& starred) {
  const std::string_view first = pattern.components.front();
  for (std::size_t at = path.find(first); at != std::string_view::npos; at = path.find(first, at + 1)) {
    const Fit found = at > 0 && path[at - 1] == '/' ? fit(pattern, path.substr(at), starred) : Fit::none;
    if (found != Fit::none) {
      return found;
    }
  }
  return Fit::none;
}

}  // namespace

CleanupCatalog::Verdict verdictOf(const LinuxRow& row) {
  const auto* rule = std::get_if<CleanupCatalog::Rule>(&row.rule);
  return rule == nullptr ? std::get<LinuxRow::Template>(row.rule)("").verdict : rule->verdict;
}

LinuxMatch matchLinuxRows(std::string_view path, std::string_view home) {
  LinuxMatch match;
  const bool isInHome = path.size() > home.size() + 1 && isSameOrInside(path, home);
  const std::string_view relative = isInHome ? path.substr(home.size() + 1) : std::string_view();
  for (const Pattern& pattern : patterns()) {
    Fit found = Fit::none;
    std::string_view starred;
    if (pattern.anchor == Anchor::anywhere) {
      found = fitAnywhere(pattern, path, starred);
    } else if (pattern.anchor == Anchor::root) {
      found = path.size() > 1 ? fit(pattern, path.substr(1), starred) : Fit::around;
    } else if (isInHome) {
      found = fit(pattern, relative, starred);
    }
    if (found == Fit::inside) {
      return {.row = pattern.row, .starred = starred, .holdsReview = match.holdsReview, .holdsKept = match.holdsKept};
    }
    if (found == Fit::around) {
      match.holdsReview = match.holdsReview || pattern.verdict == CleanupCatalog::Verdict::review;
      match.holdsKept = match.holdsKept || pattern.verdict == CleanupCatalog::Verdict::keep;
    }
  }
  return match;
}

bool mustStayOnLinux(std::string_view path, std::string_view home) {
  const LinuxMatch match = matchLinuxRows(path, home);
  return match.holdsKept || (match.row != nullptr && verdictOf(*match.row) == CleanupCatalog::Verdict::keep);
}

}  // namespace lumenary
