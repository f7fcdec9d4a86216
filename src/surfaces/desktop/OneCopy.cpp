#include "surfaces/desktop/OneCopy.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QThread>
#include <utility>

namespace lumenary {
namespace {

constexpr int patienceMilliseconds = 5000;  // the first copy may have begun a moment ago
constexpr int pauseMilliseconds = 50;
constexpr qint64 longestPath = 64 * 1024;  // whoever says more isn't heard to the end

/// Takes the lock. Where there can't be one, every copy is the first.
bool isFree(QLockFile& lock) {
  lock.setStaleLockTime(0);  // a lock is old when its process is gone, never by the clock
  return lock.tryLock() || lock.error() != QLockFile::LockFailedError;
}

}  // namespace

OneCopy::OneCopy(const QString& folder)
    : address_(folder + "/hearthkeep.socket"), lock_(folder + "/hearthkeep.lock"), isFirst_(isFree(lock_)) {
  if (isFirst_) {
    QLocalServer::removeServer(address_);  // of a copy that crashed
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    server_.listen(address_);
  }
}

OneCopy::~OneCopy() {
  // Closing ends the connections of those who still talk; nobody listens any more.
  for (QLocalSocket* const caller : server_.findChildren<QLocalSocket*>()) {
    caller->disconnect();
  }
}

bool OneCopy::raiseFirst(const QByteArray& folder) const {
  const QDeadlineTimer deadline(patienceMilliseconds);
  do {
    QLocalSocket socket;
    socket.connectToServer(address_);
    if (socket.waitForConnected(pauseMilliseconds)) {
      socket.write(folder);
      socket.disconnectFromServer();
      return socket.state() == QLocalSocket::UnconnectedState || socket.waitForDisconnected(patienceMilliseconds);
    }
    QThread::msleep(pauseMilliseconds);
  } while (!deadline.hasExpired());
  return false;
}

void OneCopy::onAnother(std::function<void(const QByteArray&)> raise) {
  const auto answer = [this, raise = std::move(raise)] {
    while (QLocalSocket* const caller = server_.nextPendingConnection()) {
      const auto hear = [caller, raise] {
        raise(caller->read(longestPath));
        caller->deleteLater();
      };
      if (caller->state() == QLocalSocket::UnconnectedState) {
        hear();
      } else {
        QObject::connect(caller, &QLocalSocket::disconnected, caller, hear, Qt::SingleShotConnection);
      }
    }
  };
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, answer);
  answer();
}

}  // namespace lumenary
