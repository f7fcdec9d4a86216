#pragma once

#include <cstddef>
#include <vector>

#include "platform/Defaults.h"
#include "storage/DiskForecast.h"

/// The samples of the startup disk, kept in the settings: under "diskSamples" a JSON array of
/// {"date": seconds since 1 January 2001, "usedBytes": n}.
namespace lumenary::DiskSampleStore {

inline constexpr std::size_t limit = 240;

/// Oldest first; empty where there are none or they can't be read.
std::vector<DiskSample> load(const Defaults& defaults);

/// The samples with the new one behind them, the newest 240; written back as far as that can be done.
std::vector<DiskSample> append(const DiskSample& sample, std::vector<DiskSample> samples, Defaults& defaults);

}  // namespace lumenary::DiskSampleStore
