#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QLockFile>
#include <QString>
#include <functional>

namespace lumenary {

/// One window for each person: a further start tells the copy that runs, and ends. The lock is the system's, so that of
/// two starts at once one is the first, and a copy that crashed is in nobody's way.
class OneCopy {
 public:
  /// Both of its files lie in this folder, which must be the person's own.
  explicit OneCopy(const QString& folder);
  ~OneCopy();
  OneCopy(const OneCopy&) = delete;
  OneCopy& operator=(const OneCopy&) = delete;

  /// False where another copy runs.
  bool isFirst() const { return isFirst_; }
  /// For a further copy: asks the first one to show itself, and the folder if it isn't empty. False where it doesn't
  /// answer.
  bool raiseFirst(const QByteArray& folder) const;
  /// For the first copy: called whenever a further one was started, also one that was before this call.
  void onAnother(std::function<void(const QByteArray& folder)> raise);

 private:
  QString address_;
  QLockFile lock_;
  bool isFirst_ = false;
  QLocalServer server_;
};

}  // namespace lumenary
