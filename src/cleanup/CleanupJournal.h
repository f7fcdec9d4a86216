#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/JsonReader.h"
#include "base/UUID.h"
#include "platform/DurableFiles.h"
#include "platform/Trash.h"
#include "storage/CleanupTransaction.h"

/// What an act is about to do, on disk before it does it. One file an act, one line an intent, locked while the act
/// runs. `finish` removes it once the transaction log tells the same. A journal that nobody locks was left by a crash;
/// `recoverInterruptedActs` reads it.
namespace lumenary {

/// One line of a journal.
struct JournalEntry {
  enum class Act : std::uint8_t { move, restore };

  Act act = Act::move;
  UUID transactionID;
  UUID itemID;
  CleanupTransaction::Source source = CleanupTransaction::Source::buildCleanup;
  std::string ruleID;
  std::int64_t measuredBytes = 0;
  TrashIntent intent;
  std::string refusal{};  ///< why the act didn't happen after all, the sentence for the person; empty: it may have
  bool isLogged = true;   ///< false: the log of acts isn't told of it, only the Trash is put right
};

/// A line of JSON with its line break: keys sorted, places as file URL text, dates as ISO 8601 text.
std::string encodeJournalEntry(const JournalEntry& entry);

struct DecodedJournal {
  std::vector<JournalEntry> entries;  ///< in their order
  std::string foreignLines;           ///< whole lines that aren't one of ours, with their line breaks
};

/// A last line that was cut by a crash is passed over: its act had not begun. `unavailable` alone is an error: then
/// nothing is known of the text.
std::expected<DecodedJournal, JsonDocument::Error> decodeJournal(std::string_view text);

/// Blocks; one thread at a time. A journal that goes without `finish` stays on the disk for recovery.
class CleanupJournal {
 public:
  CleanupJournal(DurableFiles& files, std::string supportFolder);

  /// Records the intents of one item; valid as long as the journal. The file is made at the first intent.
  class Recorder final : public IntentRecorder {
   public:
    Recorder(CleanupJournal& journal, JournalEntry entry) : journal_(journal), entry_(std::move(entry)) {}
    SystemResult<void> intend(const TrashIntent& intent) override;
    /// What was intended was refused: a crash before the log tells it won't count as the reason. Best effort.
    void refused(std::string sentence);

   private:
    CleanupJournal& journal_;
    JournalEntry entry_;
    bool hasIntended_ = false;
  };

  /// When the last act was intended; none where none was. A record of them must not be older.
  std::optional<Date> lastIntended() const { return lastIntended_; }
  /// Something of the act needs to be put right by the next start: the file stays.
  void keepForRecovery() { keep_ = true; }
  /// The log holds what the act did: removes the file, unless it is kept.
  void finish();

  static constexpr std::string_view fileExtension = ".journal";
  static std::string folder(const std::string& supportFolder);
  /// Held while a journal is made and while left ones are recovered, so that a newborn one isn't taken for a left one.
  static std::string lockPath(const std::string& supportFolder);

 private:
  SystemResult<void> open();

  DurableFiles& files_;
  std::string support_;
  std::string path_;
  std::unique_ptr<GrowingFile> file_;
  bool keep_ = false;
  std::optional<Date> lastIntended_;
};

}  // namespace lumenary
