#pragma once

#include "process/Shell.h"

#include <optional>
#include <string>
#include <vector>

/// The tools that need more than a path.
namespace korvanti::Toolchain {

/// The developer folder of the active Xcode, found once on first use (up to 10 seconds) and kept for the life
/// of the process. Absent when there is no Xcode; the stand-alone command-line tools are none.
[[nodiscard]] const std::optional<std::string>& developerDir();

/// The same anew: `selected` is what `xcode-select -p` printed, `applications` the folder to look in where
/// that is no Xcode ("Xcode.app" comes before every other, then the first by name).
[[nodiscard]] std::optional<std::string> findDeveloperDir(const std::string& selected,
                                                          const std::string& applications);

/// Runs the simulator tool of the active Xcode. Absent, and nothing started, exactly when there is none.
[[nodiscard]] std::optional<ShellResult> simctl(const std::vector<std::string>& arguments,
                                                Shell::Seconds timeout);

/// Sets this process's environment, which every tool inherits, so that git reads each repository where it
/// lies, writes nothing and runs no program that a repository's own settings name: anybody's repository may
/// lie in a project folder. To be called once, before there are threads.
void restrainGit();

/// Runs git in a folder. Its standard output stays as it came, since paths need not be UTF-8.
[[nodiscard]] ShellResult git(const std::vector<std::string>& arguments, const std::string& folder,
                              Shell::Seconds timeout);

/// Some process's whole command line holds the pattern.
[[nodiscard]] bool isRunning(const std::string& pattern);
/// Some process has exactly this name.
[[nodiscard]] bool isAppRunning(const std::string& bundleName);

} // namespace korvanti::Toolchain
