#include "providers/PersonalFilesProvider.h"

#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Lt;
using testing::paths;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
/// The file system may keep a few blocks of its own with a large file.
constexpr std::int64_t below(std::int64_t bytes) {
    return (bytes / block - 8) * block;
}
constexpr std::int64_t above(std::int64_t bytes) {
    return (bytes / block + 1) * block;
}

constexpr std::int64_t hour = 3600;
constexpr std::int64_t day = 24 * hour;
constexpr std::int64_t now = 1'750'000'000;

class PersonalFilesProviderTests : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<CleanupItem> items() const {
        ScanContext context;
        context.home = home.path();
        context.now = instantFromSeconds(now);
        return PersonalFilesProvider().items(context);
    }

    /// The items of a home in which this file is all there is.
    [[nodiscard]] std::vector<CleanupItem> itemsOf(const std::string& relative, std::int64_t bytes) const {
        const auto path = home.file(relative, {.allocatedBytes = bytes, .modified = now});
        EXPECT_THAT(testing::blocksOf(path), AllOf(Ge(bytes), Lt(bytes + 8 * block)));
        auto found = items();
        std::filesystem::remove_all(home.path(relative.substr(0, relative.find('/'))));
        return found;
    }

    [[nodiscard]] std::vector<std::string> detailsOf(const std::string& relative, std::int64_t bytes) const {
        std::vector<std::string> details;
        std::ranges::transform(itemsOf(relative, bytes), std::back_inserter(details), &CleanupItem::detail);
        return details;
    }

    testing::TempFolder home;
};

constexpr const char* installerText =
    "Installer di Unduhan (0 hari). Biasanya tidak dibutuhkan lagi setelah app terpasang.";
constexpr const char* archiveText = "Arsip/paket di Unduhan (0 hari).";
constexpr const char* largeText = "Isi Unduhan berukuran besar (0 hari).";

TEST_F(PersonalFilesProviderTests, hasItsNameAndPriority) {
    const PersonalFilesProvider provider;

    EXPECT_EQ(provider.name(), "File pribadi");
    EXPECT_EQ(provider.priority(), 40);
}

TEST_F(PersonalFilesProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, findsNothingWhereFilesStandInPlaceOfTheFolders) {
    for (const auto* name : {"Downloads", "Pictures"})
        home.file(name, {.text = "x"});

    EXPECT_THAT(items(), IsEmpty());
}

// Downloads

TEST_F(PersonalFilesProviderTests, anInstallerInDownloadsHasAllItsFields) {
    const auto path =
        home.file("Downloads/Xcode 16.xip", {.allocatedBytes = above(5'000'000), .modified = now - 40 * day});

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{
                    .title = "Xcode 16.xip",
                    .detail = "Installer di Unduhan (40 hari). Biasanya tidak dibutuhkan lagi setelah "
                              "app terpasang.",
                    .path = path,
                    .bytes = testing::blocksOf(path),
                    .category = ItemCategory::personal,
                    .safety = Safety::review,
                    .action = CleanupAction::trash(),
                    .recommended = false,
                    .lastActivity = instantFromSeconds(now - 40 * day),
                    .offloadable = false,
                    .warnings = {},
                    .relatedPaths = std::nullopt}));
}

TEST_F(PersonalFilesProviderTests, anArchiveInDownloadsHasAllItsFields) {
    const auto path = home.file("Downloads/photos.tar.gz",
                                {.allocatedBytes = above(20'000'000), .modified = now - 2 * day});

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "photos.tar.gz",
                                                 .detail = "Arsip/paket di Unduhan (2 hari).",
                                                 .path = path,
                                                 .bytes = testing::blocksOf(path),
                                                 .category = ItemCategory::personal,
                                                 .safety = Safety::review,
                                                 .action = CleanupAction::trash(),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(now - 2 * day),
                                                 .offloadable = true,
                                                 .warnings = {},
                                                 .relatedPaths = std::nullopt}));
}

