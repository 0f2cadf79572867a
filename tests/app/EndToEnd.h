#pragma once

#include "support/BoxFolder.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti::testing {

/// The real program, run on a fresh Mac in the box with an English system.
class EndToEnd : public ::testing::Test {
protected:
    /// Options for `korvanti` with one variable changed.
    [[nodiscard]] static ProgramOptions with(const std::string& variable, std::optional<std::string> value);
    [[nodiscard]] static ProgramOptions reading(ProgramOptions::Reading amount);

    /// Expects the exit status 0.
    [[nodiscard]] static ProgramResult korvanti(const std::vector<std::string>& arguments,
                                                ProgramOptions options = {});

    /// A location of the catalog that occupies that many bytes, rounded up to whole pages.
    void occupy(std::string_view location, std::int64_t bytes) const;

    BoxMac mac;
};

/// The lines of an output; the last must be ended, too.
[[nodiscard]] std::vector<std::string> linesOf(const std::string& output);

/// The lines between the one that starts with `heading` and the next empty one, the heading included. Empty
/// when there is no such line.
[[nodiscard]] std::vector<std::string> sectionOf(const std::string& output, std::string_view heading);

/// Everything in a folder: kind, rights, owner, length, date, inode, and what it holds.
[[nodiscard]] std::set<std::string> picture(const std::string& folder);

} // namespace korvanti::testing
