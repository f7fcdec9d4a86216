#include <chrono>
#include <utility>

#include "base/AppFormatting.h"
#include "base/Path.h"
#include "base/Text.h"
#include "cleanup/ItemEvidence.h"
#include "cleanup/RelativeAge.h"

namespace lumenary {
namespace {

using Call = ItemEvidence::Call;
using Tone = ItemEvidence::Tone;
using Fact = ItemEvidence::Fact;
using Verdict = CleanupCatalog::Verdict;

constexpr std::chrono::seconds longUnused(31'536'000);

std::string ownName(std::string_view path) {
  const std::string_view name = lastPathComponent(path);
  const std::string_view extension = pathExtension(name);
  return displayText(name.substr(0, name.size() - (extension.empty() ? 0 : extension.size() + 1)));
}

Fact ownerFact(const ItemOwner& owner) {
  const auto madeBy = [](std::string symbol, std::string value, Tone tone = Tone::neutral) {
    return Fact{.symbol = std::move(symbol), .label = "Made by", .value = std::move(value), .tone = tone};
  };
  if (owner.isInstalled == true) {
    return madeBy("app.badge.checkmark", owner.name + " · still installed");
  }
  if (owner.isGone()) {
    return madeBy("app.dashed", owner.name + " · no longer on this Mac", Tone::good);
  }
  return owner.isMakersHelper ? madeBy("app.connected.to.app.below.fill",
                                       owner.name + " · a helper from a maker whose apps are installed")
                              : madeBy("questionmark.app", "Probably " + owner.name + " (no matching app found)");
}

/// What follows from removing a thing that no rule speaks of.
std::optional<Fact> impact(const EvidenceFindings& found) {
  const auto ifRemoved = [](std::string value, Tone tone) {
    return Fact{.symbol = "exclamationmark.circle", .label = "If removed", .value = std::move(value), .tone = tone};
  };
  const std::string lowered = loweredASCII(found.path);
  if (found.isApp) {
    return lowered.ends_with(".app")
               ? ifRemoved("The app is gone. Its settings stay in Library until you clear them too.", Tone::caution)
               : ifRemoved("The app is gone. Its settings stay in your home folder until you clear them too.",
                           Tone::caution);
  }
  if (found.isCache) {
    return ifRemoved("The app rebuilds it. It may start a little slower the first time.", Tone::good);
  }
  if (found.owner && found.owner->isGone()) {
    return ifRemoved("Nothing breaks: the app is already gone. You lose any settings or saved data it left.",
                     Tone::good);
  }
  if (lowered.contains("/library/")) {
    return ifRemoved("The app may reset or lose data it keeps here. Quit it first.", Tone::caution);
  }
  return std::nullopt;
}

std::optional<Fact> madeBy(const EvidenceFindings& found) {
  if (found.installer) {
    return std::nullopt;
  }
  if (found.rule != nullptr) {
    return Fact{.symbol = "hammer", .label = "Made by", .value = found.rule->madeBy};
  }
  if (found.isApp) {
    return Fact{.symbol = "app",
                .label = "What it is",
                .value = "The app itself. Removing it uninstalls " + ownName(found.path) + "."};
  }
  return found.owner ? std::optional(ownerFact(*found.owner)) : std::nullopt;
}

std::string placeOf(const EvidenceFindings& found) {
  const std::string_view parent = parentPath(found.path);
  const bool isInHome = !found.home.empty() && isSameOrInside(parent, found.home);
  return displayText(isInHome ? "~" + std::string(parent.substr(found.home.size())) : std::string(parent));
}

void addRuleFacts(std::vector<Fact>& facts, const EvidenceFindings& found) {
  const CleanupCatalog::Rule& rule = *found.rule;
  facts.push_back({.symbol = "exclamationmark.circle", .label = "If removed", .value = rule.ifRemoved});
  if (rule.verdict == Verdict::rebuildable && !found.installer && !rule.madeBy.starts_with("You")) {
    facts.push_back({.symbol = "arrow.clockwise",
                     .label = "Comes back?",
                     .value = "Yes. " + rule.madeBy + " makes it again as you use it."});
  }
  if (rule.betterWay) {
    facts.push_back({.symbol = "lightbulb", .label = "Better way", .value = *rule.betterWay});
  }
}

std::vector<Fact> factsOf(const EvidenceFindings& found, Date now) {
  std::vector<Fact> facts;
  if (found.count > 1) {
    const std::string size = found.bytes ? " · " + AppFormatting::bytes(*found.bytes) : "";
    facts.push_back(
        {.symbol = "square.stack", .label = "Contains", .value = std::to_string(found.count) + " items" + size});
  }
  if (auto maker = madeBy(found)) {
    facts.push_back(std::move(*maker));
  }
  if (found.lastUse) {
    facts.push_back({.symbol = "clock",
                     .label = found.lastUse->isOpened ? "Last opened" : "Last changed",
                     .value = relativeAge(found.lastUse->date, now, AgeSuffix::ago) + " · " +
                              AppFormatting::dateAndTime(found.lastUse->date)});
  }
  if (found.downloadedFrom) {
    facts.push_back({.symbol = "arrow.down.circle", .label = "Came from", .value = *found.downloadedFrom});
  }
  if (found.installer) {
    facts.push_back({.symbol = "shippingbox",
                     .label = "Installer",
                     .value = "For " + found.installer->name + ", which " +
                              (found.installer->isInstalled ? "is already" : "isn't") + " in Applications."});
  }
  facts.push_back({.symbol = "mappin.and.ellipse", .label = "Where", .value = placeOf(found)});
  if (found.rule != nullptr) {
    addRuleFacts(facts, found);
  } else if (auto follows = impact(found)) {
    facts.push_back(std::move(*follows));
  }
  if (found.canTrash) {
    facts.push_back(*found.canTrash
                        ? Fact{.symbol = "arrow.uturn.backward",
                               .label = "Undo",
                               .value = "Goes to the Trash first. Put it back from Recently Cleared until you empty "
                                        "the Trash.",
                               .tone = Tone::good}
                        : Fact{.symbol = "lock",
                               .label = "Protected",
                               .value = "Hearthkeep won't move this. Reveal it in Finder if you want to look."});
  }
  return facts;
}

std::pair<Call, std::string> callOf(const EvidenceFindings& found, Date now) {
  const bool isProtected = found.canTrash == false;
  const CleanupCatalog::Rule* rule = found.rule;
  if (isProtected && rule == nullptr) {
    return {Call::keep, "Keep. macOS or an app manages this, so Hearthkeep leaves it alone."};
  }
  if (rule != nullptr && (isProtected || rule->verdict == Verdict::keep)) {
    return {Call::keep, "Keep. " + rule->what};
  }
  if (found.installer && found.installer->isInstalled) {
    return {Call::safe, "Safe to remove: an installer for " + found.installer->name + ", which you already have."};
  }
  if (rule != nullptr) {
    return rule->verdict == Verdict::rebuildable ? std::pair(Call::safe, "Safe to clear. " + rule->what)
                                                 : std::pair(Call::lookFirst, "Look first. " + rule->what);
  }
  if (found.isApp) {
    return {Call::lookFirst, "Look first: removing an app uninstalls it."};
  }
  if (found.owner && found.owner->isGone()) {
    return {Call::lookFirst, "Left by " + found.owner->name +
                                 ", which is no longer on this Mac. Usually safe once you're sure you don't need its "
                                 "saved data."};
  }
  if (found.isCache) {
    return {Call::safe, "Safe to clear: a cache. The app that made it rebuilds what it needs."};
  }
  if (found.lastUse && found.lastUse->isOpened && ageOf(found.lastUse->date, now) > longUnused) {
    return {Call::lookFirst,
            "Look first: you haven't opened this in " + relativeAge(found.lastUse->date, now, AgeSuffix::none) + "."};
  }
  if (found.owner && found.owner->isInstalled == true) {
    return {Call::lookFirst, "Look first: " + found.owner->name + " keeps data here. Removing it can reset the app."};
  }
  return {Call::lookFirst, "Look first. Hearthkeep doesn't recognise this, so here's everything it can tell."};
}

}  // namespace

ItemEvidence evidenceOf(const EvidenceFindings& findings, Date now) {
  auto [call, headline] = callOf(findings, now);
  return {.call = call, .headline = std::move(headline), .facts = factsOf(findings, now)};
}

}  // namespace lumenary
