#include "analysis/InstalledApps.h"

#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using testing::TempFolder;
using testing::textOf;
using Identifiers = std::set<std::string>;

std::string infoList(const std::string& dictionary) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + dictionary +
           "</dict></plist>";
}

class InstalledAppsTests : public ::testing::Test {
protected:
    void bundle(const std::string& path, const std::string& identifier) {
        info(path, infoList("<key>CFBundleIdentifier</key><string>" + identifier + "</string>"));
    }
    void info(const std::string& path, const std::string& text) {
        temp.file(path + "/Contents/Info.plist", {.text = text});
    }
    Identifiers found() { return InstalledApps::bundleIdentifiers({temp.path("one"), temp.path("two")}); }

    TempFolder temp;
};

TEST_F(InstalledAppsTests, looksInFourFoldersInOrder) {
    EXPECT_EQ(InstalledApps::applicationRoots(),
              (std::vector<std::string>{"/Applications", "/Applications/Utilities",
                                        Platform::homeFolder() + "/Applications", "/System/Applications"}));
}

TEST_F(InstalledAppsTests, collectsTheApplicationsOfEveryRoot) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/B.app", "com.contoh.b");
    bundle("two/C.app", "com.contoh.c");
    bundle("elsewhere/D.app", "com.contoh.d");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.b", "com.contoh.c"}));
}

TEST_F(InstalledAppsTests, aMissingRootIsEmpty) {
    bundle("two/A.app", "com.contoh.a");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
    EXPECT_EQ(InstalledApps::bundleIdentifiers({temp.path("missing")}), Identifiers());
    EXPECT_EQ(InstalledApps::bundleIdentifiers({}), Identifiers());
}

TEST_F(InstalledAppsTests, readsABinaryInfoList) {
    info("one/A.app", textOf(KORVANTI_TEST_DATA "/Info-binary.plist"));
    EXPECT_EQ(found(), (Identifiers{"com.contoh.Catatan"}));
}

TEST_F(InstalledAppsTests, onlyTheExtensionAppInSmallLettersMakesAnApplication) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/B.APP", "com.contoh.b");
    bundle("one/C.bundle", "com.contoh.c");
    bundle("one/D", "com.contoh.d");
    bundle("one/.app", "com.contoh.e");
    bundle("one/app", "com.contoh.f");
    bundle("one/.G.app", "com.contoh.g");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.g"}));
}

TEST_F(InstalledAppsTests, anApplicationInAFolderOfARootIsNotSeen) {
    bundle("one/Folder/A.app", "com.contoh.a");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, collectsTheBundlesInsideAnApplication) {
    bundle("one/A.app", "com.contoh.a");
    bundle("one/A.app/Contents/PlugIns/Share.appex", "com.contoh.a.share");
    bundle("one/A.app/Contents/Library/LoginItems/Start.app", "com.contoh.a.start");
    bundle("one/A.app/Contents/Helpers/Helper", "com.contoh.a.helper");
    bundle("one/A.app/Contents/Frameworks/Renderer.framework", "com.contoh.a.renderer");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.a.share", "com.contoh.a.start",
                                    "com.contoh.a.helper", "com.contoh.a.renderer"}));
}

TEST_F(InstalledAppsTests, bundlesElsewhereInsideAnApplicationAreNotSeen) {
    bundle("one/A.app/Contents/XPCServices/Service.xpc", "com.contoh.a.service");
    bundle("one/A.app/Contents/PlugIns/Share.appex/Contents/PlugIns/Inner.appex", "com.contoh.a.inner");
    bundle("one/A.app/PlugIns/Share.appex", "com.contoh.a.share");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, anApplicationWithoutAListStillShowsWhatIsInside) {
    temp.folder("one/A.app/Contents");
    bundle("one/A.app/Contents/Helpers/Helper.app", "com.contoh.a.helper");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a.helper"}));
}

TEST_F(InstalledAppsTests, followsLinks) {
    bundle("elsewhere/A.app", "com.contoh.a");
    bundle("elsewhere/Helpers/Helper.app", "com.contoh.b");
    bundle("elsewhere/C.app", "com.contoh.c");
    temp.symlink("one/Linked.app", temp.path("elsewhere/A.app"));
    temp.symlink("one/B.app/Contents/Helpers", temp.path("elsewhere/Helpers"));
    temp.symlink("one/C.app/Contents/Info.plist", temp.path("elsewhere/C.app/Contents/Info.plist"));
    temp.symlink("one/Dangling.app", temp.path("nowhere"));
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.b", "com.contoh.c"}));
}

TEST_F(InstalledAppsTests, aDamagedListIsSkipped) {
    bundle("one/A.app", "com.contoh.a");
    info("one/B.app", "<plist><dict><key>CFBundleIdentifier</key><string>com.contoh.b</string>");
    info("one/C.app", "bplist00nonsense");
    info("one/D.app", "");
    temp.folder("one/E.app/Contents/Info.plist");
    temp.file("one/F.app");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
}

TEST_F(InstalledAppsTests, anIdentifierThatIsNoTextDoesNotCount) {
    info("one/A.app", infoList("<key>CFBundleIdentifier</key><integer>1</integer>"));
    info("one/B.app", infoList("<key>CFBundleIdentifier</key><array><string>com.contoh.b</string></array>"));
    info("one/C.app", infoList("<key>CFBundleName</key><string>com.contoh.c</string>"));
    info("one/D.app", "<plist><string>com.contoh.d</string></plist>");
    EXPECT_EQ(found(), Identifiers());
}

TEST_F(InstalledAppsTests, oneIdentifierOfSeveralBundlesCountsOnce) {
    bundle("one/A.app", "com.contoh.a");
    bundle("two/Copy.app", "com.contoh.a");
    bundle("two/Other.app", "com.contoh.A");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a", "com.contoh.A"}));
}

TEST_F(InstalledAppsTests, eachCallReadsAnew) {
    bundle("one/A.app", "com.contoh.a");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.a"}));
    bundle("one/A.app", "com.contoh.new");
    EXPECT_EQ(found(), (Identifiers{"com.contoh.new"}));
}

} // namespace
} // namespace korvanti
