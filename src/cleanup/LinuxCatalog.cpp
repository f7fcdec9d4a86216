#include "cleanup/LinuxCatalog.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "base/Path.h"

namespace lumenary {
namespace {

using Verdict = CleanupCatalog::Verdict;

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

/// A "*" may stand once in a component.
bool fitsStarred(std::string_view pattern, std::string_view component) {
  const std::size_t star = pattern.find('*');
  return component.size() + 1 >= pattern.size() && component.starts_with(pattern.substr(0, star)) &&
         component.ends_with(pattern.substr(star + 1));
}

/// A folder of the patterns, with what they say below it. A path is followed down from the top: it costs a look at each
/// of its components, not at each row.
class PatternTree {
 public:
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  /// What the patterns below this folder say of a path below it.
  struct Found {
    std::size_t row = none;  ///< the first in the table
    std::string_view starred;
    bool holdsReview = false;
    bool holdsKept = false;
  };

  void add(std::string_view pattern, std::size_t row, Verdict verdict) {
    if (pattern.empty()) {
      row_ = std::min(row_, row);
      return;
    }
    holdsReview_ = holdsReview_ || verdict == Verdict::review;
    holdsKept_ = holdsKept_ || verdict == Verdict::keep;
    const std::string_view component = takeComponent(pattern);
    auto& children = component.contains('*') ? starred_ : named_;
    auto place = std::ranges::lower_bound(children, component, {}, nameOf);
    if (place == children.end() || nameOf(*place) != component) {
      place = children.insert(place, {std::string(component), std::make_unique<PatternTree>()});
    }
    place->second->add(pattern, row, verdict);
  }

  void find(std::string_view path, std::string_view starred, Found& found) const {
    if (row_ < found.row) {
      found.row = row_;
      found.starred = starred;
    }
    if (path.empty()) {
      found.holdsReview = found.holdsReview || holdsReview_;
      found.holdsKept = found.holdsKept || holdsKept_;
      return;
    }
    const std::string_view component = takeComponent(path);
    const auto place = std::ranges::lower_bound(named_, component, {}, nameOf);
    if (place != named_.end() && nameOf(*place) == component) {
      place->second->find(path, starred, found);
    }
    for (const auto& [pattern, tree] : starred_) {
      if (fitsStarred(pattern, component)) {
        tree->find(path, starred.empty() ? component : starred, found);
      }
    }
  }

  /// The names of the folders right below, no starred ones.
  std::vector<std::string_view> names() const {
    std::vector<std::string_view> names;
    std::ranges::transform(named_, std::back_inserter(names), nameOf);
    return names;
  }

 private:
  using Child = std::pair<std::string, std::unique_ptr<PatternTree>>;

  static std::string_view nameOf(const Child& child) { return child.first; }

  std::vector<Child> named_;    ///< sorted
  std::vector<Child> starred_;  ///< by a pattern
  std::size_t row_ = none;
  bool holdsReview_ = false;  ///< somewhere below
  bool holdsKept_ = false;
};

struct Patterns {
  PatternTree& treeOf(char first) {
    if (first == '~') {
      return home;
    }
    return first == '*' ? anywhere : root;
  }

  PatternTree home;
  PatternTree root;
  PatternTree anywhere;
  std::vector<std::string_view> anywhereNames;  ///< by which those at any depth begin
};

const Patterns& patterns() {
  static const Patterns compiled = [] {
    Patterns made;
    const std::span<const LinuxRow> rows = linuxRows();
    for (std::size_t row = 0; row < rows.size(); ++row) {
      std::vector<std::string> texts;
      expandBraces(std::string(rows[row].pattern), texts);
      for (const std::string_view text : texts) {
        const std::size_t slash = text.find('/');
        made.treeOf(text.front()).add(text.substr(slash + 1), row, verdictOf(rows[row]));
      }
    }
    made.anywhereNames = made.anywhere.names();
    return made;
  }();
  return compiled;
}

}  // namespace

Verdict verdictOf(const LinuxRow& row) {
  const auto* rule = std::get_if<CleanupCatalog::Rule>(&row.rule);
  return rule == nullptr ? std::get<LinuxRow::Template>(row.rule)("").verdict : rule->verdict;
}

LinuxMatch matchLinuxRows(std::string_view path, std::string_view home) {
  const Patterns& known = patterns();
  PatternTree::Found found;
  if (path.starts_with('/')) {
    known.root.find(path.substr(1), {}, found);
  }
  if (path.size() > home.size() + 1 && isSameOrInside(path, home)) {
    known.home.find(path.substr(home.size() + 1), {}, found);
  }
  for (const std::string_view name : known.anywhereNames) {
    for (std::size_t at = path.find(name); at != std::string_view::npos; at = path.find(name, at + 1)) {
      if (at > 0 && path[at - 1] == '/') {
        known.anywhere.find(path.substr(at), {}, found);
      }
    }
  }
  return {.row = found.row == PatternTree::none ? nullptr : &linuxRows()[found.row],
          .starred = found.starred,
          .holdsReview = found.holdsReview,
          .holdsKept = found.holdsKept};
}

bool mustStayOnLinux(std::string_view path, std::string_view home) {
  const LinuxMatch match = matchLinuxRows(path, home);
  return match.holdsKept || (match.row != nullptr && verdictOf(*match.row) == Verdict::keep);
}

}  // namespace lumenary
