#include "support/ModelDay.h"

namespace lumenary {
namespace {

TEST(AppModel, LivesThroughAWholeDay) {
  ModelDay day;
  day.play();
}

}  // namespace
}  // namespace lumenary
