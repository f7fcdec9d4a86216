#include "apps/BackgroundItemRemoval.h"

#include "base/UUID.h"
#include "cleanup/MoveAttempt.h"

namespace lumenary {

std::expected<void, CleanupRefusal> BackgroundItemRemoval::remove(const std::string& path,
                                                                  const std::function<void()>& stopItem) const {
  const auto item = openItem(reader_, path);
  if (!item) {
    return std::unexpected(CleanupRefusal(item.error()));
  }
  if (const auto allowed = trash_.check(*item); !allowed) {
    return std::unexpected(CleanupRefusal(allowed.error()));
  }
  const auto attributes = reader_.attributes(item->parent, item->name.c_str());
  if (!attributes) {
    return std::unexpected(CleanupRefusal(attributes.error()));
  }
  stopItem();
  CleanupJournal journal(files_, support_);
  const JournalEntry entry{.transactionID = UUID::random(),
                           .itemID = UUID::random(),
                           .source = CleanupTransaction::Source::apps,
                           .ruleID = "background.item",
                           .measuredBytes = attributes->allocatedBytes,
                           .intent = {},
                           .isLogged = false};
  std::expected<void, CleanupRefusal> result;
  attemptMove({.path = item->path}, entry, journal, [&](IntentRecorder& recorder) {
    auto moved = trash_.move(*item, attributes->allocatedBytes, recorder);
    if (!moved) {
      result = std::unexpected(CleanupRefusal(moved.error()));
    }
    return moved ? std::expected<TrashedItem, CleanupRefusal>(*std::move(moved))
                 : std::unexpected(CleanupRefusal(moved.error()));
  });
  journal.finish();
  return result;
}

}  // namespace lumenary
