#include "support/RunProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace korvanti::testing {
namespace {

using Reading = ProgramOptions::Reading;

TEST(RunProgramTests, tellsStatusOutputAndErrorsApart) {
    const auto result = runProgram({"sh", "-c", "echo out; echo err >&2; exit 3"});

    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "out\n");
    EXPECT_EQ(result.err, "err\n");
}

TEST(RunProgramTests, tellsTheSignalThatEndedAProgram) {
    EXPECT_EQ(runProgram({"sh", "-c", "kill -9 $$"}).status, -9);
}

TEST(RunProgramTests, readsMoreThanAPipeHoldsFromBothStreams) {
    const auto result = runProgram({"sh", "-c", "head -c 300000 /dev/zero >&2; head -c 400000 /dev/zero"});

    EXPECT_EQ(result.out.size(), 400000U);
    EXPECT_EQ(result.err.size(), 300000U);
}

TEST(RunProgramTests, changesTheEnvironment) {
    const auto result = runProgram({"sh", "-c", "echo ${HOME-none} $EXTRA"},
                                   {.environment = {{"HOME", std::nullopt}, {"EXTRA", "a=b"}}});

    EXPECT_EQ(result.out, "none a=b\n");
}

TEST(RunProgramTests, givesNothingToRead) {
    EXPECT_EQ(runProgram({"cat"}).out, "");
}

TEST(RunProgramTests, startsInTheGivenFolder) {
    EXPECT_EQ(runProgram({"pwd"}, {.folder = "/usr"}).out, "/usr\n");
}

TEST(RunProgramTests, stopsReadingBehindTheFirstLine) {
    const auto result = runProgram({"yes", "line"}, {.reading = Reading::firstLine});

    EXPECT_EQ(result.out, "line\n");
    EXPECT_EQ(result.status, -SIGPIPE);
}

TEST(RunProgramTests, canReadNothingAtAll) {
    const auto result = runProgram({"echo"}, {.reading = Reading::nothing});

    EXPECT_NE(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(RunProgramTests, endsAProgramThatTakesTooLong) {
    ProgramResult result;
    EXPECT_NONFATAL_FAILURE(
        {
            result = runProgram({"sh", "-c", "sleep 100 & sleep 100"},
                                {.environment = {},
                                 .folder = {},
                                 .reading = Reading::all,
                                 .timeLimit = std::chrono::milliseconds(50)});
        },
        "still running after 50 ms");
    EXPECT_EQ(result.status, -SIGKILL);
}

TEST(RunProgramTests, failsTheTestWhenThereIsNoSuchProgram) {
    EXPECT_NONFATAL_FAILURE(static_cast<void>(runProgram({"/no/such/program"})), "No such file");
}

} // namespace
} // namespace korvanti::testing
