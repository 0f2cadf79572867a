#pragma once

#include <string>

/// The machine that is measured on.
namespace korvanti::bench {

/// Lets this process and those that it starts run on two cores only. False where the system has no such call.
bool keepToTwoCores();

/// Processor, cores, memory, kernel, file system of `path`, load: one a line, for people.
[[nodiscard]] std::string machineFacts(const std::string& path);

/// Whether `dropCaches` is within this process's rights.
[[nodiscard]] bool canDropCaches();

/// Makes the system forget all files and folders that it has read. False when it does not.
[[nodiscard]] bool dropCaches();

} // namespace korvanti::bench
