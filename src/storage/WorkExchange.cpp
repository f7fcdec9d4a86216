#include "storage/WorkExchange.h"

#include <utility>

namespace lumenary {

WorkExchange::Work WorkExchange::take() {
  std::unique_lock guard(mutex_);
  if (--busy_ == 0 && work_.empty()) {
    isOver_ = true;
    changed_.notify_all();
  }
  ++waiting_;
  changed_.wait(guard, [this] { return isOver_ || !work_.empty(); });
  --waiting_;
  if (isOver_) {
    return {};
  }
  ++busy_;
  --lying_;
  Work work = std::move(work_.back());
  work_.pop_back();
  return work;
}

void WorkExchange::give(std::vector<PendingFolders> folders) { put(std::move(folders)); }

void WorkExchange::give(GivenEntries entries) { put(std::move(entries)); }

void WorkExchange::put(Work work) {
  {
    const std::scoped_lock guard(mutex_);
    work_.push_back(std::move(work));
    ++lying_;
  }
  changed_.notify_one();
}

void WorkExchange::leave() {
  const std::scoped_lock guard(mutex_);
  --busy_;
}

void WorkExchange::cancel() {
  const std::scoped_lock guard(mutex_);
  isOver_ = true;
  changed_.notify_all();
}

}  // namespace lumenary
