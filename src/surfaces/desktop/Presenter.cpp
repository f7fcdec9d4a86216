#include "surfaces/desktop/Presenter.h"

#include <utility>

namespace lumenary {

Presenter::~Presenter() {
  for (const auto& end : endings_) {
    end();
  }
}

void Presenter::enter() {
  isEntered_ = true;
  refresh();
  prepare();
}

void Presenter::refreshSoon() {
  if (!isEntered_ || std::exchange(isRefreshing_, true)) {
    return;
  }
  QMetaObject::invokeMethod(
      this,
      [this] {
        isRefreshing_ = false;
        refresh();
      },
      Qt::QueuedConnection);
}

}  // namespace lumenary
