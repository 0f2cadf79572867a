#include "sample/DemoMac.h"

#include "analysis/StorageMapper.h"
#include "base/Instant.h"
#include "base/Json.h"
#include "cleaning/ActivityLog.h"
#include "drives/OffloadRecord.h"
#include "sample/SampleMac.h"
#include "settings/AppPaths.h"
#include "settings/KorvantiSettings.h"
#include "support/BoxAnswers.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti::testing {
namespace {

constexpr std::int64_t megabyte = 1'000'000;

/// What is larger in life than ten times its size in the tests.
constexpr std::pair<std::string_view, std::int64_t> sizesOfLife[] = {
    {"Library/Developer/Xcode/DerivedData", 21'640 * megabyte},
    {"Library/Developer/Xcode/Archives", 8'310 * megabyte},
    {"Library/Developer/Xcode/iOS DeviceSupport/iPhone14,5 16.4 (20E247)", 4'870 * megabyte},
    {"Library/Developer/Xcode/iOS DeviceSupport/iPhone14,5 17.5 (21F79) arm64e", 5'240 * megabyte},
    {"Library/Developer/CoreSimulator/Devices/0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01/data", 1'930 * megabyte},
    {"Library/Developer/CoreSimulator/Devices/2D903A2C-8E77-4D51-9B2F-7F3E419CA023/data", 6'120 * megabyte},
    {"Library/Developer/CoreSimulator/Devices/5B4C2A10-1D2E-4F60-8A7B-9C0D1E2F3A40/data", 3'480 * megabyte},
    {"Library/Developer/CoreSimulator/Devices/6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51/data", 2'760 * megabyte},
    {".gradle/caches/modules-2", 4'390 * megabyte},
    {".gradle/caches/transforms-4", 3'150 * megabyte},
    {".android/avd", 8'940 * megabyte},
    {"Library/Android/sdk/system-images/android-33", 4'270 * megabyte},
    {"Library/Containers/com.docker.docker", 13'700 * megabyte},
    {"Pictures/Perpustakaan Foto.photoslibrary", 24'600 * megabyte},
    {"Library/Application Support/MobileSync/Backup", 6'850 * megabyte},
    {"/System/Library/AssetsV2/com_apple_MobileAsset_UAF_FM_GenerativeModels", 3'940 * megabyte},
    {"/Applications/Xcode.app", 4'180 * megabyte},
    {"/Applications/Docker.app", 2'270 * megabyte},
};

std::int64_t sizeOfLife(std::string_view path, std::int64_t bytes) {
    const auto* const found =
        std::ranges::find(sizesOfLife, path, &std::pair<std::string_view, std::int64_t>::first);
    return found == std::end(sizesOfLife) ? bytes * 10 : found->second;
}

/// What fills the disk besides, and belongs to nobody's caches.
constexpr LivedIn::Place restOfTheDisk[] = {
    {"/System/Library/Frameworks", 5'730 * megabyte, 40},
    {"/System/Library/dyld", 4'960 * megabyte, 40},
    {"/Library/Developer/CommandLineTools", 2'880 * megabyte, 135},
    {"Documents/Klien/2024", 5'210 * megabyte, 200},
    {"Documents/Klien/2025", 3'120 * megabyte, 3},
    {"Music/Music/Media", 4'430 * megabyte, 75},
};

/// The iOS simulator's system: a small file that the tool names, and what belongs to it.
constexpr std::string_view runtimeAsset =
    "/System/Library/AssetsV2/com_apple_MobileAsset_iOSSimulatorRuntime/3f9b1c.asset";

const std::string ssd = "/Volumes/SSD Kerja";
const std::string stick = "/Volumes/FLASHDISK";
constexpr auto ssdUuid = "5A1E0C2D-7B34-4F6A-9C81-D2E3F4051627";

/// What `simctl`, the script beside this file, answers from, and the calls that lead there.
void installSimulators(const SampleMac& mac) {
    const DiskFolder simulators("/box/simulators");
    const auto answerBy = [](const std::string& arguments) {
        BoxAnswers::run("xcrun simctl " + arguments, "shift; exec \"" KORVANTI_SAMPLE "/simctl\" \"$@\"");
    };
    answerBy("list devices -j");
    answerBy("runtime list -j");
    const auto lists = parseJson(mac.dated(LivedIn::simulators)).value();
    for (const auto& [runtime, devices] : lists.at("devices").items()) {
        simulators.folder("devices/" + runtime);
        for (auto device : devices) {
            const auto udid = device.at("udid").get<std::string>();
            device.erase("dataPathSize"); // is measured
            simulators.file("devices/" + runtime + "/" + udid, {.text = compactJson(device)});
            for (const auto* verb : {"delete ", "erase ", "shutdown "})
                answerBy(verb + udid);
        }
    }
    auto runtimes = parseJson(mac.dated(LivedIn::runtimes)).value();
    for (auto& [identifier, runtime] : runtimes.items()) {
        if (runtime.contains("path") && runtime.at("path").get<std::string>().starts_with(runtimeAsset))
            runtime["sizeBytes"] = 7'340 * megabyte;
        else if (!runtime.contains("path"))
            continue; // says that it takes space which lies nowhere
        simulators.file("runtimes/" + identifier, {.text = "\"" + identifier + "\":" + compactJson(runtime)});
        answerBy("runtime delete " + identifier);
    }
    mac.fill(std::string(runtimeAsset) + "/AssetData/Restore/Firmware", 7'294 * megabyte, 40);
}

/// Gradle's daemon runs until it is ended; a disk that is ejected goes.
void installTools() {
    BoxAnswers::say("pgrep -f GradleDaemon", "502\n");
    BoxAnswers::run("pkill -f GradleDaemon", "rm '/box/answers/pgrep -f GradleDaemon'");
    for (const auto& volume : {ssd, stick}) {
        const auto name = volume.substr(volume.rfind('/') + 1);
        BoxAnswers::run("diskutil eject " + volume, "echo '" + name + R"(' >/box/eject
for attempt in 1 2 3 4 5 6 7 8 9 10; do
    sleep 0.2
    [ -e "$2" ] || { echo "Disk )" + name + R"( ejected"; exit 0; }
done
echo "Volume )" + name + R"( failed to eject: it is in use" >&2
exit 1)");
    }
    BoxAnswers::say("diskutil info -plist " + ssd, R"(<plist version="1.0"><dict>
<key>BusProtocol</key><string>USB</string>
<key>DeviceIdentifier</key><string>disk5s1</string>
<key>Encryption</key><false/>
<key>FilesystemType</key><string>apfs</string>
<key>FilesystemUserVisibleName</key><string>APFS</string>
<key>GlobalPermissionsEnabled</key><true/>
<key>SMARTStatus</key><string>Verified</string>
<key>SolidState</key><true/>
</dict></plist>
)");
    BoxAnswers::say("diskutil info -plist " + stick, R"(<plist version="1.0"><dict>
<key>BusProtocol</key><string>USB</string>
<key>DeviceIdentifier</key><string>disk4s1</string>
<key>FilesystemType</key><string>exfat</string>
<key>FilesystemUserVisibleName</key><string>ExFAT</string>
<key>GlobalPermissionsEnabled</key><false/>
</dict></plist>
)");
}

/// What lies on the other disks; the SSD holds a folder that was moved there earlier.
void fillDisks(const SampleMac& mac) {
    const Blocks onSsd(ssd + "/.blocks", 13);
    onSsd.make(mac.ago(2000));
    onSsd.fill(DiskFolder(ssd + "/Video Klien"), 168'400 * megabyte, mac.ago(40));
    onSsd.fill(DiskFolder(ssd + "/Cadangan MacBook lama"), 96'700 * megabyte, mac.ago(400));

    const std::string project = "Developer/toko-web/arsip-desain/ekspor-2022";
    const OffloadRecord moved = {.title = "ekspor-2022",
                                 .originalPath = SampleMac::absolute(project),
                                 .destinationPath = ssd + "/Korvanti Offload/" + project,
                                 .volumeUUID = ssdUuid,
                                 .volumeName = "SSD Kerja",
                                 .bytes = 9'120 * megabyte,
                                 .date = instantFromSeconds(mac.ago(40)),
                                 .symlinked = true};
    onSsd.fill(DiskFolder(moved.destinationPath), moved.bytes, mac.ago(400));
    DiskFolder("/").symlink(moved.originalPath.substr(1), moved.destinationPath);
    OffloadRecords::write(AppPaths::offloads(), {moved});
    OffloadRecords::write(ssd + "/Korvanti Offload/manifest.json", {moved});

    const Blocks onStick(stick + "/.blocks", 12);
    onStick.make(mac.ago(2000));
    onStick.fill(DiskFolder(stick + "/DCIM"), 59'300 * megabyte, mac.ago(75));
}

/// What the program did in the last months.
void layHistory(const SampleMac& mac) {
    struct Entry {
        int days;
        const char* kind;
        const char* title;
        const char* path;
        std::int64_t megabytes;
        bool success = true;
        const char* message = "Dihapus";
    };
    constexpr Entry entries[] = {
        {135, "Hapus permanen", "DerivedData Xcode", "Library/Developer/Xcode/DerivedData", 34'200},
        {135, "Hapus permanen", "Unduhan Homebrew", "Library/Caches/Homebrew", 2'140},
        {135, "Hapus permanen", "Cache Gradle 7.4 (tidak dipakai)", ".gradle/caches/7.4", 1'870},
        {75, "Hapus simulator", "iPhone 12 · iOS 15.5", "Library/Developer/CoreSimulator/Devices/A1", 4'460,
         true, "Simulator dihapus"},
        {75, "Pindah ke Tong Sampah", "Figma", "/Applications/Figma.app", 0, true, "Dipindah ke Tong Sampah"},
        {75, "Kosongkan Tong Sampah", "Isi Tong Sampah", ".Trash", 6'310, true, "Tong Sampah dikosongkan"},
        {40, "Pindah ke SSD", "ekspor-2022", "Developer/toko-web/arsip-desain/ekspor-2022", 9'120, true,
         "→ /Volumes/SSD Kerja/Korvanti Offload/Developer/toko-web/arsip-desain/ekspor-2022"},
        {18, "Hapus permanen", "Log Zoom", "Library/Logs/Zoom", 0, false,
         "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti."},
        {10, "Hapus permanen", "Dependency npm (node_modules)", "Developer/kosong/node_modules", 612},
        {3, "Hapus permanen", "Cache Google Chrome", "Library/Caches/Google/Chrome", 1'480},
    };
    const ActivityLog log(AppPaths::activity());
    for (const auto& entry : entries)
        log.append({.date = instantFromSeconds(mac.ago(entry.days)),
                    .kind = entry.kind,
                    .title = entry.title,
                    .path = SampleMac::absolute(entry.path),
                    .bytes = entry.megabytes * megabyte,
                    .success = entry.success,
                    .message = entry.message});
}

/// A map of this Mac, with a date two days back.
void layMap(const SampleMac& mac) {
    auto map = StorageMapper::map(StorageMapper::defaultRoots("/Users/tester"), [](const std::string&) {});
    map.createdAt = instantFromSeconds(mac.ago(2));
    StorageMapper::save(map);
}

} // namespace

void makeDemoMac() {
    if (!std::filesystem::exists("/box/disks"))
        throw std::runtime_error("only made inside the box, with its disks beside it");
    const SampleMac mac(wholeSeconds(currentInstant()), sizeOfLife);
    mac.make();
    for (const auto& [path, bytes, days] : restOfTheDisk)
        mac.fill(path, bytes, days);
    installSimulators(mac);
    installTools();
    fillDisks(mac);
    layHistory(mac);
    mac.file(".zshenv", {.text = "export ANDROID_HOME=\"$HOME/Library/Android/sdk\"\n"
                                 "export PATH=\"$PATH:$ANDROID_HOME/platform-tools\"\n"
                                 ". \"$HOME/.cargo/env\"\n"});
    auto settings = KorvantiSettings::defaults();
    settings.workVolumeUUID = ssdUuid;
    settings.save();
    layMap(mac);
}

} // namespace korvanti::testing
