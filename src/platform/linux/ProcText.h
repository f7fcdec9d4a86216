#pragma once

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// Texts that the kernel writes below /proc.
namespace lumenary {

/// Takes a line off the front, without its end.
inline std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// Takes a word off the front, with the blanks before it; empty at the end.
inline std::string_view takeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(" \t"));
  text.remove_prefix(word.size());
  return word;
}

/// The decimal number at the front of `text`, which must fit; `missing` where there is none.
template <std::integral Number = std::uint64_t>
Number numberAtFront(std::string_view text, Number missing = 0) {
  Number number = 0;
  return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc() ? number : missing;
}

/// Takes a number off the front; 0 where there is none.
template <std::integral Number = std::uint64_t>
Number takeNumber(std::string_view& text) {
  return numberAtFront<Number>(takeWord(text));
}

/// Reads an open file from its beginning, once: the kernel gives its own texts whole. Empty where it can't be read.
inline std::string_view readFromStart(int file, std::span<char> buffer) {
  const ssize_t count = ::pread(file, buffer.data(), buffer.size(), 0);
  return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

}  // namespace lumenary
