#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "cleanup/CleanupJournal.h"

// However a journal is cut or damaged, each entry that is read is one that could have been written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const auto journal = decodeJournal({reinterpret_cast<const char*>(data), size});
  require(journal.has_value());
  for (const JournalEntry& entry : journal->entries) {
    const auto again = decodeJournal(encodeJournalEntry(entry));
    require(again && again->entries.size() == 1 && again->foreignLines.empty());
    const JournalEntry& copy = again->entries.front();
    require(copy.intent.originalPath == entry.intent.originalPath && copy.intent.trashPath == entry.intent.trashPath &&
            copy.itemID == entry.itemID);
  }
  return 0;
}
