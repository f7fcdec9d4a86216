#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumenary {

/// The settings of a systemd unit: its file, and the drop-ins laid over it.
class UnitFile {
 public:
  static constexpr std::size_t byteLimit = std::size_t{1} << 20;  ///< of one file; a larger one isn't a unit

  /// Lays a file over what was read before: its values come behind the former ones of the same key, and an empty value
  /// takes those away. Lines that aren't of the format are passed over. A file that is too large or holds a NUL counts
  /// as empty.
  void read(std::string_view text);

  bool hasSection(std::string_view section) const;
  /// In their order, none of them empty.
  std::vector<std::string> values(std::string_view section, std::string_view key) const;
  /// The last one, which counts where there can be only one; empty where there is none.
  std::string value(std::string_view section, std::string_view key) const;

  using Keys = std::map<std::string, std::vector<std::string>, std::less<>>;
  const std::map<std::string, Keys, std::less<>>& sections() const { return sections_; }

 private:
  void assign(Keys& keys, std::string_view line);

  std::map<std::string, Keys, std::less<>> sections_;
};

/// What the specifiers of a unit stand for; an empty one isn't known.
struct UnitSpecifiers {
  std::string home;      ///< %h
  std::string user;      ///< %u
  std::string instance;  ///< %i and %I: what stands behind "@" in the unit's name
};

struct UnitText {
  std::string text;
  bool isResolved = false;  ///< false: a specifier whose meaning isn't known stands in it as it was
};

UnitText resolvedUnitText(std::string_view text, const UnitSpecifiers& specifiers);

/// The program that a command line of a unit starts: its first word without the prefixes "@-:+!|", quotes taken away.
/// It may be relative. None for a line without a word.
std::optional<UnitText> unitProgram(std::string_view commandLine, const UnitSpecifiers& specifiers);

/// The seconds of a time span: "90", "5min 20s", "1h 30m". None for "infinity", for what isn't one, and for one of more
/// than some thousand years.
std::optional<std::int64_t> unitTimeSpan(std::string_view text);

/// Whether the name is one that a unit may have. It may begin with a dash.
bool isUnitName(std::string_view name);
/// As systemd writes any text into the name of a unit: what isn't a letter, a digit, ":", "_" or "." becomes \xNN.
std::string unitNameEscaped(std::string_view text);

}  // namespace lumenary
