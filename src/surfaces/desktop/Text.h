#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/AppFormatting.h"
#include "base/Text.h"

/// How texts and names of the engine come to the screens.
namespace lumenary {

/// For eyes; see `displayText`.
inline QString shown(std::string_view text) { return QString::fromStdString(displayText(text)); }
/// A path as a key that comes back as it was; see `reversibleText`.
inline QString keyOf(std::string_view path) { return QString::fromStdString(reversibleText(path)); }
inline std::string pathOf(const QString& key) { return bytesOfReversibleText(key.toStdString()); }
/// The path of a file that a dialog gave; names of any bytes come back as they are.
inline std::string bytesOf(const QUrl& file) {
  return QByteArray::fromPercentEncoding(file.path(QUrl::FullyEncoded).toUtf8()).toStdString();
}
inline QString sizeText(std::int64_t bytes) { return QString::fromStdString(AppFormatting::bytes(bytes)); }
/// Of a share between 0 and 1: "12 %", "0.4 %".
inline QString percent(double share) {
  const double value = share * 100;
  return QString::number(value, 'f', value < 10 ? 1 : 0) + " %";
}
inline QString counted(std::size_t count, const QString& one, const QString& many) {
  return QString::number(count) + " " + (count == 1 ? one : many);
}

}  // namespace lumenary
