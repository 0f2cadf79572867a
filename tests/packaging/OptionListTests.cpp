#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace korvanti::testing {
namespace {

using ::testing::IsSupersetOf;

std::set<std::string> matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at)
        found.insert((*at)[1]);
    return found;
}

/// The names that the program itself tells, without their dashes.
std::set<std::string> ownOptions() {
    const auto result = runProgram({KORVANTI_BUILD "/korvanti", "--help"});
    EXPECT_EQ(result.status, 0);
    auto options = matches(result.out, "--([a-z-]+)");
    EXPECT_THAT(options, IsSupersetOf({"report", "json"}));
    options.insert("help");
    return options;
}

std::string source(const std::string& name) {
    return textOf(KORVANTI_SOURCE "/packaging/linux/" + name);
}

TEST(OptionListTests, bashCompletesTheOptionsOfTheProgram) {
    EXPECT_EQ(matches(source("korvanti.bash"), "--([a-z]+)"), ownOptions());
}

TEST(OptionListTests, zshCompletesTheOptionsOfTheProgram) {
    EXPECT_EQ(matches(source("_korvanti"), R"(\)--([a-z]+)\[)"), ownOptions());
}

TEST(OptionListTests, fishCompletesTheOptionsOfTheProgram) {
    EXPECT_EQ(matches(source("korvanti.fish"), " -l ([a-z]+) -d"), ownOptions());
}

TEST(OptionListTests, theManPageExplainsTheOptionsOfTheProgram) {
    EXPECT_EQ(matches(source("korvanti.1.in"), R"(\.TP\n\.B \\-\\-([a-z]+)\n[A-Z])"), ownOptions());
}

TEST(OptionListTests, theReadmeNamesTheOptionsOfTheProgram) {
    EXPECT_THAT(matches(textOf(KORVANTI_SOURCE "/README.md"), "--([a-z]+)"), IsSupersetOf(ownOptions()));
}

} // namespace
} // namespace korvanti::testing
