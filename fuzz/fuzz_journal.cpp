#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "cleanup/CleanupJournal.h"

// However a journal is cut or damaged, each entry that is read is one that could have been written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const auto entries = decodeJournal({reinterpret_cast<const char*>(data), size});
  require(entries.has_value());
  for (const JournalEntry& entry : *entries) {
    const auto again = decodeJournal(encodeJournalEntry(entry));
    require(again && again->size() == 1 && again->front().intent.originalPath == entry.intent.originalPath &&
            again->front().intent.trashPath == entry.intent.trashPath && again->front().itemID == entry.itemID);
  }
  return 0;
}
