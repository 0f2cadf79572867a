#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Runs other programs and takes their time.
namespace korvanti::bench {

struct Command {
    std::vector<std::string> arguments;   ///< the first one is the program's path or its name in PATH
    std::vector<std::string> environment; ///< "NAME=value", instead of what this process has of that name
};

struct ProgramRun {
    double milliseconds = 0;     ///< from the start of the process until it is gone
    double cpuMilliseconds = 0;  ///< of all its threads, in the program and in the system for it
    std::int64_t peakMemory = 0; ///< bytes; at least what this process itself occupies
    std::string output;
};

/// Waits for the end. Absent, with a line on standard error, when the program can't be started or fails.
[[nodiscard]] std::optional<ProgramRun> run(const Command& command);

/// The path of a program in PATH; empty when there is none.
[[nodiscard]] std::string findProgram(const std::string& name);

/// The numbers of an output whose lines are "name number".
[[nodiscard]] std::map<std::string, std::int64_t> numbersByName(const std::string& output);

} // namespace korvanti::bench
