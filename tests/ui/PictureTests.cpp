#include "SampleReport.h"
#include "SsdSupport.h"
#include "UiSupport.h"
#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"

#include <QDir>
#include <QImage>
#include <QQmlContext>
#include <QTest>
#include <algorithm>
#include <expected>
#include <filesystem>
#include <optional>
#include <ostream>
#include <set>
#include <string>

/// What the window looks like, pane by pane, over one sample Mac. Each picture is looked at by the test only
/// as far as a program can, and saved in the folder that KORVANTI_PICTURES names, or else in one for
/// temporary files, for people.
namespace korvanti {
namespace {

using namespace korvanti::testing;

struct Look {
    const char* name;
    bool dark;
    QSize size;
    double fontScale = 1;
};

void PrintTo(const Look& look, std::ostream* out) {
    *out << look.name;
}

class PictureTests : public UiTests, public ::testing::WithParamInterface<Look> {
protected:
    PictureTests() {
        setDark(GetParam().dark);
        setFontScale(GetParam().fontScale);
        mac.applications.folder("Xcode.app/Contents/Developer");
        mac.answer("xcode-select -p", "/Applications/Xcode.app/Contents/Developer\n");
        mac.answer("pgrep -x Xcode", "501\n");
        mac.answer("pgrep -f GradleDaemon", "502\n");
    }

    void layReport() const {
        mac.home.file("Library/Application Support/Korvanti/last-report.json",
                      {.text = prettySortedJson(toJson(report))});
    }
    /// On a Mac that has been scanned, with the pane given.
    void open(Pane pane) {
        layReport();
        openUnscanned();
        model().setPane(pane);
        settle();
    }
    void openUnscanned() {
        window();
        resize(GetParam().size.width(), GetParam().size.height());
    }
    void take(const std::string& name) {
        settle(600); // whatever moves has come to its end
        const auto picture = grab();
        EXPECT_EQ(picture.size(), GetParam().size) << name;
        EXPECT_GT(coloursOf(picture), 100U) << name << " is as good as blank";
        const auto folder = qEnvironmentVariable("KORVANTI_PICTURES", QDir::tempPath() + "/pictures");
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(
            picture.save(folder + "/" + QString::fromStdString(name) + "-" + GetParam().name + ".png"));
    }
    static std::size_t coloursOf(const QImage& picture) {
        std::set<QRgb> colours;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                colours.insert(picture.pixel(x, y));
        }
        return colours.size();
    }
    [[nodiscard]] CleanupItem itemNamed(const std::string& title) const {
        for (const auto& item : report.items)
            if (item.title == title)
                return item;
        ADD_FAILURE() << "no sample is called " << title;
        return {};
    }
    /// Five things of three kinds.
    [[nodiscard]] std::vector<CleanupItem> chosen() const {
        return {itemNamed("DerivedData Xcode"), itemNamed("Simulator klon test paralel"),
                itemNamed("Cache build Gradle 8.4"), itemNamed("iPhone 12 mini · iOS 16.4"),
                itemNamed("Xcode_16.1.xip")};
    }
    void layChosen() const {
        for (const auto& item : chosen())
            if (item.action.kind == CleanupAction::Kind::delete_)
                std::filesystem::create_directories(item.path + "/contents");
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    std::optional<DiskSpace> space{std::in_place, sampleFreeBytes, sampleTotalBytes};
    ScanReport report = sampleReport("/Users/tester", currentInstant());
};

TEST_P(PictureTests, theOverview) {
    open(Pane::overview);
    take("overview");
}

TEST_P(PictureTests, theOverviewWithRoomToSpare) {
    space.emplace(samplePlentyBytes, sampleTotalBytes);
    open(Pane::overview);
    take("overview-plenty");
}

TEST_P(PictureTests, theOverviewThatAsksForAccess) {
    report.disk.hasFullDiskAccess = false;
    open(Pane::overview);
    take("overview-access");
}

TEST_P(PictureTests, theOverviewOfACleanMac) {
    report.items.clear();
    report.notes.clear();
    report.disk.smart.reset();
    report.disk.swapUsed = 0;
    open(Pane::overview);
    take("overview-zero");
}

TEST_P(PictureTests, theMacThatWasNeverScanned) {
    engine().rootContext()->setContextProperty("overviewModel", &overview());
    show("OverviewView { anchors.fill: parent; model: overviewModel }", GetParam().size);
    take("empty");
}

TEST_P(PictureTests, theFirstScan) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 3");
    openUnscanned();
    ASSERT_TRUE(waitFor([&] { return model().scanStatus() == "Membaca kondisi disk…"; }));
    take("scanning");
}

TEST_P(PictureTests, aLaterScan) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 3");
    open(Pane::overview);
    model().scan();
    ASSERT_TRUE(waitFor([&] { return model().scanStatus() == "Membaca kondisi disk…"; }));
    take("rescanning");
}

TEST_P(PictureTests, theCleanupPane) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    take("cleanup");
}

TEST_P(PictureTests, theMenuOfAnItem) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::review);
    model().setSearch("Xcode_16");
    settle();
    const auto row = QString::fromStdString("row:" + itemNamed("Xcode_16.1.xip").path);
    QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier, place(row).center().toPoint());
    take("menu");
}

