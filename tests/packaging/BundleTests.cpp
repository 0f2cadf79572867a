#include "base/PropertyList.h"
#include "support/RunProgram.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>

namespace korvanti::testing {
namespace {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

const std::string macos = KORVANTI_SOURCE "/packaging/macos/";

/// The bundle as a Mac's user gets it, but for Qt inside and the signature.
class BundleTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = new TempFolder;
        const auto result = runProgram({KORVANTI_CMAKE, "--install", KORVANTI_BUILD, "--component", "bundle",
                                        "--prefix", folder->path()});
        ASSERT_EQ(result.status, 0) << result.err;
    }
    static void TearDownTestSuite() {
        delete folder;
        folder = nullptr;
    }

    [[nodiscard]] static std::string contents(const std::string& path) {
        return folder->path("Korvanti.app/Contents/" + path);
    }

    static inline TempFolder* folder = nullptr;
};

PropertyList info() {
    return PropertyList::parse(textOf(KORVANTI_BUILD "/packaging/Info.plist")).value_or(PropertyList());
}

std::set<std::string> filesIn(const std::string& folder) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_directory())
            files.insert(std::filesystem::relative(entry.path(), folder).string());
    }
    return files;
}

TEST_F(BundleTests, holdsBothProgramsAndNothingTwice) {
    EXPECT_THAT(filesIn(folder->path()),
                UnorderedElementsAre(
                    "Korvanti.app/Contents/Info.plist", "Korvanti.app/Contents/MacOS/korvanti",
                    "Korvanti.app/Contents/MacOS/korvanti-window", "Korvanti.app/Contents/Resources/LICENSE",
                    "Korvanti.app/Contents/Resources/completions/_korvanti",
                    "Korvanti.app/Contents/Resources/completions/korvanti.bash",
                    "Korvanti.app/Contents/Resources/completions/korvanti.fish",
                    "Korvanti.app/Contents/Resources/korvanti.icns",
                    "Korvanti.app/Contents/Resources/man/man1/korvanti.1"));
}

TEST_F(BundleTests, holdsWhatItsDescriptionNames) {
    EXPECT_EQ(textOf(contents("Info.plist")), textOf(KORVANTI_BUILD "/packaging/Info.plist"));
    EXPECT_TRUE(
        std::filesystem::exists(contents("MacOS/" + info().text("CFBundleExecutable").value_or("-"))));
    EXPECT_TRUE(
        std::filesystem::exists(contents("Resources/" + info().text("CFBundleIconFile").value_or("-"))));
}

TEST_F(BundleTests, theCommandRunsThroughALinkFromElsewhere) {
    const auto link = folder->symlink("bin/korvanti", contents("MacOS/korvanti"));
    const auto result = runProgram({link, "--help"});
    std::filesystem::remove_all(folder->path("bin"));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("--report"));
}

TEST(BundleInfoTests, isDescribedInFull) {
    const auto list = info();
    const std::pair<const char*, const char*> wanted[] = {
        {"CFBundleDevelopmentRegion", "id"},
        {"CFBundleExecutable", "korvanti-window"},
        {"CFBundleIconFile", "korvanti.icns"},
        {"CFBundleIdentifier", "id.korvanti.korvanti"},
        {"CFBundleInfoDictionaryVersion", "6.0"},
        {"CFBundleName", "Korvanti"},
        {"CFBundlePackageType", "APPL"},
        {"CFBundleShortVersionString", KORVANTI_VERSION},
        {"CFBundleVersion", KORVANTI_VERSION},
        {"LSApplicationCategoryType", "public.app-category.utilities"},
        {"LSMinimumSystemVersion", "13.0"},
        {"NSPrincipalClass", "NSApplication"},
    };
    for (const auto& [key, value] : wanted)
        EXPECT_EQ(list.text(key), value) << key;
    const auto* const sharp = list.find("NSHighResolutionCapable");
    ASSERT_NE(sharp, nullptr);
    EXPECT_EQ(sharp->boolean(), true);
    const auto* const languages = list.find("CFBundleLocalizations");
    ASSERT_NE(languages, nullptr);
    ASSERT_NE(languages->array(), nullptr);
    EXPECT_THAT(*languages->array(), ElementsAre(PropertyList(std::string("id"))));
    EXPECT_EQ(list.find("LSUIElement"), nullptr) << "it has a window, and so a place in the Dock";
}

TEST(BundleInfoTests, saysWhatEachOfTheUsersFoldersIsReadFor) {
    const auto list = info();
    ASSERT_NE(list.dictionary(), nullptr);
    std::set<std::string> asked;
    for (const auto& [key, value] : *list.dictionary()) {
        if (!key.ends_with("UsageDescription"))
            continue;
        asked.insert(key);
        EXPECT_THAT(value.text().value_or(""), AllOf(StartsWith("Korvanti m"), EndsWith("."))) << key;
    }
    EXPECT_THAT(asked, ElementsAre("NSAppDataUsageDescription", "NSDesktopFolderUsageDescription",
                                   "NSDocumentsFolderUsageDescription", "NSDownloadsFolderUsageDescription",
                                   "NSRemovableVolumesUsageDescription"));
}

