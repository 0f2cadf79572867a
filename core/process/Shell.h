#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace korvanti {

/// How an outside tool ended and what it said.
struct ShellResult {
    std::int32_t status = 0; ///< the exit status, the signal that ended the tool, or -1 when it never ran
    std::string out;         ///< standard output as UTF-8, repaired where it is not, unless asked for raw
    std::string err;         ///< standard error likewise; the system's reason when the tool never ran

    [[nodiscard]] bool ok() const { return status == 0; }
    bool operator==(const ShellResult&) const = default;
};

/// Runs outside tools: by absolute path and argument list, never through a shell.
namespace Shell {

using Seconds = std::chrono::duration<double>;
using Environment = std::map<std::string, std::string>;

struct Options {
    Environment environment = {};  ///< set over this process's own
    Seconds timeout = Seconds(20); ///< one that is infinite or no number is none
    bool rawOutput = false; ///< standard output stays as it came: for paths, and for binary property lists
};

/// Runs a tool to its end and catches all that it says; it has nothing to read and inherits no descriptor but
/// its three streams. Blocks the calling thread; safe from many at once. Never fails: a tool that can't start
/// has status -1.
///
/// When `timeout` is over and the tool still runs it gets SIGTERM, once. One that ignores this, or a child of
/// it that keeps a stream open, keeps the caller waiting. What it says is held in memory, however much it is.
[[nodiscard]] ShellResult run(const std::string& tool, const std::vector<std::string>& arguments,
                              const Options& options = {});

} // namespace Shell
} // namespace korvanti
