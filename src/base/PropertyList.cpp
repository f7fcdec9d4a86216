#include "base/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include "base/Text.h"
#include "base/XmlText.h"

namespace lumenary {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr int deepest = 64;

template <class Number>
std::optional<Number> numberOf(std::string_view text, int base = 10) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

struct Tag {
  std::string_view name;
  bool isEnd = false;    ///< </name>
  bool isEmpty = false;  ///< <name/>
};

class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text) {}

  std::optional<PropertyListValue> document() {
    const auto root = nextTag();
    if (!root || root->name != "plist" || root->isEnd || root->isEmpty) {
      return std::nullopt;
    }
    const auto first = nextTag();
    std::optional<PropertyListValue> value = first ? valueOf(*first, 0) : std::nullopt;
    return value && isEndOf("plist") && skipToMarkup() && rest_.empty() ? value : std::nullopt;
  }

 private:
  /// Leaves blanks, comments, instructions and the document type behind. False where one has no end, or where text
  /// stands in which none may.
  bool skipToMarkup() {
    for (;;) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
      std::string_view end;
      if (rest_.starts_with("<!--")) {
        end = "-->";
      } else if (rest_.starts_with("<?")) {
        end = "?>";
      } else if (rest_.starts_with("<!DOCTYPE")) {
        end = ">";
      } else {
        return rest_.empty() || rest_.starts_with('<');
      }
      const std::size_t at = rest_.find(end, end == "-->" ? 4 : 2);
      // A document type with declarations of its own could define entities.
      if (at == std::string_view::npos || (end == ">" && rest_.substr(0, at).contains('['))) {
        return false;
      }
      rest_.remove_prefix(at + end.size());
    }
  }

  std::optional<Tag> nextTag() {
    if (!skipToMarkup() || rest_.empty()) {
      return std::nullopt;
    }
    const std::size_t end = rest_.find('>');
    if (end == std::string_view::npos) {
      return std::nullopt;
    }
    std::string_view inside = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    Tag tag;
    tag.isEnd = inside.starts_with('/');
    tag.isEmpty = !tag.isEnd && inside.ends_with('/');
    inside.remove_prefix(tag.isEnd ? 1 : 0);
    inside.remove_suffix(tag.isEmpty ? 1 : 0);
    tag.name = inside.substr(0, inside.find_first_of(blanks));
    return tag.name.contains('<') ? std::nullopt : std::optional(tag);
  }

  bool isEndOf(std::string_view name) {
    const auto tag = nextTag();
    return tag && tag->isEnd && tag->name == name;
  }

  /// The text up to the end of the element `name`, entities read.
  std::optional<std::string> textOf(const Tag& tag) {
    std::string text;
    while (!tag.isEmpty) {
      const std::size_t at = rest_.find_first_of("<&");
      if (at == std::string_view::npos) {
        return std::nullopt;
      }
      text += rest_.substr(0, at);
      rest_.remove_prefix(at);
      if (rest_.starts_with("<![CDATA[")) {
        const std::size_t end = rest_.find("]]>");
        if (end == std::string_view::npos) {
          return std::nullopt;
        }
        text += rest_.substr(9, end - 9);
        rest_.remove_prefix(end + 3);
      } else if (rest_.starts_with('<')) {
        return isEndOf(tag.name) ? std::optional(text) : std::nullopt;
      } else if (!takeXmlReference(rest_, text)) {
        return std::nullopt;
      }
    }
    return text;
  }

  template <class Value>
  static std::optional<PropertyListValue> wrapped(std::optional<Value> value) {
    return value ? std::optional(PropertyListValue(std::move(*value))) : std::nullopt;
  }

  std::optional<PropertyListValue> valueOf(const Tag& tag, int depth) {
    if (tag.isEnd || depth >= deepest) {
      return std::nullopt;
    }
    if (tag.name == "dict") {
      return wrapped(dictionary(tag, depth));
    }
    if (tag.name == "array") {
      return wrapped(array(tag, depth));
    }
    if (tag.name == "true" || tag.name == "false") {
      const bool isWhole = tag.isEmpty || isEndOf(tag.name);
      return isWhole ? std::optional(PropertyListValue(tag.name == "true")) : std::nullopt;
    }
    std::optional<std::string> text = textOf(tag);
    if (!text || tag.name == "string") {
      return wrapped(std::move(text));
    }
    if (tag.name == "integer") {
      return wrapped(integerOf(withoutBlanks(*text)));
    }
    const bool isKnown = tag.name == "real" || tag.name == "date" || tag.name == "data";
    return isKnown ? std::optional(PropertyListValue(PropertyListValue::Opaque{std::move(*text)})) : std::nullopt;
  }

  static std::optional<std::int64_t> integerOf(std::string_view text) {
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    return text.starts_with("0x") ? numberOf<std::int64_t>(text.substr(2), 16) : numberOf<std::int64_t>(text);
  }

  std::optional<PropertyListValue::Array> array(const Tag& tag, int depth) {
    PropertyListValue::Array values;
    while (!tag.isEmpty) {
      const auto next = nextTag();
      if (next && next->isEnd && next->name == "array") {
        break;
      }
      std::optional<PropertyListValue> value = next ? valueOf(*next, depth + 1) : std::nullopt;
      if (!value) {
        return std::nullopt;
      }
      values.push_back(std::move(*value));
    }
    return values;
  }

  std::optional<PropertyListValue::Dictionary> dictionary(const Tag& tag, int depth) {
    PropertyListValue::Dictionary values;
    while (!tag.isEmpty) {
      const auto next = nextTag();
      if (next && next->isEnd && next->name == "dict") {
        break;
      }
      std::optional<std::string> key = next && !next->isEnd && next->name == "key" ? textOf(*next) : std::nullopt;
      const auto opening = key ? nextTag() : std::nullopt;
      std::optional<PropertyListValue> value = opening ? valueOf(*opening, depth + 1) : std::nullopt;
      if (!value) {
        return std::nullopt;
      }
      values.insert_or_assign(std::move(*key), std::move(*value));
    }
    return values;
  }

  std::string_view rest_;
};

}  // namespace

const PropertyListValue* valueAt(const PropertyListValue::Dictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? nullptr : &found->second;
}

std::optional<PropertyListValue> parsePropertyList(std::string_view text) {
  constexpr std::string_view byteOrderMark = "\uFEFF";
  text.remove_prefix(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  return isUTF8(text) ? Parser(text).document() : std::nullopt;
}

}  // namespace lumenary
