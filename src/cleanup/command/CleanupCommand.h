#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/Platform.h"

/// `Lumenary cleanup [options]`: lists the build output under a code folder and, with --trash, moves it to the Trash.
namespace lumenary::CleanupCommand {

/// Exit statuses.
inline constexpr std::int32_t finished = 0;
/// The code folder or the settings could not be read, a folder not be moved, or the list not be written.
inline constexpr std::int32_t failed = 1;
inline constexpr std::int32_t wrongUsage = 2;
/// A stop request ended the search, and the process outlived the signal (as the first one of a container does).
inline constexpr std::int32_t interrupted = 130;

/// Runs the command on its arguments, the program's name and the word `cleanup` left out; returns the exit status.
/// After a stop request the process ends by its signal and this doesn't return.
std::int32_t run(std::span<const std::string> arguments, Platform& platform);

}  // namespace lumenary::CleanupCommand
