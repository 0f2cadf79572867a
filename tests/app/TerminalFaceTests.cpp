#include "terminal/TerminalFace.h"

#include <gtest/gtest.h>

namespace korvanti {
namespace {

TEST(TerminalFaceTests, eachFlagChoosesTheTerminal) {
    for (const auto* flag : {"--report", "--all", "--json", "--volumes", "--map", "--help"})
        EXPECT_TRUE(TerminalFace::isChosen({flag})) << flag;
}

TEST(TerminalFaceTests, aFlagBehindAnUnknownArgumentChoosesTheTerminal) {
    EXPECT_TRUE(TerminalFace::isChosen({"--foo", "--report"}));
}

TEST(TerminalFaceTests, anythingElseIsTheApplication) {
    for (const auto* other : {"--foo", "--Report", "--repor", "--reports", "-report", "report", "--json=1",
                              "--volume", "--Volumes", "--maps", ""})
        EXPECT_FALSE(TerminalFace::isChosen({other})) << other;
    EXPECT_FALSE(TerminalFace::isChosen({}));
}

} // namespace
} // namespace korvanti
