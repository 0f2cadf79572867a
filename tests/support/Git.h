#pragma once

#include "support/Environment.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti::testing {

/// Runs the real git in a folder as "Tester", who commits at `date` (seconds since 1970), and gives what it
/// printed. Fails the running test when git does.
std::string git(const std::string& folder, const std::vector<std::string>& arguments,
                std::int64_t date = 1'700'000'000);

/// As long as it lives, git knows no settings of the user and of the machine.
struct GitWithoutSettings {
    ScopedVariable global{"GIT_CONFIG_GLOBAL", "/dev/null"};
    ScopedVariable system{"GIT_CONFIG_NOSYSTEM", "1"};
};

} // namespace korvanti::testing
