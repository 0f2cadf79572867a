#include "analysis/InstalledApps.h"

#include "fs/PathTools.h"
#include "support/BoxFolder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

const Instant now = instantFromSeconds(1'794'768'179);

class InstalledAppsBoxTests : public ::testing::Test {
protected:
    [[nodiscard]] static std::vector<InstalledApp> list(const std::string& home = "/Users/tester") {
        SizeLedger sizes;
        return InstalledApps::list(home, now, sizes);
    }
    [[nodiscard]] static std::vector<std::string> paths() {
        std::vector<std::string> paths;
        std::ranges::transform(list(), std::back_inserter(paths), &InstalledApp::path);
        return paths;
    }
    void answerProcesses(const std::string& lines, int status = 0) const {
        mac.answer("ps -axo comm=", lines, status);
    }
    /// Of the application at /Applications/Catatan.app, with these processes.
    [[nodiscard]] bool isRunning(const std::string& lines, int status = 0) const {
        mac.installApplication("Catatan", "com.contoh.catatan");
        answerProcesses(lines, status);
        const auto apps = list();
        EXPECT_THAT(apps, SizeIs(1));
        return !apps.empty() && apps[0].isRunning;
    }

    testing::BoxMac mac;
};

TEST_F(InstalledAppsBoxTests, listsTheRootsOfTheMacButNotTheSystems) {
    const testing::BoxFolder system("/System/Applications");
    mac.installApplication("A", "com.contoh.a");
    mac.installApplication("Utilities/B", "com.contoh.b");
    mac.home.folder("Applications/C.app");
    system.folder("D.app");
    EXPECT_THAT(paths(), UnorderedElementsAre("/Applications/A.app", "/Applications/Utilities/B.app",
                                              "/Users/tester/Applications/C.app"));
}

TEST_F(InstalledAppsBoxTests, theUsersApplicationsAreThoseOfTheProcessAndTheDataThatOfTheHomeAskedFor) {
    const testing::BoxFolder other("/Users/other");
    mac.home.folder("Applications/Buku.app");
    other.folder("Applications/Lain.app");
    mac.home.file("Library/Caches/Buku/file", {.allocatedBytes = 4096});
    other.file("Library/Logs/Buku/file", {.allocatedBytes = 4096});

    const auto apps = list("/Users/other");

    ASSERT_THAT(apps, SizeIs(1));
    EXPECT_EQ(apps[0].path, "/Users/tester/Applications/Buku.app");
    ASSERT_THAT(apps[0].data, SizeIs(1));
    EXPECT_EQ(apps[0].data[0].path, "/Users/other/Library/Logs/Buku");
}

TEST_F(InstalledAppsBoxTests, asksForTheProcessesOnceWhateverTheNumberOfApplications) {
    mac.installApplication("A", "com.contoh.a");
    mac.installApplication("B", "com.contoh.b");
    (void)list();
    EXPECT_THAT(mac.calls(), ElementsAre("ps -axo comm="));
}

TEST_F(InstalledAppsBoxTests, anApplicationRunsWhenAProcessIsInsideItsContents) {
    EXPECT_TRUE(isRunning("/sbin/launchd\n/Applications/Catatan.app/Contents/MacOS/Catatan\n"));
    EXPECT_TRUE(isRunning("/Applications/Catatan.app/Contents/Helpers/x.app/Contents/MacOS/x"));
}

TEST_F(InstalledAppsBoxTests, blanksAndEmptyLinesAroundAProcessDoNotMatter) {
    EXPECT_TRUE(isRunning("\n\n \t/Applications/Catatan.app/Contents/MacOS/Catatan \t\n\n"));
}

TEST_F(InstalledAppsBoxTests, aProcessElsewhereIsNotTheApplications) {
    EXPECT_FALSE(isRunning("/Applications/Catatan.app\n/Applications/Catatan.app/MacOS/Catatan\n"
                           "/Applications/Catatan.app/Contentsx/MacOS/Catatan\n"
                           "/Applications/Catatan.app 2/Contents/MacOS/Catatan\n"
                           "x /Applications/Catatan.app/Contents/MacOS/Catatan\n"
                           "/applications/Catatan.app/Contents/MacOS/Catatan\nCatatan\n"));
}

TEST_F(InstalledAppsBoxTests, whereTheProcessListFailsNothingRuns) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    const auto apps = list(); // nothing is laid down for ps
    ASSERT_THAT(apps, SizeIs(1));
    EXPECT_FALSE(apps[0].isRunning);
}

TEST_F(InstalledAppsBoxTests, whatAFailedProcessListSaidStillCounts) {
    EXPECT_TRUE(isRunning("/Applications/Catatan.app/Contents/MacOS/Catatan\n", 1));
}

TEST_F(InstalledAppsBoxTests, anApplicationWhoseNameIsNotUtf8IsSeenToRun) {
    mac.applications.folder("\xff.app/Contents");
    answerProcesses("/Applications/\xff.app/Contents/MacOS/x\n");
    const auto apps = list();
    ASSERT_THAT(apps, SizeIs(1));
    EXPECT_TRUE(apps[0].isRunning);
}

TEST_F(InstalledAppsBoxTests, aRunningApplicationIsNotSuggested) {
    mac.applications.folder("Steam.app/Contents");
    EXPECT_TRUE(list()[0].suggested);
    answerProcesses("/Applications/Steam.app/Contents/MacOS/steam_osx\n");
    const auto apps = list();
    EXPECT_FALSE(apps[0].suggested);
    EXPECT_EQ(apps[0].advice, "Sedang berjalan, jadi masih dipakai.");
}

TEST_F(InstalledAppsBoxTests, anApplicationWithoutDataIsListedLikeAnyOther) {
    mac.installApplication("Catatan", "com.contoh.catatan");
    const auto apps = list();
    ASSERT_THAT(apps, SizeIs(1));
    EXPECT_EQ(apps[0].bundleID, "com.contoh.catatan");
    EXPECT_THAT(apps[0].data, IsEmpty());
}

TEST_F(InstalledAppsBoxTests, dataThatCannotBeReadCountsAsMuchAsIsSeen) {
    mac.applications.folder("Buku.app");
    mac.home.file("Library/Caches/Buku/locked/file", {.allocatedBytes = 40960});
    mac.home.file("Library/Caches/Buku/file", {.allocatedBytes = 4096});
    mac.home.setMode("Library/Caches/Buku/locked", 0);
    const auto apps = list();
    mac.home.setMode("Library/Caches/Buku/locked", 0700);
    ASSERT_THAT(apps, SizeIs(1));
    EXPECT_EQ(apps[0].dataBytes(), testing::blocksOf("/Users/tester/Library/Caches/Buku/file"));
}

} // namespace
} // namespace korvanti
