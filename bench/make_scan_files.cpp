// make_scan_files FOLDER: writes a full-size scan there, as `fast.json` and as `readable.json`.

#include <cstdio>
#include <fstream>
#include <string>

#include "MadeScan.h"
#include "storage/ScanJson.h"

int main(int argumentCount, char** arguments) {
  using lumenary::DateForm;
  if (argumentCount != 2) {
    std::fputs("Usage: make_scan_files FOLDER\n", stderr);
    return 2;
  }
  const std::string folder = arguments[1];
  const auto result = MadeScan::make();
  std::ofstream fast(folder + "/fast.json");
  std::ofstream readable(folder + "/readable.json");
  fast << encodeScanResult(result, DateForm::secondsSince1970) << std::flush;
  readable << encodeScanResult(result, DateForm::iso8601) << std::flush;
  return fast && readable ? 0 : 1;
}
