#include "PictureSupport.h"
#include "analysis/StorageMapper.h"
#include "cleaning/ActivityLog.h"
#include "settings/AppPaths.h"
#include "ui/SettingsModel.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;

class MapPictureTests : public PictureTests {
protected:
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
};

TEST_P(MapPictureTests, theMapThatWasNeverMade) {
    open(Pane::map);
    take("map-empty");
}

TEST_P(MapPictureTests, theMap) {
    layMap();
    open(Pane::map);
    for (const int row : {0, 1, 2})
        map().tree()->expand(row);
    settle();
    hover("row:/Users/tester/Library/Developer/Xcode");
    take("map");
}

TEST_P(MapPictureTests, theMapBeingMade) {
    layMap();
    for (int i = 0; i < 40; ++i)
        mac.home.file("Documents/" + std::to_string(i) + "/file");
    open(Pane::map);
    model().generateMap();
    const auto picture = grab();
    EXPECT_TRUE(model().isMapping());
    keep(picture, "map-running");
    ASSERT_TRUE(waitFor([&] { return !model().isMapping(); }));
}

class HistoryPictureTests : public PictureTests {
protected:
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
};

TEST_P(HistoryPictureTests, theHistoryOfNothing) {
    open(Pane::history);
    take("history-empty");
}

TEST_P(HistoryPictureTests, theHistory) {
    layActivity();
    open(Pane::history);
    take("history");
}

class SettingsPictureTests : public PictureTests {};

TEST_P(SettingsPictureTests, theSettings) {
    desktop.isLoginItem = true;
    KorvantiSettings settings;
    settings.devRoots = {"~/Projects", "~/Klien/mobile"};
    settings.inactiveDays = 14;
    settings.save();
    SettingsModel shown(model());
    show("SettingsView { anchors.fill: parent }", {520, 460}, {{"model", QVariant::fromValue(&shown)}});
    resize(520, 460);
    settle(300);
    EXPECT_EQ(unspokenTexts().join(" | ").toStdString(), "");
    keep(grab(), "settings");
    show("Item {}"); // the view goes before its model
}

INSTANTIATE_TEST_SUITE_P(EachLook, MapPictureTests, eachLook, nameOfLook);
INSTANTIATE_TEST_SUITE_P(EachLook, HistoryPictureTests, eachLook, nameOfLook);
INSTANTIATE_TEST_SUITE_P(EachLook, SettingsPictureTests, eachLook, nameOfLook);

} // namespace
} // namespace korvanti
