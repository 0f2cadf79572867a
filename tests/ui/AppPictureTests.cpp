#include "PictureSupport.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;

/// The applications of a Mac that has been worked and played with. Their sizes are a thousandth of what they
/// would be.
class AppPictureTests : public PictureTests {
protected:
    struct App {
        const char* name;
        const char* identifier;
        const char* category;
        std::int64_t bytes;
        std::int64_t dataBytes;
        std::int64_t daysAgo;
    };
    void lay(const std::vector<App>& apps) const {
        for (const auto& app : apps) {
            const std::string bundle = std::string(app.name) + ".app/Contents/";
            mac.applications.file(
                bundle + "Info.plist",
                {.text = "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" +
                         std::string(app.identifier) +
                         "</string><key>LSApplicationCategoryType</key><string>public.app-category." +
                         app.category +
                         "</string><key>CFBundleShortVersionString</key><string>1.2.48</string>"
                         "</dict></plist>"});
            mac.applications.file(bundle + "MacOS/program", {.allocatedBytes = app.bytes});
            layData("Library/Caches/", app, app.dataBytes * 2 / 3);
            layData("Library/Application Support/", app, app.dataBytes / 4);
            layData("Library/HTTPStorages/", app, app.dataBytes / 12);
        }
    }
    void layData(const std::string& folder, const App& app, std::int64_t bytes) const {
        if (bytes == 0)
            return;
        const auto changed = wholeSeconds(currentInstant()) - app.daysAgo * 86'400 - 300;
        const auto place = folder + app.identifier;
        mac.home.file(place + "/file", {.allocatedBytes = bytes, .modified = changed});
        mac.home.setModified(place, changed);
    }
    void laySome() const {
        lay({{"Xcode", "com.apple.dt.Xcode", "developer-tools", 13'800'000, 17'400'000, 0},
             {"Android Studio", "com.google.android.studio", "developer-tools", 3'700'000, 6'100'000, 1},
             {"Genshin Impact", "com.miHoYo.GenshinImpact", "games", 6'600'000, 312'000, 124},
             {"Docker", "com.docker.docker", "developer-tools", 2'200'000, 3'200'000, 5},
             {"Telegram", "ru.keepcoder.Telegram", "social-networking", 280'000, 4'100'000, 0},
             {"DaVinci Resolve", "com.blackmagic-design.DaVinciResolve", "video", 3'700'000, 96'000, 243},
             {"Figma", "com.figma.Desktop", "graphics-design", 420'000, 1'100'000, 2},
             {"Spotify", "com.spotify.client", "music", 338'000, 902'000, 62},
             {"Safe Exam Browser", "org.safeexambrowser.SafeExamBrowser", "education", 630'000, 0, 0},
             {"Safari", "com.apple.Safari", "productivity", 184'000, 0, 0}});
        mac.applications.folder("Spotify.app/Contents/_MASReceipt");
    }
    void openPane(AppFilter filter) {
        open(Pane::apps);
        ASSERT_TRUE(waitFor([&] { return !model().appsLoading(); }));
        apps().setFilterIndex(static_cast<int>(filter));
    }
};

TEST_P(AppPictureTests, thoseThatCouldGo) {
    laySome();
    openPane(AppFilter::suggested);
    take("apps-suggested");
}

TEST_P(AppPictureTests, allOfThem) {
    laySome();
    openPane(AppFilter::all);
    take("apps");
}

TEST_P(AppPictureTests, noneThatCouldGo) {
    lay({{"Safari", "com.apple.Safari", "productivity", 184'000, 0, 0}});
    openPane(AppFilter::suggested);
    take("apps-empty");
}

TEST_P(AppPictureTests, whileTheyAreMeasured) {
    mac.answerWithScript("ps -axo comm=", "exec sleep 3");
    laySome();
    open(Pane::apps);
    take("apps-loading");
}

TEST_P(AppPictureTests, oneThatIsToGo) {
    laySome();
    desktop.running = {"/Applications/Spotify.app"};
    openPane(AppFilter::all);
    for (int row = 0; row < apps().rows()->rowCount(); ++row) {
        if (apps().rows()->app(row)->name == "Spotify")
            apps().openUninstall(row);
    }
    apps().uninstall()->toggle(1);
    take("uninstall");
}

INSTANTIATE_TEST_SUITE_P(EachLook, AppPictureTests, eachLook, nameOfLook);

} // namespace
} // namespace korvanti