TEST_F(PersonalFilesProviderTests, anythingLargeInDownloadsHasAllItsFields) {
    const auto inside = home.file("Downloads/Course/lesson.mov", {.allocatedBytes = above(100'000'000)});
    home.setModified("Downloads/Course", now - day);

    EXPECT_THAT(items(), ElementsAre(CleanupItem{.title = "Course",
                                                 .detail = "Isi Unduhan berukuran besar (1 hari).",
                                                 .path = home.path("Downloads/Course"),
                                                 .bytes = testing::blocksOf(inside),
                                                 .category = ItemCategory::personal,
                                                 .safety = Safety::review,
                                                 .action = CleanupAction::trash(),
                                                 .recommended = false,
                                                 .lastActivity = instantFromSeconds(now - day),
                                                 .offloadable = true,
                                                 .warnings = {},
                                                 .relatedPaths = std::nullopt}));
}

TEST_F(PersonalFilesProviderTests, everyInstallerIsShownFromFiveMillionBytes) {
    for (const auto* extension : {"dmg", "pkg", "xip", "iso", "exe", "msi", "mpkg", "DMG", "Pkg"}) {
        const auto file = "Downloads/a." + std::string(extension);
        EXPECT_THAT(detailsOf(file, above(5'000'000)), ElementsAre(installerText)) << file;
        EXPECT_THAT(detailsOf(file, below(5'000'000)), IsEmpty()) << file;
    }
}

TEST_F(PersonalFilesProviderTests, everyArchiveIsShownFromTwentyMillionBytes) {
    for (const auto* extension :
         {"zip", "rar", "7z", "tar", "gz", "apk", "aab", "ipa", "deb", "appimage", "ZIP", "AppImage"}) {
        const auto file = "Downloads/a." + std::string(extension);
        EXPECT_THAT(detailsOf(file, above(20'000'000)), ElementsAre(archiveText)) << file;
        EXPECT_THAT(detailsOf(file, below(20'000'000)), IsEmpty()) << file;
    }
}

TEST_F(PersonalFilesProviderTests, anApplicationBundleIsAPackageFromTwentyMillionBytes) {
    const auto bundle = [this](const std::string& name, std::int64_t bytes) {
        home.file("Downloads/" + name + "/Contents/MacOS/a", {.allocatedBytes = bytes});
        home.setModified("Downloads/" + name, now);
        std::vector<std::string> details;
        std::ranges::transform(items(), std::back_inserter(details), &CleanupItem::detail);
        std::filesystem::remove_all(home.path("Downloads"));
        return details;
    };

    EXPECT_THAT(bundle("Foo.app", above(20'000'000)), ElementsAre(archiveText));
    EXPECT_THAT(bundle("Foo.app", below(20'000'000)), IsEmpty());
    EXPECT_THAT(bundle(".app", above(20'000'000)), ElementsAre(archiveText));
    EXPECT_THAT(bundle("folder", above(20'000'000)), IsEmpty());
    EXPECT_THAT(bundle("Foo.APP", above(20'000'000)), IsEmpty()) << "the ending is compared as it is";
}

TEST_F(PersonalFilesProviderTests, anythingElseIsShownFromAHundredMillionBytes) {
    for (const auto* name : {"video.mov", "plain", "photos.zip 2", "disk.img", "setup.tgz", "folder/file"}) {
        const auto file = "Downloads/" + std::string(name);
        EXPECT_THAT(itemsOf(file, above(100'000'000)), SizeIs(1)) << file;
        EXPECT_THAT(itemsOf(file, below(100'000'000)), IsEmpty()) << file;
    }
    EXPECT_THAT(detailsOf("Downloads/.hidden", above(100'000'000)), ElementsAre(largeText));
}

TEST_F(PersonalFilesProviderTests, largeInstallersAndArchivesKeepTheirOwnTexts) {
    EXPECT_THAT(detailsOf("Downloads/a.dmg", above(100'000'000)), ElementsAre(installerText));
    EXPECT_THAT(detailsOf("Downloads/a.zip", above(100'000'000)), ElementsAre(archiveText));
}

