#pragma once

#include <string>

/// What the stand-ins of the Mac's tools say in the box ("diskutil", "xcrun", "xcode-select", "tmutil", "ps",
/// "pgrep", "pkill") when they are called with just these arguments, one blank between them. One without an
/// answer fails; "defaults" then does its own work. Throws like `DiskFolder`.
namespace korvanti::testing::BoxAnswers {

void say(const std::string& call, const std::string& text, int status = 0);
/// The same as a shell script that is run in its place.
void run(const std::string& call, const std::string& script);

} // namespace korvanti::testing::BoxAnswers
