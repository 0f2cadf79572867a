#include "cleaning/ActivityLog.h"

#include "support/TempFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::textOf;

/// Needs an ordinary user: root may write what is locked.
class ActivityLogPermissionTests : public ::testing::Test {
protected:
    ActivityLogPermissionTests() { temp.folder("logs"); }

    testing::TempFolder temp;
    const ActivityLog log{temp.path("logs/activity.jsonl")};
};

TEST_F(ActivityLogPermissionTests, aFileThatMayNotBeWrittenStaysAsItIs) {
    log.append({.title = "pertama"});
    const auto before = textOf(log.url());
    temp.setMode("logs/activity.jsonl", 0400);

    log.append({.title = "kedua"});

    EXPECT_EQ(textOf(log.url()), before);
    EXPECT_THAT(log.load(500), SizeIs(1));
}

TEST_F(ActivityLogPermissionTests, inAFolderThatMayNotBeWrittenNoFileIsMade) {
    temp.setMode("logs", 0500);
    log.append({.title = "pertama"});
    EXPECT_TRUE(std::filesystem::is_empty(temp.path("logs")));
}

TEST_F(ActivityLogPermissionTests, anExistingFileGrowsInAFolderThatMayNotBeWritten) {
    log.append({.title = "pertama"});
    temp.setMode("logs", 0500);
    log.append({.title = "kedua"});
    EXPECT_THAT(log.load(500), SizeIs(2));
}

TEST_F(ActivityLogPermissionTests, aFileThatMayNotBeReadLoadsAsNothingAndGrowsAllTheSame) {
    log.append({.title = "pertama"});
    temp.setMode("logs/activity.jsonl", 0200);
    EXPECT_THAT(log.load(500), IsEmpty());

    log.append({.title = "kedua"});

    temp.setMode("logs/activity.jsonl", 0600);
    EXPECT_THAT(log.load(500), SizeIs(2));
}

TEST_F(ActivityLogPermissionTests, aFolderThatMayNotBeEnteredHidesTheFile) {
    log.append({.title = "pertama"});
    temp.setMode("logs", 0600);
    EXPECT_THAT(log.load(500), IsEmpty());
    log.append({.title = "kedua"});

    temp.setMode("logs", 0700);
    EXPECT_THAT(log.load(500), SizeIs(1));
}

} // namespace
} // namespace korvanti
