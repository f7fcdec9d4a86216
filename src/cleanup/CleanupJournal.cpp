#include "cleanup/CleanupJournal.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "base/EnumText.h"
#include "base/JsonWriter.h"
#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 2> actTexts = {"move", "restore"};
constexpr std::array<std::string_view, 4> kindTexts = {"folder", "file", "link", "other"};

std::optional<JournalEntry> decodeEntry(const JsonValue& object) {
  const auto text = [&](std::string_view key) { return object.member(key).and_then(&JsonValue::string); };
  const auto number = [&](std::string_view key) { return object.member(key).and_then(&JsonValue::unsignedInteger); };
  const auto act = text("act").and_then([](auto word) { return enumOf<JournalEntry::Act>(actTexts, word); });
  const auto date = text("date").and_then(parseISO8601);
  const auto device = number("device");
  const auto inode = number("inode");
  const auto itemID = text("itemID").and_then(UUID::parse);
  const auto logged = object.member("isLogged");
  const auto isLogged = logged ? logged->boolean() : true;
  const auto kind = text("kind").and_then([](auto word) { return enumOf<FileKind>(kindTexts, word); });
  const auto measuredBytes = object.member("measuredBytes").and_then(&JsonValue::integer);
  const auto originalURL = text("originalURL").and_then(parseFileURL);
  const auto refusal = object.member("refusal");
  const auto refusalText = refusal ? refusal->string() : std::string_view();
  const auto ruleID = text("ruleID");
  const auto source = text("source").and_then(sourceOf);
  const auto transactionID = text("transactionID").and_then(UUID::parse);
  const auto trashURL = text("trashURL").and_then(parseFileURL);
  if (!act || !date || !device || !inode || !itemID || !isLogged || !kind || !measuredBytes || *measuredBytes < 0 ||
      !originalURL || !refusalText || !ruleID || !source || !transactionID || !trashURL) {
    return std::nullopt;
  }
  return JournalEntry{.act = *act,
                      .transactionID = *transactionID,
                      .itemID = *itemID,
                      .source = *source,
                      .ruleID = bytesOfReversibleText(*ruleID),
                      .measuredBytes = *measuredBytes,
                      .intent = {.originalPath = originalURL->path,
                                 .trashPath = trashURL->path,
                                 .identity = {.device = *device, .inode = *inode, .kind = *kind},
                                 .date = *date},
                      .refusal = bytesOfReversibleText(*refusalText),
                      .isLogged = *isLogged};
}

}  // namespace

std::string encodeJournalEntry(const JournalEntry& entry) {
  const TrashIntent& intent = entry.intent;
  const bool isFolder = intent.identity.kind == FileKind::folder;
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  json.key("act").string(actTexts.at(static_cast<std::size_t>(entry.act)));
  json.key("date").string(iso8601(intent.date));
  json.key("device").unsignedInteger(intent.identity.device);
  json.key("inode").unsignedInteger(intent.identity.inode);
  if (!entry.isLogged) {
    json.key("isLogged").boolean(false);
  }
  json.key("itemID").string(entry.itemID.text());
  json.key("kind").string(kindTexts.at(static_cast<std::size_t>(intent.identity.kind)));
  json.key("measuredBytes").integer(entry.measuredBytes);
  json.key("originalURL").string(fileURLString({.path = intent.originalPath, .isFolder = isFolder}));
  if (!entry.refusal.empty()) {
    json.key("refusal").bytes(entry.refusal);
  }
  json.key("ruleID").bytes(entry.ruleID);
  json.key("source").string(rawValue(entry.source));
  json.key("transactionID").string(entry.transactionID.text());
  json.key("trashURL").string(fileURLString({.path = intent.trashPath, .isFolder = isFolder}));
  json.endObject();
  return json.take() + "\n";
}

std::expected<DecodedJournal, JsonDocument::Error> decodeJournal(std::string_view text) {
  DecodedJournal journal;
  for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    const auto line = JsonDocument::parse(text.substr(0, end));
    if (!line && line.error() == JsonDocument::Error::unavailable) {
      return std::unexpected(line.error());
    }
    if (auto entry = line ? decodeEntry(line->root()) : std::nullopt) {
      journal.entries.push_back(*std::move(entry));
    } else {
      journal.foreignLines += text.substr(0, end + 1);
    }
    text.remove_prefix(end + 1);
  }
  return journal;
}

CleanupJournal::CleanupJournal(DurableFiles& files, std::string supportFolder)
    : files_(files), support_(std::move(supportFolder)) {}

SystemResult<void> CleanupJournal::Recorder::intend(const TrashIntent& intent) {
  if (!journal_.file_) {
    if (auto opened = journal_.open(); !opened) {
      return opened;
    }
  }
  entry_.intent = intent;
  auto written = journal_.file_->append(encodeJournalEntry(entry_));
  hasIntended_ = hasIntended_ || written;
  if (written) {
    journal_.lastIntended_ = std::max(journal_.lastIntended_.value_or(intent.date), intent.date);
  }
  return written;
}

void CleanupJournal::Recorder::refused(std::string sentence) {
  if (hasIntended_) {
    entry_.refusal = std::move(sentence);
    static_cast<void>(journal_.file_->append(encodeJournalEntry(entry_)));
  }
}

SystemResult<void> CleanupJournal::open() {
  if (auto made = files_.makeFolders(folder(support_)); !made) {
    return made;
  }
  const auto lock = files_.lock(lockPath(support_));
  // Where there are no locks recovery tells this journal from a left one by its age.
  if (!lock && !lock.error().isWithoutLocks()) {
    return std::unexpected(lock.error());
  }
  path_ = appendingPathComponent(folder(support_), UUID::random().text()).append(fileExtension);
  auto file = files_.grow(path_);
  if (!file) {
    return std::unexpected(file.error());
  }
  file_ = *std::move(file);
  return {};
}

void CleanupJournal::finish() {
  if (file_ && !keep_) {
    // A file that can't be removed is found by the next recovery, which then has nothing to change.
    static_cast<void>(files_.remove(path_));
  }
  file_.reset();
}

std::string CleanupJournal::folder(const std::string& supportFolder) {
  return appendingPathComponent(supportFolder, "cleanup-journals");
}

std::string CleanupJournal::lockPath(const std::string& supportFolder) {
  return appendingPathComponent(folder(supportFolder), "lock");
}

}  // namespace lumenary