TEST_P(PictureTests, theChoiceOfACategory) {
    open(Pane::cleanup);
    settle();
    click("categoryPicker");
    take("categories");
}

TEST_P(PictureTests, whatToDoByHand) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    model().setSearch("Runtime iOS");
    settle();
    click("guideButton:" + QString::fromStdString(itemNamed("Runtime iOS 18.2").path));
    take("guide");
}

TEST_P(PictureTests, messagesAboveThePane) {
    open(Pane::overview);
    desktop.loginItem = std::unexpected("Operation not permitted");
    model().setLoginItem(true);
    model().revertRelocation({DevCache::npmCache});
    take("messages");
}

TEST_P(PictureTests, theQuestionBeforeACleanup) {
    open(Pane::cleanup);
    model().setFilter(ItemFilter::all);
    model().requestCleanup(chosen());
    settle(2'000); // the tools that are asked for warnings
    take("confirm");
}

TEST_P(PictureTests, aCleanupThatRuns) {
    mac.answerWithScript("xcrun simctl delete A3D94C12-7B60-49E1-8F02-5C1D9E7740AB", "exec sleep 3");
    open(Pane::cleanup);
    layChosen();
    model().requestCleanup(chosen());
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return model().cleanCurrent() == "iPhone 12 mini · iOS 16.4"; }));
    take("running");
}

TEST_P(PictureTests, whatACleanupDid) {
    mac.answer("xcrun simctl delete A3D94C12-7B60-49E1-8F02-5C1D9E7740AB", "");
    open(Pane::cleanup);
    layChosen();
    model().requestCleanup(chosen());
    model().confirmCleanup();
    ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    take("result");
}

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

/// How each suite is looked at.
/// The pane of the drives, on a Mac that some are plugged into.
class DrivePictureTests : public PictureTests {
protected:
    DrivePictureTests() { layReport(); }

    void open(std::size_t count) {
        model().setPane(Pane::ssd);
        openUnscanned();
        space.emplace(612'400'000'000, 1'000'000'000'000);
        model().refreshVolumes();
        ASSERT_TRUE(waitFor([&] { return model().volumes().size() == count; }));
        settle();
    }
    void scrollTo(double y) { item("ssdScroll").setProperty("contentY", y); }

    BoxDrives drives{mac};
    const BoxDrives::Drive forWork{
        .uuid = "aa-1",
        .facts = "<key>BusProtocol</key><string>USB</string><key>GlobalPermissionsEnabled</key><false/>"};
    const BoxDrives::Drive forPhotos{.uuid = "aa-2", .fsType = "exfat", .formatName = "ExFAT"};
};

TEST_P(DrivePictureTests, noDrive) {
    open(0);
    take("ssd-none");
}

TEST_P(DrivePictureTests, aDriveForWorkAndAnotherOne) {
    drives.plug("Samsung T9 Kerja", forWork);
    drives.plug("Foto", forPhotos);
    auto settings = model().settings();
    settings.workVolumeUUID = "aa-1";
    model().setSettings(settings);
    open(2);
    ssd().toggleCache(1);
    model().relocate({DevCache::gradleHome});
    model().dismissNotice();
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().size() == 1; }));
    take("ssd");
    scrollTo(300);
    take("ssd-caches");
}

TEST_P(DrivePictureTests, aDriveOfAnotherFormat) {
    drives.plug("Foto", forPhotos);
    open(1);
    take("ssd-exfat");
}

TEST_P(DrivePictureTests, whatWasMoved) {
    const auto path = drives.plug("Samsung T9 Kerja", forWork);
    std::filesystem::create_directories(path + "/Korvanti Offload/Library/Developer/Xcode/Archives");
    auto archives =
        movedRecord("Arsip Xcode (.xcarchive)", path + "/Korvanti Offload/Library/Developer/Xcode/Archives");
    archives.originalPath = "/Users/tester/Library/Developer/Xcode/Archives";
    auto model = movedRecord("Model qwen2.5-coder-7b", path + "/Korvanti Offload/.lmstudio/models");
    model.originalPath = "/Users/tester/.lmstudio/models/qwen2.5-coder-7b";
    model.bytes = 3'050'000'000;
    saveRecords(mac, {archives, model, movedRecord("Dataset", "/Volumes/Lama/Korvanti Offload/Dataset")});
    open(1);
    const auto& pane = item("ssdScroll");
    scrollTo(pane.property("contentHeight").toDouble() - pane.height());
    take("ssd-moved");
}

const auto looks =
    ::testing::Values(Look{"light", false, {1140, 760}}, Look{"dark", true, {1140, 760}},
                      Look{"small-light", false, {960, 620}}, Look{"small-dark", true, {960, 620}},
                      Look{"large-text", false, {1140, 760}, 2});
const auto nameOfLook = [](const auto& look) {
    std::string name = look.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
};
INSTANTIATE_TEST_SUITE_P(EachLook, AppPictureTests, looks, nameOfLook);
INSTANTIATE_TEST_SUITE_P(EachLook, PictureTests, looks, nameOfLook);
std::string nameOf(const ::testing::TestParamInfo<Look>& look) {
    std::string name = look.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(EachLook, DrivePictureTests, looks, nameOf);
INSTANTIATE_TEST_SUITE_P(EachLook, PictureTests, looks, nameOf);

} // namespace
} // namespace korvanti
