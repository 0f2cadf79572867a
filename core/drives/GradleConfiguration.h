#pragma once

#include <string>

/// What a user has told Gradle in files of its home folder.
namespace korvanti::GradleConfiguration {

/// Copies it to another home folder of Gradle: each file or folder of which nothing has the name there, links
/// as links. What can't be copied is left out; no file is left half written.
void carryOver(const std::string& from, const std::string& to);

} // namespace korvanti::GradleConfiguration
