// store_qt FILE fast|readable ROUNDS: the same reading and writing by Qt's QJsonDocument.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "StoreTimes.h"
#include "base/Text.h"

namespace {

using lumenary::Date;
using lumenary::FileEntry;
using lumenary::StorageScanResult;
using store::DateForm;

std::string textOf(const QJsonValue& value) { return value.toString().toStdString(); }

QString textFrom(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QJsonValue numberFrom(std::int64_t value) { return QJsonValue(static_cast<qint64>(value)); }

Date dateOf(const QJsonValue& value, DateForm dates) {
  return dates == DateForm::iso8601
             ? lumenary::parseISO8601(textOf(value)).value()
             : Date(std::chrono::round<Date::duration>(std::chrono::duration<double>(value.toDouble())));
}

QJsonValue jsonOf(Date date, DateForm dates) {
  return dates == DateForm::iso8601 ? QJsonValue(textFrom(lumenary::iso8601(date)))
                                    : QJsonValue(std::chrono::duration<double>(date.time_since_epoch()).count());
}

FileEntry entryOf(const QJsonObject& object, DateForm dates) {
  FileEntry entry{.id = lumenary::UUID::parse(textOf(object["id"])).value(),
                  .url = lumenary::parseFileURL(textOf(object["url"])).value(),
                  .name = lumenary::bytesOfReversibleText(textOf(object["name"])),
                  .kind = lumenary::fileEntryKindOf(textOf(object["kind"])).value(),
                  .byteCount = object["byteCount"].toInteger(),
                  .modifiedAt = {},
                  .category = lumenary::storageCategoryOf(textOf(object["category"])).value()};
  if (const QJsonValue modified = object["modifiedAt"]; !modified.isUndefined()) {
    entry.modifiedAt = dateOf(modified, dates);
  }
  return entry;
}

StorageScanResult decode(std::string_view text, DateForm dates) {
  const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  const QJsonObject root = QJsonDocument::fromJson(bytes).object();
  StorageScanResult result{.root = lumenary::parseFileURL(textOf(root["root"])).value(),
                           .scannedAt = dateOf(root["scannedAt"], dates),
                           .totalBytes = root["totalBytes"].toInteger(),
                           .scannedItemCount = root["scannedItemCount"].toInteger(),
                           .inaccessiblePaths = {},
                           .entries = {},
                           .categoryByteTotals = {},
                           .folderByteTotals = {}};
  const QJsonArray paths = root["inaccessiblePaths"].toArray();
  for (const QJsonValue path : paths) {
    result.inaccessiblePaths.push_back(lumenary::bytesOfReversibleText(textOf(path)));
  }
  const QJsonArray entries = root["entries"].toArray();
  result.entries.reserve(static_cast<std::size_t>(entries.size()));
  for (const QJsonValue entry : entries) {
    result.entries.push_back(entryOf(entry.toObject(), dates));
  }
  lumenary::CategoryTotals totals;
  const QJsonArray categories = root["categoryByteTotals"].toArray();
  for (qsizetype index = 0; index < categories.size(); index += 2) {
    totals[lumenary::storageCategoryOf(textOf(categories[index])).value()] = categories[index + 1].toInteger();
  }
  result.categoryByteTotals = std::move(totals);
  std::vector<lumenary::FolderByteTotals::Folder> folders;
  const QJsonObject bytesByPath = root["folderByteTotals"].toObject();
  folders.reserve(static_cast<std::size_t>(bytesByPath.size()));
  for (auto member = bytesByPath.begin(); member != bytesByPath.end(); ++member) {
    folders.push_back(
        {.path = lumenary::bytesOfReversibleText(member.key().toStdString()), .bytes = member.value().toInteger()});
  }
  result.folderByteTotals = lumenary::FolderByteTotals(std::move(folders));
  return result;
}

QJsonObject jsonOf(const FileEntry& entry, DateForm dates) {
  QJsonObject object{{"id", textFrom(entry.id.text())},
                     {"url", textFrom(lumenary::fileURLString(entry.url))},
                     {"name", textFrom(lumenary::reversibleText(entry.name))},
                     {"kind", textFrom(rawValue(entry.kind))},
                     {"byteCount", numberFrom(entry.byteCount)},
                     {"category", textFrom(rawValue(entry.category))}};
  if (entry.modifiedAt) {
    object.insert("modifiedAt", jsonOf(*entry.modifiedAt, dates));
  }
  return object;
}

std::string encode(const StorageScanResult& result, DateForm dates) {
  QJsonArray paths;
  for (const std::string& path : result.inaccessiblePaths) {
    paths.append(textFrom(lumenary::reversibleText(path)));
  }
  QJsonArray entries;
  for (const FileEntry& entry : result.entries) {
    entries.append(jsonOf(entry, dates));
  }
  QJsonArray categories;
  for (const auto& [category, bytes] : result.categoryByteTotals.value()) {
    categories.append(textFrom(rawValue(category)));
    categories.append(numberFrom(bytes));
  }
  QJsonObject folders;
  for (const auto& [path, bytes] : result.folderByteTotals.value()) {
    folders.insert(textFrom(lumenary::reversibleText(path)), numberFrom(bytes));
  }
  const QJsonObject root{{"root", textFrom(lumenary::fileURLString(result.root))},
                         {"scannedAt", jsonOf(result.scannedAt, dates)},
                         {"totalBytes", numberFrom(result.totalBytes)},
                         {"scannedItemCount", numberFrom(result.scannedItemCount)},
                         {"inaccessiblePaths", paths},
                         {"entries", entries},
                         {"categoryByteTotals", categories},
                         {"folderByteTotals", folders}};
  return QJsonDocument(root).toJson(QJsonDocument::Compact).toStdString();
}

}  // namespace

int main(int argumentCount, char** arguments) { return store::time(argumentCount, arguments, decode, encode); }
