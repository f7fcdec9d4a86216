// The one system header of this floor stands here, as the reader lies below the platform.
//
// A program linked with simdjson starts in 1.55 ms, one that opens it at need in 0.78 ms: the library pulls in the
// shared C++ runtime, which the program itself carries inside. Everything but one function reaches the library through
// virtual calls; that function is defined here in the library's place and asks the opened one.

#include "base/SimdjsonLibrary.h"

#define SIMDJSON_EXCEPTIONS 0
#include <dlfcn.h>
#include <simdjson.h>

namespace {

using Implementation = simdjson::internal::atomic_ptr<const simdjson::implementation>;
using ActiveImplementation = Implementation& (*)();

ActiveImplementation opened() {
  static const auto function = [] {
    // The number in the name is the one that the header above was made for.
    void* const library = dlopen("libsimdjson.so.14", RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library == nullptr ? nullptr : dlsym(library, "_ZN8simdjson25get_active_implementationEv");
    return reinterpret_cast<ActiveImplementation>(symbol);
  }();
  return function;
}

}  // namespace

namespace simdjson {

Implementation& get_active_implementation() { return opened()(); }

}  // namespace simdjson

namespace lumenary {

bool openSimdjsonLibrary() { return opened() != nullptr; }

}  // namespace lumenary
