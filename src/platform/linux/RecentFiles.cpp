#include "platform/linux/RecentFiles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "base/FileURL.h"
#include "base/Text.h"
#include "base/XmlText.h"

namespace lumenary {
namespace {

constexpr std::string_view blanks = " \t\r\n";

struct Markup {
  std::string_view begin;
  std::string_view end;
};

/// What is passed over as a whole.
constexpr std::array passedOver{Markup{.begin = "<!--", .end = "-->"}, Markup{.begin = "<![CDATA[", .end = "]]>"},
                                Markup{.begin = "<?", .end = "?>"}};

/// "2026-11-22T21:46:05.123456Z", with or without the fraction.
std::optional<Date> dateOf(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) {
    return parseISO8601(text);
  }
  const bool isFraction = text.ends_with('Z') && text.find_first_not_of("0123456789", point + 1) == text.size() - 1;
  return isFraction ? parseISO8601(std::string(text.substr(0, point)) + "Z") : std::nullopt;
}

class Parser {
 public:
  Parser(std::string_view text, const std::function<void(const RecentFile&)>& found) : rest_(text), found_(found) {}

  bool document() {
    for (;;) {
      rest_.remove_prefix(std::min(rest_.find('<'), rest_.size()));
      if (rest_.empty()) {
        return true;
      }
      const auto* const skipped =
          std::ranges::find_if(passedOver, [&](const Markup& markup) { return rest_.starts_with(markup.begin); });
      const bool isWhole = skipped == passedOver.end() ? tag() : skip(*skipped);
      if (!isWhole) {
        return false;
      }
    }
  }

 private:
  bool skip(const Markup& markup) {
    const std::size_t at = rest_.find(markup.end, markup.begin.size());
    if (at != std::string_view::npos) {
      rest_.remove_prefix(at + markup.end.size());
    }
    return at != std::string_view::npos;
  }

  bool tag() {
    rest_.remove_prefix(1);
    if (rest_.starts_with('/') || rest_.starts_with('!')) {
      const std::size_t end = rest_.find_first_of("<>[");
      const bool isWhole = end != std::string_view::npos && rest_[end] == '>';
      rest_.remove_prefix(isWhole ? end + 1 : 0);
      return isWhole;
    }
    const std::string_view name = takeName();
    if (name.empty()) {
      return false;
    }
    href_.clear();
    opened_.reset();
    while (!rest_.starts_with('>')) {
      if (rest_.starts_with("/>")) {
        rest_.remove_prefix(1);
      } else if (!attribute(name == "bookmark")) {
        return false;
      }
    }
    rest_.remove_prefix(1);
    if (const auto url = opened_ ? parseFileURL(href_) : std::nullopt) {
      found_({.path = url->path, .opened = *opened_});
    }
    return true;
  }

  std::string_view takeName() {
    const std::string_view name = rest_.substr(0, rest_.find_first_of(" \t\r\n=/>\"'<&"));
    rest_.remove_prefix(name.size());
    skipBlanks();
    return name;
  }

  void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size())); }

  bool attribute(bool isOfBookmark) {
    const std::string_view name = takeName();
    if (name.empty() || !rest_.starts_with('=')) {
      return false;
    }
    rest_.remove_prefix(1);
    skipBlanks();
    const char quote = rest_.empty() ? '\0' : rest_.front();
    const std::size_t end = quote == '"' || quote == '\'' ? rest_.find(quote, 1) : std::string_view::npos;
    if (end == std::string_view::npos) {
      return false;
    }
    const std::string_view value = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    skipBlanks();
    if (isOfBookmark) {
      note(name, value);
    }
    return !value.contains('<');
  }

  void note(std::string_view name, std::string_view value) {
    if (name == "href") {
      auto href = xmlText(value);
      href_ = std::move(href).value_or("");
    } else if (name == "visited" || name == "modified") {
      const auto date = dateOf(value);
      opened_ = date ? std::max(opened_.value_or(*date), *date) : opened_;
    }
  }

  std::string_view rest_;
  const std::function<void(const RecentFile&)>& found_;
  std::string href_;            ///< of the element at hand
  std::optional<Date> opened_;  ///< the same
};

}  // namespace

bool forEachRecentFile(std::string_view text, const std::function<void(const RecentFile&)>& found) {
  return isUTF8(text) && Parser(text, found).document();
}

}  // namespace lumenary
