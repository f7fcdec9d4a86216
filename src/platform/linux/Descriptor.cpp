#include "platform/Descriptor.h"

#include <unistd.h>

namespace lumenary {

Descriptor::~Descriptor() {
  if (number_ >= 0) {
    ::close(number_);
  }
}

}  // namespace lumenary
