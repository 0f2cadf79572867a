#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvanti::testing {

/// How a program ended and what it said.
struct ProgramResult {
    int status = 0; ///< the exit status; that of a signal is negative
    std::string out;
    std::string err;
};

struct ProgramOptions {
    /// Set over this process's own environment; nil takes a variable away.
    std::map<std::string, std::optional<std::string>> environment = {};
    std::string folder = {}; ///< to start in; empty for this process's own
    /// How much of the standard output is read before its reading end is closed. Only `all` gives it room to
    /// write ahead.
    enum class Reading { all, firstLine, nothing };
    Reading reading = Reading::all;
    std::chrono::milliseconds timeLimit = std::chrono::seconds(60);
};

/// Runs a program to its end, without a shell and with nothing to read. The first argument is its path or a
/// name to look up. Fails the running test when it can't be started, or when it takes too long: then it and
/// its children are killed.
[[nodiscard]] ProgramResult runProgram(const std::vector<std::string>& command,
                                       const ProgramOptions& options = {});

} // namespace korvanti::testing
