#include <algorithm>
#include <chrono>
#include <utility>

#include "base/AppFormatting.h"
#include "core/AppModel.h"

// The tidy: the plan carried out, by a person's press or by itself.

namespace lumenary {
namespace {

constexpr std::chrono::seconds day{86'400};
constexpr std::chrono::seconds week{604'800};
constexpr double lowSpace = 0.1;
constexpr std::int64_t worthTelling = 104'857'600;

std::vector<StorageMove> movesOf(const TidyPlan& plan) {
  std::vector<StorageMove> moves;
  moves.reserve(plan.items.size());
  for (const TidyItem& item : plan.items) {
    moves.push_back({.entry = item.entry, .survivor = item.survivor});
  }
  return moves;
}

/// What of the plan went.
TidyPlan movedPlan(const TidyPlan& plan, const std::vector<CleanupOutcome>& outcomes) {
  std::vector<TidyItem> moved;
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    if (outcomes[index].success) {
      moved.push_back(plan.items[index]);
    }
  }
  return TidyPlan(std::move(moved));
}

}  // namespace

std::optional<TidyPlan> AppModel::safeTidyPlan() const {
  const auto& plan = *tidyPlan;
  if (!plan) {
    return std::nullopt;
  }
  std::vector<TidyItem> safe;
  std::ranges::copy_if(plan->items, std::back_inserter(safe), [](const TidyItem& item) {
    return item.kind != TidyItem::Kind::installer && item.kind != TidyItem::Kind::buildFiles;
  });
  return safe.empty() ? std::nullopt : std::optional(TidyPlan(std::move(safe)));
}

Task<std::optional<TidyReceipt>> AppModel::runTidy(bool automatic, bool safeOnly, CleanSelection::Titles skipping) {
  Records records;
  co_return co_await tidy({.automatic = automatic, .safeOnly = safeOnly, .skipping = std::move(skipping)}, records);
}

Task<std::optional<TidyReceipt>> AppModel::tidy(TidyRequest request, Records& records) {
  if (!*storageResult || *isTidying) {
    co_return std::nullopt;
  }
  isTidying.set(true);
  std::optional<TidyReceipt> receipt;
  const std::uint64_t revision = storageRevision_;
  const TidyPlan plan = co_await planToRun(request);
  // Another scan, of another drive perhaps, isn't what was asked for.
  if (revision == storageRevision_ && !plan.items.empty()) {
    const auto outcomes = co_await removeItems(movesOf(plan), CleanupTransaction::Source::tidy, records);
    const TidyPlan moved = movedPlan(plan, outcomes);
    if (!moved.items.empty()) {
      receipt = TidyReceipt{
          .date = now(), .freedBytes = moved.bytes, .lines = receiptLines(moved), .automatic = request.automatic};
      tidyLog.set(
          co_await scheduler_.start(Lane::store, [engine = engine_, receipt = *receipt](const std::stop_token&) {
            return engine->store.appendTidy(receipt);
          }));
      if (request.automatic) {
        writeSetting(settingsKey::lastAutoTidy, iso8601(now()));
      }
      co_await refreshInsights();
    }
  }
  isTidying.set(false);
  co_return receipt;
}

/// Made afresh where it runs by itself, and where there is none yet.
Task<TidyPlan> AppModel::planToRun(const TidyRequest& request) {
  const auto& shown = *tidyPlan;
  TidyPlan plan;
  if (!request.automatic && shown) {
    plan = *shown;
  } else if (const Scan scan = *storageResult) {
    plan = co_await scheduler_.start(
        Lane::interactive,
        [engine = engine_, gate = gate_, scan, copies = *duplicates, junk = junk_, withBuildFiles = !request.automatic](
            const std::stop_token&) { return planOf(*engine, *gate, *scan, copies, junk, withBuildFiles); });
  }
  if (request.automatic) {
    co_await findBusyTitles(titlesOf(plan));
  }
  std::erase_if(plan.items, [&](const TidyItem& item) {
    return item.kind == TidyItem::Kind::buildFiles || (request.safeOnly && item.kind == TidyItem::Kind::installer) ||
           request.skipping.contains(item.title) || (request.automatic && busyTidyTitles->contains(item.title));
  });
  co_return TidyPlan(std::move(plan.items));
}

bool AppModel::isAutoTidyDue(const AutoTidySettings& settings, Date date) const {
  if (settings.wanted == AutoTidy::off || selectedDrive->path != macVolumeRoot.path || *isScanning || *isTidying) {
    return false;
  }
  // A date ahead is of a clock that was wrong.
  const auto& last = settings.last;
  const auto hasPassed = [&](std::chrono::seconds time) { return !last || *last > date || date - *last > time; };
  if (settings.wanted == AutoTidy::weekly) {
    return hasPassed(week);
  }
  const auto& volume = *volumeSnapshot;
  return volume && hasPassed(day) &&
         static_cast<double>(volume->availableBytes) <
             lowSpace * static_cast<double>(std::max<std::int64_t>(1, volume->totalBytes));
}

Task<> AppModel::considerAutoTidy() {
  const auto settings = co_await scheduler_.start(Lane::utility, [engine = engine_](const std::stop_token&) {
    const auto setting = [&](const char* key) {
      return engine->platform.defaults->string(key).value_or(std::nullopt).value_or("");
    };
    return AutoTidySettings{.wanted = autoTidyOf(setting(settingsKey::autoTidy)),
                            .last = parseISO8601(setting(settingsKey::lastAutoTidy))};
  });
  if (!isAutoTidyDue(settings, now())) {
    co_return;
  }
  // The next consideration finds the fresh scan.
  if (!*storageResult || now() - (*storageResult)->scannedAt >= day) {
    scanStorage(*selectedDrive);
    co_return;
  }
  const auto receipt = co_await runTidy(true, false, {});
  if (!receipt || receipt->freedBytes < worthTelling) {
    co_return;
  }
  if (!co_await mayInterrupt()) {
    co_return;
  }
  const std::string line = "Auto-clear moved " + AppFormatting::bytes(receipt->freedBytes) + " to the Trash";
  notchFlash(line);
  co_await notify("Tidied Up", line, "auto-tidy");
}

}  // namespace lumenary