TEST_F(PersonalFilesProviderTests, onlyTheFirstLevelOfDownloadsIsLookedAt) {
    EXPECT_THAT(itemsOf("Downloads/folder/a.dmg", above(20'000'000)), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, theDaysAreWholeDaysOfTheEntryItself) {
    const auto detail = [this](std::int64_t modified) {
        home.file("Downloads/a.zip/inside",
                  {.allocatedBytes = above(20'000'000), .modified = now - 99 * day});
        home.setModified("Downloads/a.zip", modified);
        return items().at(0).detail;
    };

    EXPECT_EQ(detail(now), "Arsip/paket di Unduhan (0 hari).");
    EXPECT_EQ(detail(now - day + 1), "Arsip/paket di Unduhan (0 hari).");
    EXPECT_EQ(detail(now - day), "Arsip/paket di Unduhan (1 hari).");
    EXPECT_EQ(detail(now - 47 * hour), "Arsip/paket di Unduhan (1 hari).");
    EXPECT_EQ(detail(now - 400 * day), "Arsip/paket di Unduhan (400 hari).");
    EXPECT_EQ(detail(now + 3 * day), "Arsip/paket di Unduhan (-3 hari).");
}

TEST_F(PersonalFilesProviderTests, aSparseDownloadIsJudgedByItsBlocks) {
    home.file("Downloads/a.dmg", {.sparseBytes = 1'000'000'000});

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, aLinkInDownloadsIsNothing) {
    const testing::TempFolder elsewhere;
    elsewhere.file("a.dmg", {.allocatedBytes = above(5'000'000)});
    home.symlink("Downloads/a.dmg", elsewhere.path("a.dmg"));
    home.symlink("Downloads/b.app", elsewhere.path());
    home.symlink("Downloads/c.zip", "nowhere");

    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, downloadsThatLieElsewhereAreListedUnderTheirOwnName) {
    const testing::TempFolder elsewhere;
    elsewhere.file("a.dmg", {.allocatedBytes = above(5'000'000)});
    home.symlink("Downloads", elsewhere.path());

    EXPECT_THAT(paths(items()), ElementsAre(home.path("Downloads/a.dmg")));
}

#ifndef __APPLE__ // whose file systems take no such names
TEST_F(PersonalFilesProviderTests, aDownloadWithANameThatIsNoTextStaysAsItIs) {
    const auto path = home.file("Downloads/\xff\xfe.DMG", {.allocatedBytes = above(5'000'000)});
    home.file("Downloads/a.dm\xffg", {.allocatedBytes = above(5'000'000)});

    const auto found = items();

    ASSERT_THAT(paths(found), ElementsAre(path));
    EXPECT_EQ(found[0].title, "\xff\xfe.DMG");
}
#endif

// Photos

TEST_F(PersonalFilesProviderTests, aPhotosLibraryHasAllItsFields) {
    const auto inside =
        home.file("Pictures/Foto 2.0.photoslibrary/originals/a.heic", {.allocatedBytes = above(200'000'000)});
    home.setModified("Pictures/Foto 2.0.photoslibrary", now - 5 * day);

    EXPECT_THAT(
        items(),
        ElementsAre(CleanupItem{
            .title = "Library Photos (Foto 2.0)",
            .detail = "Kelola lewat app Photos agar sinkron iCloud tetap benar.",
            .path = home.path("Pictures/Foto 2.0.photoslibrary"),
            .bytes = testing::blocksOf(inside),
            .category = ItemCategory::personal,
            .safety = Safety::managed,
            .action = CleanupAction::manual(
                "Photos › Settings › iCloud › 'Optimize Mac Storage', atau pindahkan library ke SSD: tutup "
                "Photos, salin .photoslibrary ke SSD, lalu buka sambil menahan Option."),
            .recommended = false,
            .lastActivity = instantFromSeconds(now - 5 * day),
            .offloadable = false,
            .warnings = {},
            .relatedPaths = std::nullopt}));
}

TEST_F(PersonalFilesProviderTests, aPhotosLibraryIsShownFromTwoHundredMillionBytes) {
    EXPECT_THAT(itemsOf("Pictures/a.photoslibrary/file", above(200'000'000)), SizeIs(1));
    EXPECT_THAT(itemsOf("Pictures/a.photoslibrary/file", below(200'000'000)), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, aPhotosLibraryIsKnownByItsExactExtension) {
    for (const auto* name : {"a.Photoslibrary", "a.photolibrary", "photoslibrary", ".photoslibrary"})
        EXPECT_THAT(itemsOf("Pictures/" + std::string(name) + "/file", above(200'000'000)), IsEmpty())
            << name;
}

TEST_F(PersonalFilesProviderTests, everyPhotosLibraryIsShown) {
    home.file("Pictures/a.photoslibrary/file", {.allocatedBytes = above(200'000'000)});
    home.file("Pictures/b.photoslibrary/._file", {.allocatedBytes = above(200'000'000)});
    home.file("Pictures/folder/c.photoslibrary/file", {.allocatedBytes = above(200'000'000)});

    EXPECT_THAT(paths(items()), UnorderedElementsAre(home.path("Pictures/a.photoslibrary"),
                                                     home.path("Pictures/b.photoslibrary")));
}

TEST_F(PersonalFilesProviderTests, aPhotosLibraryBehindALinkIsNothing) {
    const testing::TempFolder elsewhere;
    elsewhere.file("file", {.allocatedBytes = above(200'000'000)});
    home.symlink("Pictures/a.photoslibrary", elsewhere.path());

    EXPECT_THAT(items(), IsEmpty());
}

// Large files

TEST_F(PersonalFilesProviderTests, aLargeFileIsShownFromThreeHundredMillionBytes) {
    EXPECT_THAT(itemsOf("Movies/a.mov", above(300'000'000)), SizeIs(1));
    EXPECT_THAT(itemsOf("Movies/a.mov", below(300'000'000)), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, aLargeFileDeepInDownloadsIsPartOfItsFolderOnly) {
    home.file("Downloads/folder/a.mov", {.allocatedBytes = above(300'000'000)});

    EXPECT_THAT(paths(items()), ElementsAre(home.path("Downloads/folder")));
}

// Trash

TEST_F(PersonalFilesProviderTests, theTrashHasAllItsFields) {
    const auto one = home.file(".Trash/a.mov", {.allocatedBytes = above(10'000'000)});
    const auto two = home.file(".Trash/folder/._b", {.allocatedBytes = block});
    home.symlink(".Trash/link", "nowhere");

    EXPECT_THAT(items(), ElementsAre(CleanupItem{
                             .title = "Isi Tong Sampah",
                             .detail = "3 file. Mengosongkan Tong Sampah menghapus permanen isinya.",
                             .path = home.path(".Trash"),
                             .bytes = testing::blocksOf(one) + testing::blocksOf(two) +
                                      testing::blocksOf(home.path(".Trash/link")),
                             .category = ItemCategory::personal,
                             .safety = Safety::review,
                             .action = CleanupAction::emptyTrash(),
                             .recommended = false,
                             .lastActivity = std::nullopt,
                             .offloadable = false,
                             .warnings = {},
                             .relatedPaths = std::nullopt}));
}

TEST_F(PersonalFilesProviderTests, theTrashIsShownFromTenMillionBytes) {
    EXPECT_THAT(itemsOf(".Trash/a", above(10'000'000)), SizeIs(1));
    EXPECT_THAT(itemsOf(".Trash/a", below(10'000'000)), IsEmpty());
}

TEST_F(PersonalFilesProviderTests, aTrashBehindALinkIsNothing) {
    const testing::TempFolder elsewhere;
    elsewhere.file("file", {.allocatedBytes = above(10'000'000)});
    home.symlink(".Trash", elsewhere.path());

    EXPECT_THAT(items(), IsEmpty());
}

// All together

TEST_F(PersonalFilesProviderTests, downloadsPhotosLargeFilesAndTrashComeInThisOrder) {
    const auto trash = home.file(".Trash/a", {.allocatedBytes = above(10'000'000)});
    const auto large = home.file("Movies/a.mov", {.allocatedBytes = above(300'000'000)});
    home.file("Pictures/a.photoslibrary/file", {.allocatedBytes = above(200'000'000)});
    const auto download = home.file("Downloads/a.dmg", {.allocatedBytes = above(5'000'000)});

    EXPECT_THAT(paths(items()),
                ElementsAre(download, home.path("Pictures/a.photoslibrary"), large, home.path(".Trash")));
}

TEST_F(PersonalFilesProviderTests, projectRootsAreLeftToOthers) {
    home.file("Code/app/disk.img", {.allocatedBytes = above(300'000'000)});
    ScanContext context;
    context.home = home.path();
    context.devRoots = {home.path("Code")};

    EXPECT_THAT(PersonalFilesProvider().items(context), IsEmpty());
}

} // namespace
} // namespace korvanti
