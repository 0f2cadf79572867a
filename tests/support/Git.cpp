#include "support/Git.h"

#include "support/RunProgram.h"

#include <gtest/gtest.h>

namespace korvanti::testing {

std::string git(const std::string& folder, const std::vector<std::string>& arguments, std::int64_t date) {
    std::vector<std::string> command = {"git", "-C", folder};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto instant = std::to_string(date) + " +0000";
    const auto result = runProgram(command, {.environment = {{"GIT_CONFIG_GLOBAL", "/dev/null"},
                                                             {"GIT_CONFIG_NOSYSTEM", "1"},
                                                             {"GIT_AUTHOR_NAME", "Tester"},
                                                             {"GIT_AUTHOR_EMAIL", "tester@example.com"},
                                                             {"GIT_AUTHOR_DATE", instant},
                                                             {"GIT_COMMITTER_NAME", "Tester"},
                                                             {"GIT_COMMITTER_EMAIL", "tester@example.com"},
                                                             {"GIT_COMMITTER_DATE", instant}}});
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
}

} // namespace korvanti::testing
