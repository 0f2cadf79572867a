#pragma once

#include "base/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What git prints and writes, read as the foreign text that it is.
namespace korvanti::GitOutput {

/// The folders in what `ls-files --directory -z` printed, in its order: each leads below the folder that it
/// was asked in, has no slash behind it and looks into `output`. That folder itself, for which an outer
/// repository answers as "./", is none.
[[nodiscard]] std::vector<std::string_view> folders(std::string_view output);

/// The time that `log --format=%ct` printed of one commit.
[[nodiscard]] std::optional<Instant> commitTime(std::string_view output);

/// Where the text of a file named ".git" leads, which worktrees and submodules have. A relative path there
/// starts at the repository and stays as it is: the system takes its ".." as git does.
[[nodiscard]] std::optional<std::string> gitFolder(std::string_view text, const std::string& repository);

} // namespace korvanti::GitOutput
