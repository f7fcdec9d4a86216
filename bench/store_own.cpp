// store_own FILE fast|readable ROUNDS: how long the program's own reading and writing of a stored scan takes.

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "StoreTimes.h"

int main(int argumentCount, char** arguments) {
  const auto decode = [](std::string_view text, store::DateForm dates) {
    auto result = lumenary::decodeScanResult(text, dates);
    if (!result) {
      std::fputs("The text holds no scan.\n", stderr);
      std::exit(1);
    }
    return *std::move(result);
  };
  return store::time(argumentCount, arguments, decode, lumenary::encodeScanResult);
}
