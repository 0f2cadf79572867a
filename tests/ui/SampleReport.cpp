#include "SampleReport.h"

#include "base/ByteText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

namespace korvanti::testing {
namespace {

using namespace std::chrono_literals;
using enum ItemCategory;
using enum Safety;
using Kind = CleanupAction::Kind;

struct Sample {
    std::int64_t megabytes;
    ItemCategory category;
    Safety safety;
    Kind kind;
    std::int64_t hours; ///< since it was last used; 0 is not known
    std::string_view path;
    std::string_view title;
    std::string_view detail;
    std::string_view payload = {};
    std::string_view warning = {};
    bool recommended = true; ///< where class and action allow it
};

const std::array samples = {
    Sample{
        14820, xcode, regenerable, Kind::delete_, 3, "~/Library/Developer/Xcode/DerivedData",
        "DerivedData Xcode",
        "Hasil build, index, dan cache modul Xcode. Dibuat ulang otomatis; build pertama sesudahnya sedikit "
        "lebih lama. Tutup Xcode dulu."},
    Sample{
        9640,
        xcode,
        review,
        Kind::trash,
        6 * 24,
        "~/Library/Developer/Xcode/Archives",
        "Arsip Xcode (.xcarchive)",
        "Build rilis beserta dSYM untuk membaca laporan crash. Simpan versi yang masih beredar di App Store; "
        "sisanya lebih baik dipindah ke SSD daripada dihapus.",
        {},
        "Berisi 4 arsip dari 30 hari terakhir."},
    Sample{2700,
           xcode,
           costly,
           Kind::delete_,
           40 * 24,
           "~/Library/Developer/Xcode/iOS DeviceSupport/iPhone14,5 17.6.1 (21G93)",
           "Device support iOS 17.6.1",
           "Simbol debug perangkat. Disalin ulang dari iPhone saat tersambung lagi.",
           {},
           {},
           false},
    Sample{640, xcode, regenerable, Kind::delete_, 26, "~/Library/Developer/Xcode/UserData/Previews",
           "Cache SwiftUI Previews", "Simulator & build khusus Preview. Dibuat ulang saat Preview dibuka."},
    Sample{370,
           xcode,
           costly,
           Kind::delete_,
           50,
           "~/Library/Caches/org.swift.swiftpm",
           "Cache paket SwiftPM",
           "Paket Swift yang sudah diunduh. Diunduh ulang saat resolve.",
           {},
           {},
           false},
    Sample{310, xcode, regenerable, Kind::delete_, 5, "~/Library/Caches/com.apple.dt.Xcode", "Cache Xcode",
           "Cache internal Xcode. Dibuat ulang otomatis."},
    Sample{120, xcode, regenerable, Kind::delete_, 90 * 24, "~/Library/Developer/Xcode/DocumentationCache",
           "Cache dokumentasi Xcode", "Index dokumentasi. Dibuat ulang otomatis."},

    Sample{
        7440, simulators, managed, Kind::manual, 4 * 24,
        "/Library/Developer/CoreSimulator/Volumes/iOS_22C150", "Runtime iOS 18.2",
        "Dipasang lewat Xcode dan masih dipakai dua simulator.",
        "Buka Xcode › Settings › Components, pilih runtime yang tidak dipakai lagi, lalu klik tombol hapus "
        "di sebelahnya."},
    Sample{6370, simulators, regenerable, Kind::delete_, 35 * 24, "~/Library/Developer/XCTestDevices",
           "Simulator klon test paralel",
           "Salinan simulator yang dibuat saat test paralel. Dibuat ulang bila perlu."},
    Sample{2600, simulators, keep, Kind::manual, 1,
           "~/Library/Developer/CoreSimulator/Devices/6F2C1A90-41D7-4E0B-9C55-0B7E2D1A8F34", "iPhone 16 Pro",
           "Sedang menyala, jadi masih dipakai."},
    Sample{1110, simulators, costly, Kind::simulatorDelete, 70 * 24,
           "~/Library/Developer/CoreSimulator/Devices/A3D94C12-7B60-49E1-8F02-5C1D9E7740AB",
           "iPhone 12 mini · iOS 16.4",
           "Runtime-nya sudah tidak terpasang, simulator ini tidak bisa dipakai lagi.",
           "A3D94C12-7B60-49E1-8F02-5C1D9E7740AB"},
    Sample{400, simulators, regenerable, Kind::delete_, 30, "~/Library/Developer/CoreSimulator/Caches",
           "Cache Simulator",
           "Cache dyld & runtime simulator. Dibuat ulang saat simulator berikutnya dijalankan."},

    Sample{6860,
           android,
           costly,
           Kind::delete_,
           9,
           "~/.gradle/caches/modules-2",
           "Dependency Gradle (Maven)",
           "Semua library yang diunduh Gradle. Aman dihapus, tapi build berikutnya mengunduh ulang.",
           {},
           {},
           false},
    Sample{5350, android, review, Kind::trash, 80 * 24, "~/.android/avd/Pixel_8_API_34.avd",
           "Emulator Android (AVD) · Pixel 8", "Berisi data app yang terpasang di emulator ini."},
    Sample{5050, android, regenerable, Kind::delete_, 48 * 24, "~/.gradle/caches/8.4",
           "Cache build Gradle 8.4", "Tidak ada proyek yang memakai versi Gradle ini lagi."},
    Sample{2800, android, review, Kind::trash, 200 * 24, "~/.android/avd/Pixel_Tablet_API_33.avd",
           "Emulator Android (AVD) · Pixel Tablet", "Berisi data app yang terpasang di emulator ini."},
    Sample{2400,
           android,
           costly,
           Kind::delete_,
           120 * 24,
           "~/Library/Android/sdk/system-images/android-33/google_apis/arm64-v8a",
           "System image emulator (android-33)",
           "Image emulator. Anda menguji di perangkat asli.",
           {},
           {},
           false},
    Sample{1050,
           android,
           costly,
           Kind::delete_,
           160 * 24,
           "~/Library/Android/sdk/ndk/25.1.8937393",
           "NDK 25.1.8937393",
           "Tidak ada proyek yang merujuk versi ini. Bisa diunduh ulang lewat sdkmanager (±1 GB).",
           {},
           {},
           false},
    Sample{500, android, regenerable, Kind::delete_, 20, "~/Library/Caches/Google/AndroidStudio2025.1",
           "Cache Android Studio", "Index dan cache IDE. Dibuat ulang saat proyek dibuka."},
    Sample{210, android, regenerable, Kind::delete_, 60, "~/.gradle/daemon", "Log Gradle daemon",
           "Log & registry daemon lama."},
    Sample{90, android, regenerable, Kind::delete_, 60, "~/.gradle/.tmp", "File sementara Gradle",
           "Sisa file sementara."},

    Sample{6030,
           projects,
           review,
           Kind::trash,
           260 * 24,
           "~/Projects/tugas-akhir/dataset",
           "dataset · tugas-akhir",
           "Proyek tidak aktif sejak lama. Tidak ada di git, jadi tidak bisa dikembalikan dari sana.",
           {},
           "Ada perubahan yang belum di-commit."},
    Sample{2140,
           projects,
           costly,
           Kind::delete_,
           45 * 24,
           "~/Projects/toko-online/node_modules",
           "node_modules · toko-online",
           "Dependency npm. Pasang ulang dengan `npm install`.",
           {},
           {},
           false},
    Sample{1710, projects, keep, Kind::manual, 2, "~/Projects/arus/target", "target · arus",
           "Proyek ini masih aktif."},
    Sample{1480, projects, keep, Kind::manual, 4, "~/Projects/kopi-kasir/build", "build · kopi-kasir",
           "Proyek ini masih aktif."},
    Sample{1320,
           projects,
           costly,
           Kind::delete_,
           33 * 24,
           "~/Projects/kopi-kasir/node_modules",
           "node_modules · kopi-kasir",
           "Dependency npm. Pasang ulang dengan `npm install`.",
           {},
           {},
           false},
    Sample{950,
           projects,
           costly,
           Kind::delete_,
           64 * 24,
           "~/Projects/dompet/ios/Pods",
           "Pods · dompet",
           "Dependency CocoaPods. Pasang ulang dengan `pod install`.",
           {},
           {},
           false},
    Sample{420, projects, regenerable, Kind::delete_, 58 * 24, "~/Projects/blog/.next", ".next · blog",
           "Hasil build Next.js. Dibuat ulang saat build."},

    Sample{3300, personal, review, Kind::trash, 150 * 24, "~/Movies/Rekaman layar rapat Q2 (final).mov",
           "Rekaman layar rapat Q2 (final).mov", "File besar yang lama tidak dibuka."},
    Sample{2610, personal, review, Kind::emptyTrash, 12 * 24, "~/.Trash", "Tong Sampah",
           "Isi Tong Sampah. Setelah dikosongkan tidak bisa dikembalikan."},
    Sample{2060, personal, review, Kind::trash, 95 * 24, "~/Downloads/Xcode_16.1.xip", "Xcode_16.1.xip",
           "Unduhan besar. Sudah dipasang dan bisa diunduh ulang."},
    Sample{1900, personal, managed, Kind::manual, 8,
           "~/Library/Group Containers/group.net.whatsapp.WhatsApp.shared/Message/Media", "Media WhatsApp",
           "Foto dan video dari percakapan.",
           "Buka WhatsApp › Pengaturan › Penyimpanan dan data › Kelola penyimpanan."},

    Sample{1510, appCaches, keep, Kind::manual, 1, "~/Library/Caches/com.apple.Safari", "Cache Safari",
           "Sedang dipakai."},
    Sample{1420,
           appCaches,
           regenerable,
           Kind::delete_,
           1,
           "~/Library/Caches/Google/Chrome",
           "Cache Google Chrome",
           "Cache browser. Halaman pertama sesudahnya dimuat sedikit lebih lama.",
           {},
           {},
           false},
    Sample{610,
           appCaches,
           regenerable,
           Kind::delete_,
           7,
           "~/Library/Caches/com.spotify.client",
           "Cache Spotify",
           "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
           {},
           {},
           false},
    Sample{390,
           appCaches,
           regenerable,
           Kind::delete_,
           2,
           "~/Library/Application Support/Slack/Cache",
           "Cache Slack",
           "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
           {},
           {},
           false},
    Sample{270,
           appCaches,
           regenerable,
           Kind::delete_,
           28,
           "~/Library/Application Support/Figma/Cache",
           "Cache Figma",
           "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
           {},
           {},
           false},
    Sample{210, appCaches, regenerable, Kind::delete_, 52, "~/Library/Caches/us.zoom.xos", "Cache Zoom",
           "Cache app. Dibuat ulang otomatis; tutup app-nya dulu."},
    Sample{190, appCaches, regenerable, Kind::delete_, 75, "~/Library/Application Support/discord/Cache",
           "Cache Discord", "Cache editor/app berbasis Electron. Dibuat ulang otomatis saat app dibuka."},
    Sample{140,
           appCaches,
           regenerable,
           Kind::delete_,
           11,
           "~/Library/Caches/ru.keepcoder.Telegram",
           "Cache Telegram",
           "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
           {},
           {},
           false},
    Sample{130, appCaches, regenerable, Kind::delete_, 6, "~/Library/Application Support/Code/CachedData",
           "Cache Visual Studio Code",
           "Cache editor/app berbasis Electron. Dibuat ulang otomatis saat app dibuka."},

    Sample{1050,
           toolchains,
           costly,
           Kind::delete_,
           44,
           "~/Library/pnpm/store",
           "Store pnpm",
           "Paket yang dipakai bersama. Diunduh ulang saat dipasang.",
           {},
           {},
           false},
    Sample{890,
           toolchains,
           costly,
           Kind::delete_,
           21 * 24,
           "~/Library/Caches/ms-playwright",
           "Browser Playwright",
           "Browser untuk test. Unduh ulang dengan `npx playwright install`.",
           {},
           {},
           false},
    Sample{560,
           toolchains,
           costly,
           Kind::delete_,
           19,
           "~/.cargo/registry/cache",
           "Cache crate Rust",
           "Crate yang sudah diunduh. Diunduh ulang saat build.",
           {},
           {},
           false},
    Sample{420, toolchains, regenerable, Kind::delete_, 31, "~/.npm/_cacache", "Cache npm",
           "Paket yang sudah diunduh. Dibuat ulang otomatis."},
    Sample{300,
           toolchains,
           costly,
           Kind::delete_,
           68,
           "~/Library/Caches/pip",
           "Cache pip",
           "Paket Python yang sudah diunduh.",
           {},
           {},
           false},
    Sample{220, toolchains, regenerable, Kind::delete_, 14 * 24, "~/Library/Caches/Homebrew",
           "Unduhan Homebrew", "Paket yang sudah dipasang. Tidak dibutuhkan lagi."},

    Sample{3210, apps, review, Kind::trash, 210 * 24, "/Applications/Kebun Mini.app", "Kebun Mini",
           "Game. Terakhir dibuka 7 bulan yang lalu."},
    Sample{3050, aiTools, review, Kind::trash, 130 * 24, "~/.lmstudio/models/qwen2.5-coder-7b",
           "Model qwen2.5-coder-7b", "Model bahasa lokal. Bisa diunduh ulang."},
    Sample{2150, ItemCategory::system, managed, Kind::manual, 0, "/System/Volumes/VM", "Swap memori (VM)",
           "Memori yang dipindah macOS ke SSD.",
           "Tutup app berat atau mulai ulang Mac untuk mengosongkannya."},
    Sample{950, ItemCategory::system, managed, Kind::manual, 0, "/System/Volumes/Preboot",
           "Preboot (komponen boot & cryptex)", "Dibutuhkan macOS untuk menyala.",
           "Tidak ada yang perlu dilakukan."},
};

/// Many small things, as every Mac has them.
constexpr std::array logs = {"Arc",          "Bear",           "CleanShot X", "Cursor",   "Docker",
                             "Firefox",      "GitHub Desktop", "Ghostty",     "Insomnia", "IntelliJ IDEA",
                             "Linear",       "Notion",         "Obsidian",    "OBS",      "Postman",
                             "Raycast",      "Rectangle",      "Sequel Ace",  "Signal",   "Sketch",
                             "Sublime Text", "TablePlus",      "Tower",       "VLC",      "Warp"};

std::string expanded(std::string_view path, const std::string& home) {
    return path.starts_with('~') ? home + std::string(path.substr(1)) : std::string(path);
}

} // namespace

ScanReport sampleReport(const std::string& home, Instant now) {
    constexpr std::int64_t megabyte = 1'000'000;
    ScanReport report;
    report.startedAt = now - 2h - 5min;
    report.duration = 41.3;
    for (const auto& sample : samples) {
        CleanupItem item;
        item.title = sample.title;
        item.detail = sample.detail;
        item.path = expanded(sample.path, home);
        item.bytes = sample.megabytes * megabyte;
        item.category = sample.category;
        item.safety = sample.safety;
        item.action = {sample.kind, std::string(sample.payload)};
        item.recommended = sample.recommended;
        if (sample.hours > 0)
            item.lastActivity = now - std::chrono::hours(sample.hours) - 5min;
        if (item.category == projects) // says where, as the scan does
            item.detail += "\n" + item.displayPath();
        item.offloadable = sample.safety == review && sample.kind == Kind::trash && sample.category != apps;
        if (!sample.warning.empty())
            item.warnings.emplace_back(sample.warning);
        report.items.push_back(CleanupItem::make(item));
    }
    for (const std::string_view name : logs) {
        CleanupItem item;
        item.title = "Log lama " + std::string(name);
        item.detail = "Log lama aplikasi.";
        item.path = home + "/Library/Logs/" + std::string(name);
        item.bytes = 10 * megabyte;
        item.category = appCaches;
        item.safety = regenerable;
        item.action = CleanupAction::delete_();
        item.recommended = true;
        item.lastActivity = now - 24h * 17;
        report.items.push_back(item);
    }
    std::ranges::stable_sort(report.items, [](const CleanupItem& a, const CleanupItem& b) {
        return a.safety != b.safety ? a.safety < b.safety : a.bytes > b.bytes;
    });

    report.disk.total = sampleTotalBytes;
    report.disk.available = sampleFreeBytes - 6'080 * megabyte;
    report.disk.availableImportant = sampleFreeBytes;
    report.disk.smart = SmartInfo{.percentageUsed = 11, .dataWrittenBytes = 86'000'000 * megabyte};
    report.disk.swapUsed = 9'430 * megabyte;
    report.disk.physicalMemory = std::int64_t{16} * 1024 * 1024 * 1024;
    report.disk.hasFullDiskAccess = true;
    report.notes = {
        "Snapshot Time Machine lokal memakai ruang. macOS menghapusnya sendiri saat ruang dibutuhkan."};
    return report;
}

} // namespace korvanti::testing