TEST(BundleInfoTests, asksForNoExceptionFromTheHardenedRuntime) {
    const auto list = PropertyList::parse(textOf(macos + "Korvanti.entitlements"));
    ASSERT_TRUE(list);
    EXPECT_EQ(*list, PropertyList(PropertyList::Dictionary()));
}

/// Programs that note how they were called, and fail where they are told to.
class DeployTests : public ::testing::Test {
protected:
    DeployTests() {
        for (const char* name : {"macdeployqt", "codesign"}) {
            temp.file(std::string("tools/") + name,
                      {.text = "#!/bin/sh\nprintf '%s' \"${0##*/}\"; printf ' %s' \"$@\"; echo\n"
                               "case \" $* \" in *\"$REFUSED \"*) exit 1 ;; esac\n"});
            temp.setMode(std::string("tools/") + name, 0755);
        }
        temp.file("K.app/Contents/MacOS/korvanti");
        temp.file("K.app/Contents/PlugIns/platforms/libqcocoa.dylib");
        temp.file("K.app/Contents/Frameworks/libtbb.12.dylib");
        temp.file("K.app/Contents/Frameworks/QtCore.framework/Versions/A/QtCore");
    }

    [[nodiscard]] ProgramResult deploy(const std::string& identity,
                                       const std::string& refused = "nothing") const {
        return runProgram({KORVANTI_CMAKE, "-DKORVANTI_BUNDLE=" + temp.path("K.app"),
                           "-DKORVANTI_MACDEPLOYQT=" + temp.path("tools/macdeployqt"),
                           "-DKORVANTI_SOURCE=/source", "-P", macos + "Deploy.cmake"},
                          {.environment = {{"PATH", temp.path("tools") + ":/usr/bin:/bin"},
                                           {"KORVANTI_SIGN_IDENTITY", identity},
                                           {"REFUSED", refused}}});
    }

    TempFolder temp;
};

TEST_F(DeployTests, signsWhatIsInsideBeforeTheBundle) {
    const auto bundle = temp.path("K.app");
    const std::string sign = "codesign --force --sign -";
    const std::string entitled = sign + " --entitlements /source/packaging/macos/Korvanti.entitlements ";
    const auto result = deploy("");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "macdeployqt " + bundle + " -executable=" + bundle +
                              "/Contents/MacOS/korvanti -qmldir=/source/app/ui\n" + sign + " " + bundle +
                              "/Contents/Frameworks/libtbb.12.dylib\n" + sign + " " + bundle +
                              "/Contents/PlugIns/platforms/libqcocoa.dylib\n" + sign + " " + bundle +
                              "/Contents/Frameworks/QtCore.framework\n" + entitled + bundle +
                              "/Contents/MacOS/korvanti\n" + entitled + bundle + "\n" +
                              "codesign --verify --deep --strict " + bundle + "\n");
}

TEST_F(DeployTests, anIdentitySignsForTheHardenedRuntime) {
    const auto result = deploy("Developer ID: A (B)");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out,
                HasSubstr("codesign --force --sign Developer ID: A (B) --options runtime --timestamp "
                          "--entitlements /source/packaging/macos/Korvanti.entitlements " +
                          temp.path("K.app") + "\n"));
}

TEST_F(DeployTests, aToolThatFailsEndsIt) {
    const auto result = deploy("", "libqcocoa.dylib");
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.out, Not(HasSubstr("--verify")));
}

TEST(CaskTests, isFilledFromTheDiskImage) {
    const TempFolder temp;
    const auto image = temp.file("Korvanti-" KORVANTI_VERSION "-arm64.dmg", {.text = "abc"});
    const auto result = runProgram(
        {macos + "cask", image, "https://there.invalid/a&b\\1.dmg", "https://there.invalid", "ventura"});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* line :
         {"\n  version \"" KORVANTI_VERSION "\"\n",
          "\n  sha256 \"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\"\n",
          "\n  url \"https://there.invalid/a&b\\1.dmg\"\n", "\n  homepage \"https://there.invalid\"\n",
          "\n  depends_on macos: \">= :ventura\"\n", "\n  depends_on arch: :arm64\n",
          "\n  uninstall quit: \"id.korvanti.korvanti\"\n"})
        EXPECT_THAT(result.out, HasSubstr(line));
    EXPECT_THAT(result.out, Not(ContainsRegex("@[A-Z]")));
}

TEST(CaskTests, refusesAnythingButADiskImageOfOurs) {
    const TempFolder temp;
    const auto result = runProgram(
        {macos + "cask", temp.file("Other-1.0-arm64.dmg"), "https://there.invalid", "https://there.invalid"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
}

} // namespace
} // namespace korvanti::testing
