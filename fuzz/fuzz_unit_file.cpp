#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "platform/linux/UnitFile.h"

/// Unit files of any bytes: no value is empty or holds a line break, and what is made of values stays in its bounds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  UnitFile unit;
  unit.read(text);
  unit.read(text.substr(size / 2));
  for (const auto& [section, keys] : unit.sections()) {
    require(!section.empty() && !section.contains('\n'));
    for (const auto& [key, values] : keys) {
      require(!key.empty() && !key.contains('='));
      for (const std::string& value : values) {
        require(!value.empty() && !value.contains('\n'));
        const auto program = unitProgram(value, {.home = "", .user = "", .instance = ""});
        require(!program || (!program->text.empty() && program->text.size() <= value.size()));
        const auto span = unitTimeSpan(value);
        require(!span || *span >= 0);
      }
    }
  }
  // A byte becomes four at most, and a name has 255.
  const std::string_view name = text.substr(0, 50);
  require(isUnitName("app-" + unitNameEscaped(name) + "@autostart.service"));
  return 0;
}
