#pragma once

#include <chrono>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace lumenary {

/// Asks what may never answer, such as a display whose server has stopped: even connecting waits without an end then.
/// So each question has a thread that can be left behind. There is never more than one: while one isn't answered, the
/// next ones aren't asked. From one thread at a time.
template <class Answer>
class PatientAnswer {
 public:
  explicit PatientAnswer(std::chrono::milliseconds patience) : patience_(patience) {}

  /// None where no answer came in time. The question may be asked long after the call returned, so it holds copies.
  template <class Question>
  std::optional<Answer> ask(Question question) {
    if (answer_.valid() && !hasComeWithin({})) {
      return std::nullopt;
    }
    std::promise<Answer> promise;
    answer_ = promise.get_future();
    try {
      std::thread([promise = std::move(promise), question = std::move(question)]() mutable {
        promise.set_value(question());
      }).detach();
    } catch (const std::system_error&) {
      return std::nullopt;
    }
    return hasComeWithin(patience_) ? std::optional(answer_.get()) : std::nullopt;
  }

 private:
  bool hasComeWithin(std::chrono::milliseconds wait) const {
    return answer_.wait_for(wait) == std::future_status::ready;
  }

  std::chrono::milliseconds patience_;
  std::future<Answer> answer_;
};

}  // namespace lumenary
