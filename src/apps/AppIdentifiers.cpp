#include "apps/AppIdentifiers.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Text.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

constexpr auto firstPieces = std::to_array<std::string_view>({"com", "org", "net", "io", "app", "dev", "co", "us", "de",
                                                              "uk", "jp", "fr", "ru", "cn", "me", "ai", "tv", "info"});
constexpr std::size_t fewestPieces = 3;

std::vector<std::string> piecesOf(std::string_view text) {
  std::vector<std::string> pieces;
  for (;;) {
    const std::size_t dot = text.find('.');
    pieces.emplace_back(text.substr(0, dot));
    if (dot == std::string_view::npos) {
      return pieces;
    }
    text.remove_prefix(dot + 1);
  }
}

}  // namespace

std::vector<std::string> identifierPieces(std::string_view identifier) {
  std::vector<std::string> pieces = piecesOf(identifier);
  std::erase(pieces, "");
  return pieces;
}

std::vector<std::string> candidateIDs(std::string_view name) {
  const std::vector<std::string> pieces = identifierPieces(name);
  if (pieces.size() < fewestPieces) {
    return {std::string(name)};
  }
  std::vector<std::string> candidates;
  std::string joined = pieces[0];
  for (std::size_t index = 1; index < pieces.size(); ++index) {
    joined += "." + pieces[index];
    if (index + 1 >= fewestPieces) {
      candidates.push_back(joined);
    }
  }
  std::ranges::reverse(candidates);
  return candidates;
}

std::string normalized(std::string_view text) {
  std::string kept;
  for (const std::string& piece : piecesOf(text)) {
    std::string plain = alphanumericsOr(' ', piece);
    std::erase(plain, ' ');
    kept += plain + ".";
  }
  kept.pop_back();
  return caseFolded(kept);
}

bool looksLikeBundleID(std::string_view name) {
  const std::vector<std::string> pieces = piecesOf(name);
  return pieces.size() >= fewestPieces && std::ranges::find(pieces, "") == pieces.end() &&
         std::ranges::find(firstPieces, loweredASCII(pieces.front())) != firstPieces.end() && !name.contains(' ');
}

}  // namespace lumenary
