#include "SampleReport.h"
#include "UiSupport.h"
#include "analysis/StorageMapper.h"
#include "base/Json.h"
#include "cleaning/ActivityLog.h"
#include "scan/ReportJson.h"
#include "settings/AppPaths.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"
#include "ui/SettingsModel.h"

#include <QDir>
#include <QImage>
#include <QQmlContext>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

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

    static void layMap() {
        const auto gigabytes = [](double number) { return static_cast<std::int64_t>(number * 1e9); };
        const auto node = [&](const std::string& path, double size, std::int64_t unreadable = 0,
                              std::optional<std::vector<MapNode>> children = std::vector<MapNode>()) {
            return MapNode{.name = path.substr(path.rfind('/') + 1),
                           .path = path,
                           .bytes = gigabytes(size),
                           .unreadable = unreadable,
                           .children = std::move(children)};
        };
        const std::string home = "/Users/tester";
        const auto library = home + "/Library";
        auto developer = node(library + "/Developer", 44.9, 0,
                              std::vector{node(library + "/Developer/Xcode", 24.7),
                                          node(library + "/Developer/CoreSimulator", 19.1),
                                          node(library + "/Developer/XCTestDevices", 6.37, 0, std::nullopt)});
        auto tester =
            node(home, 118.4, 3,
                 std::vector{
                     node(library, 71.2, 2,
                          std::vector{std::move(developer), node(library + "/Application Support", 11.3),
                                      node(library + "/Containers", 8.2, 2), node(library + "/Caches", 4.6)}),
                     node(home + "/Projects", 22.8), node(home + "/.gradle", 12.6),
                     node(home + "/Pictures", 7.9), node(home + "/Downloads", 2.1, 0, std::nullopt)});
        tester.name = "Home (~)";
        StorageMap map;
        map.createdAt = currentInstant() - std::chrono::hours(26);
        map.duration = 58;
        map.roots = {std::move(tester), node("/Applications", 58.3), node("/Library", 21.7),
                     node("/System/Library/AssetsV2", 14.2), node("/opt/homebrew", 5.4, 0, std::nullopt)};
        for (auto& root : map.roots)
            if (root.path != home)
                root.name = root.path;
        StorageMapper::save(map);
    }
    static void layActivity() {
        struct Sample {
            std::int64_t minutes;
            double megabytes;
            bool success;
            const char* title;
            const char* path;
            const char* message;
        };
        constexpr std::int64_t day = 24 * 60;
        const ActivityLog log(AppPaths::activity());
        for (const auto& [minutes, megabytes, success, title, path, message] : {
                 Sample{22 * day, 741.2, true, "node_modules: kasir-web", "Projects/kasir-web/node_modules",
                        "Dihapus"},
                 Sample{22 * day, 1860, true, "Build lama: toko-android", "Projects/toko-android/app/build",
                        "Dihapus"},
                 Sample{8 * day, 0, false, "Cache WhatsApp",
                        "Library/Containers/net.whatsapp.WhatsApp/Data/Library/Caches",
                        "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti."},
                 Sample{8 * day, 2380, true, "Cache app & browser", "Library/Caches/Google/Chrome", ""},
                 Sample{5 * day, 3900, true, "Tong Sampah", ".Trash", "Tong Sampah dikosongkan"},
                 Sample{2 * day, 9640, true, "Arsip Xcode (.xcarchive)", "Library/Developer/Xcode/Archives",
                        "Dipindah ke SSD"},
                 Sample{12, 0, false, "Spotify", "Applications/Spotify.app",
                        "Butuh izin admin. Hapus lewat Finder (seret ke Tong Sampah) atau Launchpad."},
                 Sample{12, 6370, true, "Simulator klon test paralel", "Library/Developer/XCTestDevices",
                        "Dihapus"},
                 Sample{12, 14820, true, "DerivedData Xcode", "Library/Developer/Xcode/DerivedData",
                        "Dihapus"},
             }) {
            ActivityEntry entry;
            entry.date = currentInstant() - std::chrono::minutes(minutes);
            entry.title = title;
            entry.path = std::string("/Users/tester/") + path;
            entry.bytes = static_cast<std::int64_t>(megabytes * 1e6);
            entry.success = success;
            entry.message = message;
            log.append(entry);
        }
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

TEST_P(PictureTests, theMapThatWasNeverMade) {
    open(Pane::map);
    take("map-empty");
}

TEST_P(PictureTests, theMap) {
    layMap();
    open(Pane::map);
    for (const int row : {0, 1, 2})
        map().tree()->expand(row);
    settle();
    hover("row:/Users/tester/Library/Developer/Xcode");
    take("map");
}

TEST_P(PictureTests, theMapBeingMade) {
    layMap();
    for (int i = 0; i < 40; ++i)
        mac.home.file("Documents/" + std::to_string(i) + "/file");
    open(Pane::map);
    model().generateMap();
    const auto picture = grab();
    EXPECT_TRUE(model().isMapping());
    const auto folder = qEnvironmentVariable("KORVANTI_PICTURES", QDir::tempPath() + "/pictures");
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(picture.save(folder + "/map-running-" + GetParam().name + ".png"));
    ASSERT_TRUE(waitFor([&] { return !model().isMapping(); }));
}

TEST_P(PictureTests, theHistoryOfNothing) {
    open(Pane::history);
    take("history-empty");
}

TEST_P(PictureTests, theHistory) {
    layActivity();
    open(Pane::history);
    take("history");
}

TEST_P(PictureTests, theSettings) {
    desktop.isLoginItem = true;
    KorvantiSettings settings;
    settings.devRoots = {"~/Projects", "~/Klien/mobile"};
    settings.inactiveDays = 14;
    settings.save();
    SettingsModel shown(model());
    show("SettingsView { anchors.fill: parent }", {520, 460}, {{"model", QVariant::fromValue(&shown)}});
    resize(520, 460);
    settle(300);
    const auto folder = qEnvironmentVariable("KORVANTI_PICTURES", QDir::tempPath() + "/pictures");
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(grab().save(folder + "/settings-" + GetParam().name + ".png"));
    show("Item {}"); // the view goes before its model
}

INSTANTIATE_TEST_SUITE_P(EachLook, PictureTests,
                         ::testing::Values(Look{"light", false, {1140, 760}}, Look{"dark", true, {1140, 760}},
                                           Look{"small-light", false, {960, 620}},
                                           Look{"small-dark", true, {960, 620}},
                                           Look{"large-text", false, {1140, 760}, 2}),
                         [](const auto& look) {
                             std::string name = look.param.name;
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace
} // namespace korvanti
