#include "providers/AndroidSDKProvider.h"

#include "fs/PathTools.h"
#include "support/Environment.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::paths;
using testing::ScopedVariable;
using ::testing::SizeIs;
using testing::titles;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow20MB = 20'000'000 / block * block;
constexpr std::int64_t justAbove20MB = justBelow20MB + block;
constexpr std::int64_t date = 1'700'000'000;

class AndroidSDKProviderTests : public ::testing::Test {
protected:
    AndroidSDKProviderTests() { context.home = home.path(); }

    [[nodiscard]] std::vector<CleanupItem> items() const {
        return testing::itemsOfOneScan(AndroidSDKProvider(), context);
    }

    /// The one item of the home folder.
    [[nodiscard]] CleanupItem item() const {
        const auto found = items();
        EXPECT_THAT(found, SizeIs(1));
        return found.empty() ? CleanupItem() : found[0];
    }

    /// A package of a size that is shown, in the SDK of the home folder.
    std::string package(const std::string& relative, std::int64_t bytes = justAbove20MB) const {
        return folder("Library/Android/sdk/" + relative, bytes);
    }
    std::string folder(const std::string& relative, std::int64_t bytes = justAbove20MB) const {
        home.file(relative + "/data", {.allocatedBytes = bytes});
        home.setModified(relative, date);
        return home.path(relative);
    }

    testing::TempFolder home;
    ScanContext context;

private:
    ScopedVariable noAndroidHome_{"ANDROID_HOME", std::nullopt};
    ScopedVariable noAndroidSdkRoot_{"ANDROID_SDK_ROOT", std::nullopt};
};

TEST_F(AndroidSDKProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(AndroidSDKProvider().name(), "Android SDK");
    EXPECT_EQ(AndroidSDKProvider().priority(), 90);
}

TEST_F(AndroidSDKProviderTests, withoutAnSdkThereAreNoItems) {
    EXPECT_THAT(items(), IsEmpty());
}

// The six places

TEST_F(AndroidSDKProviderTests, anNdkThatAProjectRefersToIsKept) {
    const auto path = package("ndk/26.1.10909125");
    context.projects.buildFileText = "android { ndkVersion = \"26.1.10909125\" }\n";

    EXPECT_EQ(item(), (CleanupItem{.title = "NDK 26.1.10909125",
                                   .detail = "Dirujuk `ndkVersion` proyek Anda.",
                                   .path = path,
                                   .bytes = justAbove20MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::keep,
                                   .action = CleanupAction::manual("Masih dipakai."),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(date),
                                   .offloadable = false,
                                   .warnings = {},
                                   .relatedPaths = std::nullopt}));
}

