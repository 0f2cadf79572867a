#include "analysis/InstalledApp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using ::testing::ElementsAre;

const Instant early = instantFromSeconds(1'700'000'000);
const Instant late = instantFromSeconds(1'750'000'000);

TEST(AppRoleTests, hasFiveCasesInOrder) {
    EXPECT_THAT(allCases<AppRole>, ElementsAre(AppRole::work, AppRole::communication, AppRole::nonWork,
                                               AppRole::system, AppRole::other));
}

TEST(AppRoleTests, eachRoleHasItsRawValueAndLabel) {
    EXPECT_EQ(rawValue(AppRole::work), "work");
    EXPECT_EQ(rawValue(AppRole::communication), "communication");
    EXPECT_EQ(rawValue(AppRole::nonWork), "nonWork");
    EXPECT_EQ(rawValue(AppRole::system), "system");
    EXPECT_EQ(rawValue(AppRole::other), "other");
    EXPECT_EQ(label(AppRole::work), "Kerja");
    EXPECT_EQ(label(AppRole::communication), "Komunikasi");
    EXPECT_EQ(label(AppRole::nonWork), "Non-kerja");
    EXPECT_EQ(label(AppRole::system), "Sistem");
    EXPECT_EQ(label(AppRole::other), "Lainnya");
}

TEST(InstalledAppTests, sumsItsData) {
    InstalledApp app;
    EXPECT_EQ(app.dataBytes(), 0);
    app.data = {{.path = "/a", .bytes = 30}, {.path = "/b", .bytes = 12}};
    EXPECT_EQ(app.dataBytes(), 42);
}

TEST(InstalledAppTests, itsTotalIsTheBundleAndTheData) {
    const InstalledApp app{.bytes = 100, .data = {{.path = "/a", .bytes = 30}, {.path = "/b", .bytes = 12}}};
    EXPECT_EQ(app.totalBytes(), 142);
}

TEST(InstalledAppTests, aSumBeyondTheRangeEndsTheProgram) {
    const InstalledApp app{.bytes = INT64_MAX, .data = {{.path = "/a", .bytes = 1}}};
    EXPECT_DEATH((void)app.totalBytes(), "");
}

TEST(InstalledAppTests, itsLastActivityIsTheLaterOfUseAndChange) {
    EXPECT_EQ((InstalledApp{.lastUsed = early, .dataActivity = late}.lastActivity()), late);
    EXPECT_EQ((InstalledApp{.lastUsed = late, .dataActivity = early}.lastActivity()), late);
}

TEST(InstalledAppTests, itsLastActivityIsTheOneThatIsKnown) {
    EXPECT_EQ((InstalledApp{.lastUsed = early}.lastActivity()), early);
    EXPECT_EQ((InstalledApp{.dataActivity = early}.lastActivity()), early);
    EXPECT_EQ(InstalledApp().lastActivity(), std::nullopt);
}

TEST(InstalledAppTests, anActivityBefore1970IsOneToo) {
    const Instant before = instantFromSeconds(-1);
    EXPECT_EQ((InstalledApp{.lastUsed = before}.lastActivity()), before);
}

TEST(InstalledAppTests, onlyOneOfTheSystemIsNotRemovable) {
    for (const AppRole role : allCases<AppRole>)
        EXPECT_EQ(InstalledApp{.role = role}.isRemovable(), role != AppRole::system) << rawValue(role);
}

} // namespace
} // namespace korvanti