TEST_F(AndroidSDKProviderTests, anNdkThatNoProjectRefersToIsCostlyAndNotRecommended) {
    const auto path = package("ndk/26.1.10909125");

    EXPECT_EQ(item(),
              (CleanupItem{.title = "NDK 26.1.10909125 (tidak dirujuk)",
                           .detail = "Tidak ada proyek yang merujuk versi ini. Bisa diunduh ulang lewat "
                                     "sdkmanager (±1 GB).",
                           .path = path,
                           .bytes = justAbove20MB,
                           .category = ItemCategory::android,
                           .safety = Safety::costly,
                           .action = CleanupAction::delete_(),
                           .recommended = false,
                           .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, theStartOfAnNdkVersionIsNoReference) {
    package("ndk/26.1.10909125");
    context.projects.buildFileText = "ndkVersion = \"26.1\"";

    EXPECT_EQ(item().title, "NDK 26.1.10909125 (tidak dirujuk)");
}

TEST_F(AndroidSDKProviderTests, anNdkVersionCountsWhereverItStandsInTheText) {
    package("ndk/26.1.10909125");
    context.projects.buildFileText = "x26.1.109091257";

    EXPECT_EQ(item().title, "NDK 26.1.10909125");
}

TEST_F(AndroidSDKProviderTests, oldBuildToolsThatAProjectRefersToAreCostly) {
    const auto path = package("build-tools/33.0.1");
    package("build-tools/34.0.0");
    context.projects.buildFileText = "buildToolsVersion \"33.0.1\"";

    EXPECT_EQ(item(), (CleanupItem{.title = "Build-tools 33.0.1",
                                   .detail = "Dirujuk proyek Anda.",
                                   .path = path,
                                   .bytes = justAbove20MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::costly,
                                   .action = CleanupAction::delete_(),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, oldBuildToolsThatNoProjectRefersToAreCostlyToo) {
    const auto path = package("build-tools/33.0.1");
    package("build-tools/34.0.0");

    EXPECT_EQ(item(),
              (CleanupItem{.title = "Build-tools 33.0.1",
                           .detail = "Versi lama. AGP mengunduh ulang otomatis bila versinya dibutuhkan.",
                           .path = path,
                           .bytes = justAbove20MB,
                           .category = ItemCategory::android,
                           .safety = Safety::costly,
                           .action = CleanupAction::delete_(),
                           .recommended = false,
                           .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, theOnlyBuildToolsAreNotListed) {
    package("build-tools/34.0.0");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(AndroidSDKProviderTests, theNewestBuildToolsAreFoundByNumberAndNotByText) {
    for (const auto* name : {"9.0.0", "10.0.0", "35.0.0-rc1", "34.0.0"})
        package("build-tools/" + std::string(name));

    EXPECT_THAT(titles(items()),
                UnorderedElementsAre("Build-tools 9.0.0", "Build-tools 10.0.0", "Build-tools 34.0.0"));
}

TEST_F(AndroidSDKProviderTests, ofEquallyNewBuildToolsTheFirstInTheListingIsTheNewest) {
    for (const auto* name : {"34.0.0", "android-34", "34", "34.0"})
        package("build-tools/" + std::string(name));
    auto expected = PathTools::subfolders(home.path("Library/Android/sdk/build-tools"));
    ASSERT_THAT(expected, SizeIs(4));
    expected.erase(expected.begin());

    EXPECT_EQ(paths(items()), expected);
}

TEST_F(AndroidSDKProviderTests, theNewestBuildToolsStayOutHoweverSmall) {
    package("build-tools/33.0.1");
    package("build-tools/34.0.0", block);

    EXPECT_THAT(titles(items()), ElementsAre("Build-tools 33.0.1"));
}

TEST_F(AndroidSDKProviderTests, aPlatformThatAProjectCompilesAgainstIsKept) {
    const auto path = package("platforms/android-34");
    context.projects.buildFileText = "compileSdk = 34";

    EXPECT_EQ(item(), (CleanupItem{.title = "Platform Android 34",
                                   .detail = "compileSdk proyek Anda.",
                                   .path = path,
                                   .bytes = justAbove20MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::keep,
                                   .action = CleanupAction::manual("Masih dipakai."),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, aPlatformThatNoProjectCompilesAgainstIsCostlyAndRecommended) {
    const auto path = package("platforms/android-34");
    context.projects.buildFileText = "compileSdk = 35 // was 34";

    EXPECT_EQ(item(),
              (CleanupItem{.title = "Platform Android 34 (tidak dipakai)",
                           .detail = "Tidak ada proyek dengan compileSdk 34. Diunduh ulang otomatis bila "
                                     "dibutuhkan.",
                           .path = path,
                           .bytes = justAbove20MB,
                           .category = ItemCategory::android,
                           .safety = Safety::costly,
                           .action = CleanupAction::delete_(),
                           .recommended = true,
                           .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, aPlatformShowsTheNumberInItsName) {
    context.projects.buildFileText = "compileSdk = 34";
    const std::pair<std::string, std::string> names[] = {
        {"android-34", "Platform Android 34"},
        {"34", "Platform Android 34"},
        {"android-android-34", "Platform Android 34"},
        {"3android-4", "Platform Android 34"},
        {"android-034", "Platform Android 34"},
        {"android-35", "Platform Android 35 (tidak dipakai)"},
        {"android-9", "Platform Android 9 (tidak dipakai)"},
        {"android-34-ext8", "Platform Android 0 (tidak dipakai)"},
        {"android-VanillaIceCream", "Platform Android 0 (tidak dipakai)"},
        {"android-", "Platform Android 0 (tidak dipakai)"},
        {"Android-34", "Platform Android 0 (tidak dipakai)"},
        {"android- 34", "Platform Android 0 (tidak dipakai)"},
        {"andandroid-roid-34", "Platform Android 0 (tidak dipakai)"},
        {"99999999999999999999", "Platform Android 0 (tidak dipakai)"},
    };
    for (const auto& [name, title] : names) {
        const testing::TempFolder own;
        own.file("Library/Android/sdk/platforms/" + name + "/data", {.allocatedBytes = justAbove20MB});
        context.home = own.path();

        EXPECT_EQ(item().title, title) << name;
    }
}

TEST_F(AndroidSDKProviderTests, sourcesAreRecommended) {
    const auto path = package("sources/android-34");

    EXPECT_EQ(item(),
              (CleanupItem{.title = "Source Android (android-34)",
                           .detail = "Hanya untuk navigasi kode di IDE; tidak dibutuhkan untuk build.",
                           .path = path,
                           .bytes = justAbove20MB,
                           .category = ItemCategory::android,
                           .safety = Safety::regenerable,
                           .action = CleanupAction::delete_(),
                           .recommended = true,
                           .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, systemImagesGoToTheTrashAndAreNotRecommended) {
    package("system-images/android-34/google_apis/arm64-v8a");
    const auto path = home.path("Library/Android/sdk/system-images/android-34");
    home.setModified("Library/Android/sdk/system-images/android-34", date);

    EXPECT_EQ(item(), (CleanupItem{.title = "System image emulator (android-34)",
                                   .detail = "Image emulator. Anda menguji di perangkat asli.",
                                   .path = path,
                                   .bytes = justAbove20MB,
                                   .category = ItemCategory::android,
                                   .safety = Safety::review,
                                   .action = CleanupAction::trash(),
                                   .recommended = false,
                                   .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, theEmulatorIsCostlyAndNotRecommended) {
    const auto path = package("emulator");

    EXPECT_EQ(item(),
              (CleanupItem{.title = "Android Emulator",
                           .detail = "Program emulator. Tidak dibutuhkan bila selalu uji di perangkat asli.",
                           .path = path,
                           .bytes = justAbove20MB,
                           .category = ItemCategory::android,
                           .safety = Safety::costly,
                           .action = CleanupAction::delete_(),
                           .recommended = false,
                           .lastActivity = instantFromSeconds(date)}));
}

TEST_F(AndroidSDKProviderTests, thePlacesComeInTheirOrder) {
    for (const auto* name : {"emulator", "system-images/a", "sources/b", "platforms/android-30",
                             "build-tools/1.0", "build-tools/2.0", "ndk/3"})
        package(name);

    EXPECT_THAT(titles(items()),
                ElementsAre("NDK 3 (tidak dirujuk)", "Build-tools 1.0", "Platform Android 30 (tidak dipakai)",
                            "Source Android (b)", "System image emulator (a)", "Android Emulator"));
}

TEST_F(AndroidSDKProviderTests, otherPackagesAreLeftAlone) {
    for (const auto* name :
         {"cmdline-tools/latest", "platform-tools", "licenses", "ndk-bundle", "cmake/3.22"})
        package(name);

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(AndroidSDKProviderTests, filesAndLinksAreNoCandidates) {
    folder("elsewhere");
    for (const auto* place : {"ndk", "build-tools", "platforms", "sources", "system-images"}) {
        const auto in = "Library/Android/sdk/" + std::string(place);
        home.file(in + "/35", {.allocatedBytes = justAbove20MB});
        home.symlink(in + "/36", home.path("elsewhere"));
    }
    home.symlink("Library/Android/sdk/emulator", home.path("elsewhere"));

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(AndroidSDKProviderTests, anEmulatorThatIsAFileIsNone) {
    home.file("Library/Android/sdk/emulator", {.allocatedBytes = justAbove20MB});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(AndroidSDKProviderTests, aPlaceThatIsNoFolderDoesNotHinderTheOthers) {
    home.file("Library/Android/sdk/ndk");
    home.symlink("Library/Android/sdk/platforms", "nowhere");
    package("sources/android-34");

    EXPECT_THAT(titles(items()), ElementsAre("Source Android (android-34)"));
}

TEST_F(AndroidSDKProviderTests, whatIsSmallerThanTwentyMegabytesIsNotShown) {
    package("build-tools/99");
    for (const auto* place :
         {"ndk/1", "build-tools/1", "platforms/1", "sources/1", "system-images/1", "emulator"}) {
        const testing::TempFolder own;
        own.file("Library/Android/sdk/build-tools/99/data", {.allocatedBytes = block});
        const auto file = "Library/Android/sdk/" + std::string(place) + "/data";
        own.file(file, {.allocatedBytes = justBelow20MB});
        ASSERT_EQ(testing::blocksOf(own.path(file)), justBelow20MB);
        context.home = own.path();
        EXPECT_THAT(items(), IsEmpty()) << place;

        own.file(file + " and one block", {.allocatedBytes = block});
        EXPECT_THAT(items(), ElementsAre(::testing::Field(&CleanupItem::bytes, justAbove20MB))) << place;
    }
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(AndroidSDKProviderTests, aNameThatIsNoTextIsAName) {
    const auto path = package("ndk/\xff");

    EXPECT_EQ(item().path, path);
    EXPECT_EQ(item().title, "NDK \xff (tidak dirujuk)");
}
#endif

// Where the SDK is

class AndroidSDKPlaceTests : public AndroidSDKProviderTests {
protected:
    AndroidSDKPlaceTests() {
        package("emulator");
        folder("first/emulator");
        folder("second/emulator");
    }

    /// The SDK whose emulator is found, with these two variables.
    [[nodiscard]] std::string found(std::optional<std::string> first,
                                    std::optional<std::string> second) const {
        const ScopedVariable androidHome("ANDROID_HOME", std::move(first));
        const ScopedVariable androidSdkRoot("ANDROID_SDK_ROOT", std::move(second));
        const auto path = item().path;
        EXPECT_EQ(PathTools::lastComponent(path), "emulator");
        return std::string(PathTools::parent(path));
    }

    const std::string usual = home.path("Library/Android/sdk");
};

TEST_F(AndroidSDKPlaceTests, withoutVariablesItIsInTheHomeFolder) {
    EXPECT_EQ(found(std::nullopt, std::nullopt), usual);
}

TEST_F(AndroidSDKPlaceTests, androidHomeComesFirst) {
    EXPECT_EQ(found(home.path("first"), home.path("second")), home.path("first"));
    EXPECT_EQ(found(home.path("first"), std::nullopt), home.path("first"));
}

TEST_F(AndroidSDKPlaceTests, androidSdkRootCountsWithoutAndroidHome) {
    EXPECT_EQ(found(std::nullopt, home.path("second")), home.path("second"));
}

TEST_F(AndroidSDKPlaceTests, whereAndroidHomeIsNoFolderAndroidSdkRootIsNotTried) {
    ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);

    for (const auto& place : {home.file("file"), home.path("pipe"), home.path("missing"),
                              home.path("file/in it"), home.symlink("link", home.path("first")),
                              home.symlink("dangling", "nowhere"), std::string("/dev/null"), std::string()})
        EXPECT_EQ(found(place, home.path("second")), usual) << place;
}

TEST_F(AndroidSDKPlaceTests, whereAndroidSdkRootIsNoFolderItIsInTheHomeFolder) {
    EXPECT_EQ(found(std::nullopt, home.file("file")), usual);
    EXPECT_EQ(found(std::nullopt, ""), usual);
}

TEST_F(AndroidSDKPlaceTests, aSlashBehindItDoesNotComeOutInThePaths) {
    EXPECT_EQ(found(home.path("first//"), std::nullopt), home.path("first"));
}

TEST_F(AndroidSDKPlaceTests, aSlashBehindALinkMakesItNoFolder) {
    home.symlink("link", home.path("first"));

    EXPECT_EQ(found(home.path("link/"), std::nullopt), usual);
}

TEST_F(AndroidSDKPlaceTests, aRelativePathIsNone) {
    const auto folder = std::filesystem::current_path();
    std::filesystem::current_path(home.path());

    EXPECT_EQ(found("first", std::nullopt), usual);
    EXPECT_EQ(found("./first", std::nullopt), usual);
    EXPECT_EQ(found(".", std::nullopt), usual);

    std::filesystem::current_path(folder);
}

TEST_F(AndroidSDKPlaceTests, aTildeIsNotTakenForTheHomeFolder) {
    EXPECT_EQ(found("~/first", std::nullopt), usual);
}

TEST_F(AndroidSDKPlaceTests, aFolderThatHoldsTheHomeFolderOrAProjectRootIsNone) {
    home.folder("emulator");
    home.folder("code/emulator");
    home.folder("code/own/deep");
    context.devRoots = {home.path("code/own"), home.path("other")};
    for (const auto& place : {home.path(), std::string("/"), std::string(PathTools::parent(home.path())),
                              home.path("code"), home.path("code/own")})
        EXPECT_EQ(found(place, std::nullopt), usual) << place;
    EXPECT_EQ(found(home.path("first"), std::nullopt), home.path("first"));
}

TEST_F(AndroidSDKPlaceTests, theHomeFolderIsNoneInAnySpelling) {
    folder("emulator");
    home.symlink("link", ".");
    for (const auto* spelling : {".", "./.", "first/..", "link/."})
        EXPECT_EQ(found(home.path(spelling), std::nullopt), usual) << spelling;
}

TEST_F(AndroidSDKPlaceTests, theHomeFolderIsNoneWhereItIsKnownByALink) {
    folder("real/emulator");
    folder("real/Library/Android/sdk/emulator");
    context.home = home.symlink("link", home.path("real"));

    EXPECT_EQ(found(home.path("real"), std::nullopt), home.path("link/Library/Android/sdk"));
}

TEST_F(AndroidSDKPlaceTests, aRepositoryIsNone) {
    home.folder("first/.git");

    EXPECT_EQ(found(home.path("first"), std::nullopt), usual);
}

} // namespace
} // namespace korvanti
