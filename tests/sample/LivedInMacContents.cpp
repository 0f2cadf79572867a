#include "sample/LivedInMacContents.h"

namespace korvanti::testing::LivedIn {
namespace {

constexpr Place folderTable[] = {
    // Xcode
    {"Library/Developer/Xcode/DerivedData", 64'100'000, 3},
    {"Library/Developer/Xcode/Archives", 52'300'000, 75},
    {"Library/Developer/Xcode/UserData/Previews", 21'700'000, 10},
    {"Library/Developer/Xcode/DocumentationCache", 23'400'000, 135},
    {"Library/Caches/com.apple.dt.Xcode", 22'800'000, 3},
    {"Library/Caches/org.swift.swiftpm", 31'900'000, 40},
    {"Library/Caches/CocoaPods", 24'600'000, 200},
    {"Library/Developer/Xcode/iOS DeviceSupport/iPhone14,5 16.4 (20E247)", 51'200'000, 400},
    {"Library/Developer/Xcode/iOS DeviceSupport/iPhone14,5 17.5 (21F79) arm64e", 53'600'000, 40},
    {"Library/Developer/Xcode/iOS DeviceSupport/15.7.1 (19H117)", 55'000'000, 800},
    {"Library/Developer/Xcode/watchOS DeviceSupport/Watch6,1 10.5 (21T569)", 50'100'000, 135},

    // Simulators
    {"Library/Developer/CoreSimulator/Devices/0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01/data", 13'300'000, 400},
    {"Library/Developer/CoreSimulator/Devices/2D903A2C-8E77-4D51-9B2F-7F3E419CA023/data", 61'440'000, 1},
    {"Library/Developer/CoreSimulator/Devices/5B4C2A10-1D2E-4F60-8A7B-9C0D1E2F3A40/data", 52'428'800, 40},
    {"Library/Developer/CoreSimulator/Devices/6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51/data", 55'705'600, 10},
    {"Library/Developer/CoreSimulator/Devices/7D6E4C32-3F40-4182-AC9D-BE2F30415C62/data", 50'200'000, 135},
    {"Library/Developer/CoreSimulator/Caches", 26'200'000, 10},
    {"Library/Logs/CoreSimulator", 20'900'000, 40},
    {"Library/Developer/XCTestDevices", 33'300'000, 75},

    // Android
    {".gradle/caches/8.7", 12'100'000, 3},
    {".gradle/caches/7.6.3", 15'500'000, 200},
    {".gradle/caches/build-cache-1", 28'800'000, 3},
    {".gradle/caches/transforms-4", 36'600'000, 3},
    {".gradle/caches/modules-2", 88'400'000, 3},
    {".gradle/wrapper/dists/gradle-8.7-bin", 16'400'000, 135},
    {".gradle/wrapper/dists/gradle-7.6.3-all", 17'900'000, 400},
    {".gradle/daemon", 10'600'000, 3},
    {".gradle/native", 10'200'000, 400},
    {".gradle/jdks", 34'400'000, 200},
    {".android/avd", 47'700'000, 75},
    {".android/cache", 11'100'000, 40},
    {"Library/Caches/Google/AndroidStudio2024.1", 44'500'000, 3},
    {"Library/Logs/Google/AndroidStudio2024.1", 13'900'000, 3},
    {".konan", 48'900'000, 135},
    {".m2/repository", 25'300'000, 200},
    {"Library/Android/sdk/ndk/26.1.10909125", 29'900'000, 135},
    {"Library/Android/sdk/ndk/23.1.7779620", 37'100'000, 800},
    {"Library/Android/sdk/build-tools/33.0.1", 21'300'000, 400},
    {"Library/Android/sdk/build-tools/30.0.3", 20'300'000, 800},
    {"Library/Android/sdk/platforms/android-34", 40'400'000, 135},
    {"Library/Android/sdk/platforms/android-31", 27'500'000, 800},
    {"Library/Android/sdk/platforms/android-34-ext8", 24'200'000, 200},
    {"Library/Android/sdk/sources/android-34", 32'100'000, 135},
    {"Library/Android/sdk/system-images/android-33", 58'700'000, 400},
    {"Library/Android/sdk/emulator", 43'600'000, 200},

    // What builds and installs left in the projects
    {"Developer/Dompetku/Pods", 35'200'000, 3},
    {"Developer/Dompetku/DerivedData", 24'100'000, 3},
    {"Developer/Dompetku/build/Archives", 23'900'000, 40},
    {"Developer/Dompetku/build/DerivedData", 29'300'000, 10},
    {"Developer/Dompetku/build/Screenshots", 51'100'000, 10},
    {"Developer/Dompetku/.claude/worktrees/fitur-baru/Pods", 26'700'000, 75},
    {"AndroidStudioProjects/Kasir/.gradle", 20'700'000, 3},
    {"AndroidStudioProjects/Kasir/build", 20'100'000, 10},
    {"AndroidStudioProjects/Kasir/app/.cxx", 22'300'000, 40},
    {"AndroidStudioProjects/Kasir/app/build/intermediates", 44'000'000, 3},
    {"AndroidStudioProjects/Kasir/app/build/outputs/bundle/prodRelease", 12'000'000, 10},
    {"AndroidStudioProjects/Kasir/app/build/outputs/apk/prodRelease", 9'000'000, 10},
    {"AndroidStudioProjects/Kasir/app/build/outputs/mapping/prodRelease", 1'600'000, 10},
    {"AndroidStudioProjects/Kasir/fitur/build", 21'900'000, 3},
    {"Developer/toko-web/node_modules", 57'500'000, 75},
    {"Developer/toko-web/apps/admin/node_modules", 30'400'000, 75},
    {"Developer/toko-web/.next", 38'200'000, 75},
    {"Developer/toko-web/dist", 25'700'000, 75},
    {"Developer/toko-web/rekaman", 128'300'000, 75},
    {"Developer/toko-web/arsip-desain/ekspor-2023", 620'200'000, 400},
    {"Developer/toko-web/arsip-desain/ekspor-2024", 471'900'000, 135},
    {"Developer/riset/.venv", 45'900'000, 400},
    {"Developer/riset/__pycache__", 20'600'000, 3},
    {"Developer/riset/data", 100'200'000, 400},
    {"Developer/riset/vendor/pustaka/target", 59'900'000, 135},
    {"Developer/mesin-cuaca/target", 83'200'000, 3},
    {"Developer/kosong/node_modules", 21'200'000, 40},
    {"Documents/GitHub/coba-svelte/node_modules", 33'800'000, 200},
    {"Documents/GitHub/coba-svelte/.svelte-kit", 23'100'000, 200},
    {"Documents/GitHub/coba-svelte/build", 27'900'000, 200},

    // Packages and toolchains
    {".nvm/versions/node/v20.11.0", 42'100'000, 200},
    {".nvm/versions/node/v20.15.1", 41'300'000, 75},
    {".nvm/versions/node/v18.20.3", 39'800'000, 400},
    {".rustup/toolchains/stable-aarch64-apple-darwin", 84'800'000, 40},
    {".rustup/toolchains/1.75.0-aarch64-apple-darwin", 79'300'000, 200},
    {".rustup/toolchains/1.70.0-aarch64-apple-darwin", 76'100'000, 400},
    {".npm/_cacache", 45'300'000, 3},
    {".npm/_logs", 5'500'000, 3},
    {"Library/Caches/Yarn", 20'200'000, 400},
    {"Library/pnpm/store", 37'700'000, 40},
    {"Library/Caches/Homebrew", 63'100'000, 10},
    {"Library/Caches/pip", 23'800'000, 400},
    {".cargo/registry/src", 30'800'000, 10},
    {".cargo/registry/cache", 26'600'000, 10},
    {"Library/Caches/ms-playwright", 112'500'000, 75},
    {"go/pkg/mod", 22'100'000, 800},
    {"Library/Containers/com.docker.docker", 92'700'000, 3},
    {"VirtualBox VMs", 71'900'000, 800},

    // Editors and their helpers
    {".vscode/extensions/ms-python.python-2024.8.0", 8'100'000, 135},
    {".vscode/extensions/dart-code.dart-code-3.90.0", 6'600'000, 75},
    {".cursor/extensions/rust-lang.rust-analyzer-0.3.1950-darwin-arm64", 5'700'000, 200},
    {".codex/sessions/2024/03", 24'400'000, 800},
    {".codex/sessions/2024/11", 33'000'000, 400},
    {".codex/cache", 12'300'000, 10},
    {".codex/generated_images", 28'100'000, 40},
    {".codex/worktrees", 5'000'000, 10},
    {".claude", 1'200'000, 1},
    {".gemini/antigravity", 31'200'000, 135},
    {"Library/Application Support/Claude", 54'100'000, 1},
    {"Library/Application Support/Code/CachedData", 46'600'000, 3},
    {"Library/Application Support/Code/logs", 30'300'000, 3},
    {"Library/Application Support/Cursor/Service Worker/CacheStorage", 34'900'000, 10},
    {"Library/Application Support/Slack/Cache", 39'200'000, 1},

    // Caches, logs, and what applications left behind
    {"Library/Caches/Google/Chrome", 61'800'000, 1},
    {"Library/Caches/Firefox", 27'100'000, 40},
    {"Library/Application Support/Google/DriveFS", 66'100'000, 3},
    {"Library/Caches/com.sindresorhus.Pasteboard", 104'900'000, 40},
    {"Library/Logs/Zoom", 30'600'000, 75},
    {"Library/Containers/com.lama.catatan", 108'100'000, 400},

    // Data of applications
    {"Library/Application Support/Spotify/PersistentCache", 29'000'000, 75},
    {"Library/Caches/com.spotify.client", 29'500'000, 135},
    {"Library/Saved Application State/com.spotify.client.savedState", 40'000, 75},
    {"Library/HTTPStorages/com.spotify.client", 100'000, 135},
    {"Library/Application Support/Sketchy", 14'700'000, 135},
    {"Library/Containers/com.sketchy.draw", 2'200'000, 200},
    {"Library/Group Containers/7XYZ.com.sketchy.draw", 1'700'000, 200},
    {"Library/Application Support/com.tinyapp.TablePlus", 3'300'000, 200},
    {"Library/Roblox", 44'900'000, 10},
    {"Library/Application Support/Steam/steamapps", 87'000'000, 75},

    // What belongs to the user
    {"Downloads/Aplikasi Uji.app", 22'600'000, 40},
    {"Downloads/rekaman-layar", 100'500'000, 75},
    {"Pictures/Perpustakaan Foto.photoslibrary", 210'300'000, 3},
    {"Movies/TV", 20'400'000, 200},
    {".Trash/proyek lama", 14'200'000, 40},
    {"Library/Application Support/MobileSync/Backup", 74'500'000, 200},
    {"Library/Group Containers/group.net.whatsapp.WhatsApp.shared/Message/Media", 68'800'000, 1},
    {"Library/Group Containers/6N38VWS5BX.ru.keepcoder.Telegram", 47'100'000, 1},

    // What the system keeps
    {"/System/Library/AssetsV2/com_apple_MobileAsset_MetalToolchain", 301'100'000, 40},
    {"/System/Library/AssetsV2/com_apple_MobileAsset_UAF_FM_GenerativeModels", 302'400'000, 40},
};

constexpr Place fileTable[] = {
    {"Downloads/Xcode_16.xip", 5'800'000, 18},
    {"Downloads/proyek-klien.zip", 20'500'000, 200},
    {"Movies/wawancara.mov", 314'600'000, 75},
    // The simulator tool names these two.
    {"/System/Library/AssetsV2/com_apple_MobileAsset_iOSSimulatorRuntime/3f9b1c.asset/AssetData/Restore/"
     "062-10233-014.dmg",
     45'056'000, 40},
    {"/System/Library/AssetsV2/com_apple_MobileAsset_watchOSSimulatorRuntime/a871de.asset/AssetData/Restore/"
     "062-10277-009.dmg",
     24'576'000, 40},
};

constexpr Place passedOverTable[] = {
    // Too small
    {"Library/Developer/Xcode/Products", 19'996'672, 3},
    {"Library/Developer/Xcode/iOS DeviceSupport/iPad13,4 17.2 (21C62)", 49'999'872, 40},
    {"Library/Developer/CoreSimulator/Devices/3EA14B3D-9F88-4E62-AC30-804F52ADB134/data", 13'340'672, 200},
    {"Library/Developer/CoreSimulator/Devices/4FB25C4E-A099-4F73-BD41-915063BEC245/data", 19'156'992, 75},
    {".gradle/caches/8.9", 9'998'336, 3},
    {"Developer/toko-web/coverage", 19'996'672, 75},
    {"Developer/toko-web/arsip-desain/kecil", 19'000'000, 75},
    {"Developer/Dompetku/build/Logs", 49'999'872, 3},
    {".nvm/versions/node/v16.0.0", 19'996'672, 800},
    {".cursor/extensions/esbenp.prettier-vscode-10.1.0", 4'997'120, 200},
    {"Library/Caches/com.kecil.app", 99'999'744, 40},
    {"Downloads/foto", 99'999'744, 10},
    {"/System/Library/AssetsV2/com_apple_MobileAsset_Kecil", 299'999'232, 40},
    // The newest, or in use
    {"Library/Android/sdk/build-tools/34.0.0", 22'200'000, 135},
    {".vscode/extensions/ms-python.python-2024.10.1", 8'500'000, 40},
    {".cursor/extensions/esbenp.prettier-vscode-10.2.0", 5'100'000, 40},
    {".cursor/extensions/rust-lang.rust-analyzer-0.4.2000-darwin-arm64", 5'800'000, 40},
    // Nobody's business
    {"Library/Developer/Xcode/iOS DeviceSupport/Symbols", 60'000'000, 40},
    {".gradle/caches/jars-9", 11'700'000, 3},
    {".codex/sessions/2024/catatan", 30'000'000, 400},
    {"Library/Android/sdk/platform-tools", 21'000'000, 40},
    {"Library/Caches/com.apple.Safari", 150'000'000, 1},
    {"Library/Logs/DiagnosticReports", 40'000'000, 1},
    {"Library/Caches/com.roblox.RobloxPlayer", 3'100'000, 10},
    // They have an owner, or no name that tells one
    {"Library/Containers/com.acme.kamera.widget", 140'000'000, 40},
    {"Library/Containers/com.acme-lain.widget", 120'000'000, 40},
    {"Library/Containers/com.acme", 109'000'000, 40},
    {"Library/Containers/tanpatitik", 115'000'000, 40},
    {"Library/Containers/com.apple.mail", 160'000'000, 1},
    // Secrets, however large
    {"Developer/Dompetku/signing", 105'000'000, 200},
    {"Developer/Dompetku/.env.d", 103'000'000, 200},
    {"Developer/Dompetku/Rahasia-Secrets", 104'000'000, 200},
    {"Developer/riset/model-private", 140'000'000, 400},
    {"AndroidStudioProjects/Kasir/keystore", 102'000'000, 200},
    // A more specific item lies inside
    {"Developer/riset/vendor/arsip", 106'000'000, 400},
    {"/System/Library/AssetsV2/com_apple_MobileAsset_iOSSimulatorRuntime/3f9b1c.asset/sisanya", 300'000'000,
     40},
};

constexpr std::string_view secretTable[] = {
    ".ssh/id_ed25519",
    ".aws/credentials",
    ".gnupg/private-keys-v1.d/kunci.key",
    ".netrc",
    ".android/debug.keystore",
    ".codex/auth.json",
    ".gradle/gradle.properties",
    "Library/Keychains/login.keychain-db",
    "Library/Mail/V10/surat.mbox",
    "Library/Messages/chat.db",
    "Developer/Dompetku/.env",
    "Developer/Dompetku/.env.d/produksi",
    "Developer/Dompetku/signing/distribusi.p12",
    "Developer/Dompetku/Rahasia-Secrets/api.json",
    "Developer/toko-web/.env.local",
    "Developer/riset/model-private/bobot.bin",
    "AndroidStudioProjects/Kasir/keystore/rilis.jks",
    "AndroidStudioProjects/Kasir/local.properties",
};

constexpr InfoValue xcode[] = {{"CFBundleIdentifier", "com.apple.dt.Xcode"},
                               {"LSApplicationCategoryType", "public.app-category.developer-tools"}};
constexpr InfoValue insaquarium[] = {{"CFBundleIdentifier", "com.popcap.insaquarium"},
                                     {"LSApplicationCategoryType", "public.app-category.puzzle-games"}};
constexpr InfoValue spotify[] = {{"CFBundleIdentifier", "com.spotify.client"},
                                 {"LSApplicationCategoryType", "public.app-category.music"}};
constexpr InfoValue steam[] = {{"CFBundleIdentifier", "com.valvesoftware.steam"}};
constexpr InfoValue roblox[] = {{"CFBundleIdentifier", "com.roblox.RobloxPlayer"}};
constexpr InfoValue sketchy[] = {{"CFBundleIdentifier", "com.sketchy.draw"},
                                 {"CFBundleDisplayName", "Sketchy"},
                                 {"LSApplicationCategoryType", "public.app-category.graphics-design"}};
constexpr InfoValue archivist[] = {{"CFBundleIdentifier", "id.arsiparis"},
                                   {"CFBundleDisplayName", "Arsiparis"}};
constexpr InfoValue agent[] = {{"CFBundleIdentifier", "id.agenlatar"}, {"LSUIElement", "true"}};
constexpr InfoValue tablePlus[] = {{"CFBundleIdentifier", "com.tinyapp.TablePlus"}};
constexpr InfoValue smallGame[] = {{"CFBundleIdentifier", "com.kecil.permainan"},
                                   {"LSApplicationCategoryType", "public.app-category.games"}};
constexpr InfoValue docker[] = {{"CFBundleIdentifier", "com.docker.docker"}};
constexpr InfoValue camera[] = {{"CFBundleIdentifier", "com.acme.kamera"}};
constexpr InfoValue cameraWidget[] = {{"CFBundleIdentifier", "com.acme-lain.widget"}};
constexpr InfoValue examBrowser[] = {{"CFBundleIdentifier", "org.safeexambrowser.SafeExamBrowser"},
                                     {"CFBundleDisplayName", "Safe Exam Browser"}};
constexpr InfoValue mail[] = {{"CFBundleIdentifier", "com.apple.mail"}};

constexpr Application applicationTable[] = {
    {"/Applications/Xcode.app", 12'000'000, xcode},
    {"/Applications/Insaquarium.app", 35'000'000, insaquarium},
    {"/Applications/Spotify.app", 26'000'000, spotify},
    {"/Applications/Steam.app", 17'000'000, steam},   // runs
    {"/Applications/Roblox.app", 19'000'000, roblox}, // its data has changed this month
    {"/Applications/Sketchy 3.app", 18'300'000, sketchy},
    {"/Applications/Arsiparis.app", 101'700'000, archivist},
    {"/Applications/Agen Latar.app", 110'000'000, agent},
    {"/Applications/TablePlus.app", 16'900'000, tablePlus},
    {"/Applications/Permainan Kecil.app", 4'997'120, smallGame},
    {"/Applications/Docker.app", 13'000'000, docker},
    {"/Applications/Kamera Acme.app", 14'000'000, camera},
    {"/Applications/Kamera Acme.app/Contents/PlugIns/Widget.appex", 1'000'000, cameraWidget},
    {"/Applications/Utilities/Safe Exam Browser.app", 18'100'000, examBrowser},
    {"/Users/tester/Applications/Dota Mod.app", 15'500'000, {}},
    {"/System/Applications/Mail.app", 9'000'000, mail},
};

constexpr ProjectFile moneyAppFiles[] = {
    {"Dompetku.xcodeproj/project.pbxproj", "// !$*UTF8*$!\n"},
    {"Podfile", "platform :ios, '16.0'\n"},
    {"Sources/Dompet.swift", "struct Dompet {}\n"},
    {".gitignore", "build/\nPods/\nDerivedData/\n.env*\nsigning/\nRahasia-Secrets/\n.claude/\n"},
};
constexpr ProjectFile tillFiles[] = {
    {"settings.gradle.kts", "include(\":app\", \":fitur\")\n"},
    {"build.gradle.kts", "plugins { id(\"com.android.application\") version \"8.4.0\" apply false }\n"},
    {"app/build.gradle.kts", "android {\n"
                             "    compileSdk = 34\n"
                             "    ndkVersion = \"26.1.10909125\"\n"
                             "    buildToolsVersion = \"30.0.3\"\n"
                             "}\n"},
    {"fitur/build.gradle.kts", "android { compileSdk = 34 }\n"},
    {"gradle/wrapper/gradle-wrapper.properties",
     "distributionUrl=https\\://services.gradle.org/distributions/gradle-8.7-bin.zip\n"},
    {".gitignore", ".gradle/\nbuild/\n.cxx/\nlocal.properties\nkeystore/\n"},
};
constexpr ProjectFile shopFiles[] = {
    {"package.json", "{\"name\": \"toko-web\"}\n"},
    {"apps/admin/package.json", "{\"name\": \"admin\"}\n"},
    {".nvmrc", "v20.11.0\n"},
    {".gitignore", "node_modules/\n.next/\ndist/\ncoverage/\nrekaman/\narsip-desain/\n.env.local\n"},
};
constexpr ProjectFile researchFiles[] = {
    {"requirements.txt", "numpy\n"},
    {"latih.py", "print('belajar')\n"},
    {".gitignore", ".venv/\n__pycache__/\ndata/\nmodel-private/\nvendor/\n"},
};
constexpr ProjectFile libraryFiles[] = {
    {"Cargo.toml", "[package]\nname = \"pustaka\"\n"},
    {"rust-toolchain", "1.75.0\n"},
    {".gitignore", "target/\n"},
};
constexpr ProjectFile weatherFiles[] = {
    {"Cargo.toml", "[package]\nname = \"mesin-cuaca\"\n"},
    {"rust-toolchain.toml", "[toolchain]\nchannel = \"stable\"\n"},
    {".gitignore", "target/\n"},
};
constexpr Project repositoryTable[] = {
    {"AndroidStudioProjects/Kasir", 10, tillFiles}, {"Developer/toko-web", 75, shopFiles},
    {"Developer/riset", 400, researchFiles},        {"Developer/riset/vendor/pustaka", 135, libraryFiles},
    {"Developer/mesin-cuaca", 10, weatherFiles},
};
constexpr ProjectFile unbornFiles[] = {{"package.json", "{}\n"}, {".gitignore", "node_modules\n"}};
constexpr ProjectFile looseFiles[] = {{"package.json", "{}\n"}, {"svelte.config.js", "export default {}\n"}};

} // namespace

const std::span<const Place> folders = folderTable;
const std::span<const Place> files = fileTable;
const std::span<const Place> passedOver = passedOverTable;
const std::span<const std::string_view> secrets = secretTable;
const std::string_view secretText = "sandi: jangan-sampai-bocor\n";
const std::span<const Application> applications = applicationTable;
const Project moneyApp = {"Developer/Dompetku", 3, moneyAppFiles};
const std::span<const Project> repositories = repositoryTable;
const Project unbornRepository = {"Developer/kosong", 40, unbornFiles};
const Project looseProject = {"Documents/GitHub/coba-svelte", 200, looseFiles};

const std::string_view processes = R"(/sbin/launchd
/System/Library/CoreServices/Finder.app/Contents/MacOS/Finder
-zsh
/Applications/Steam.app/Contents/MacOS/steam_osx
/Applications/Docker.app/Contents/MacOS/com.docker.backend
(Google Chrome He)
<defunct>
ps
)";

const std::string_view snapshots = R"(Snapshots for disk /:
com.apple.TimeMachine.2025-05-29-081533.local
com.apple.TimeMachine.2025-05-29-091611.local (dataless)
com.apple.TimeMachine.2025-05-30-071458.local
com.apple.os.update-MSUPrepareUpdate
)";

const std::string_view simulators = R"json({
  "devices" : {
    "com.apple.CoreSimulator.SimRuntime.iOS-16-4" : [
      {
        "availabilityError" : "runtime profile not found using \"System\" match policy",
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01\/data",
        "isAvailable" : false,
        "lastUsedAt" : "{400 days}",
        "name" : "iPhone 14",
        "state" : "Shutdown",
        "udid" : "0B7E1E0A-6C55-4B3F-9F0D-5D1C2F7A8E01"
      }
    ],
    "com.apple.CoreSimulator.SimRuntime.iOS-17-5" : [
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/2D903A2C-8E77-4D51-9B2F-7F3E419CA023\/data",
        "dataPathSize" : 61440000,
        "isAvailable" : true,
        "lastUsedAt" : "{1 days}",
        "logPathSize" : 57344,
        "name" : "iPhone 15 Pro",
        "state" : "Booted",
        "udid" : "2D903A2C-8E77-4D51-9B2F-7F3E419CA023"
      },
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/3EA14B3D-9F88-4E62-AC30-804F52ADB134\/data",
        "dataPathSize" : 13340672,
        "isAvailable" : true,
        "name" : "iPhone SE (3rd generation)",
                       "state" : "Shutdown", "udid" : "3EA14B3D-9F88-4E62-AC30-804F52ADB134"
},
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/5B4C2A10-1D2E-4F60-8A7B-9C0D1E2F3A40\/data",
        "dataPathSize" : 52428800,
        "lastUsedAt" : "{40 days}",
        "name" : "iPad Air (5th generation)",
        "state" : "Shutdown",
        "udid" : "5B4C2A10-1D2E-4F60-8A7B-9C0D1E2F3A40"
      },
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51\/data",
        "dataPathSize" : 55705600,
        "isAvailable" : true,
        "lastUsedAt" : "{10 days}",
        "name" : "iPhone 15",
        "state" : "Shutdown",
        "udid" : "6C5D3B21-2E3F-4071-9B8C-AD1E2F304B51"
      },
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/7D6E4C32-3F40-4182-AC9D-BE2F30415C62\/data",
        "isAvailable" : true,
        "name" : "iPhone 15 Plus",
        "state" : "Shutdown",
        "udid" : "7D6E4C32-3F40-4182-AC9D-BE2F30415C62"
      }
    ],
    "com.apple.CoreSimulator.SimRuntime.tvOS-17-5" : [

    ],
    "com.apple.CoreSimulator.SimRuntime.watchOS-10-5" : [
      {
        "dataPath" : "\/Users\/tester\/Library\/Developer\/CoreSimulator\/Devices\/4FB25C4E-A099-4F73-BD41-915063BEC245\/data",
        "dataPathSize" : 19156992,
        "isAvailable" : true,
        "lastUsedAt" : "{75 days}",
        "name" : "Apple Watch Series 9 (45mm)",
        "state" : "Shutdown",
        "udid" : "4FB25C4E-A099-4F73-BD41-915063BEC245"
      }
    ]
}
}
)json";

const std::string_view runtimes = R"json({
  "5A0D8C6E-1111-4F6B-9E3C-0A4B5C6D7E8F" : {
    "build" : "21F79",
    "deletable" : true,
    "identifier" : "5A0D8C6E-1111-4F6B-9E3C-0A4B5C6D7E8F",
    "lastUsedAt" : "{1 days}",
    "path" : "\/System\/Library\/AssetsV2\/com_apple_MobileAsset_iOSSimulatorRuntime\/3f9b1c.asset\/AssetData\/Restore\/062-10233-014.dmg",
    "runtimeIdentifier" : "com.apple.CoreSimulator.SimRuntime.iOS-17-5",
    "sizeBytes" : 45056000,
    "state" : "Ready",
    "version" : "17.5"
  },
  "6B1E9D7F-2222-4A7C-8F4D-1B5C6D7E8F90" : {
    "build" : "20E247",
    "identifier" : "6B1E9D7F-2222-4A7C-8F4D-1B5C6D7E8F90",
    "runtimeIdentifier" : "com.apple.CoreSimulator.SimRuntime.iOS-16-4",
    "sizeBytes" : 6250741760,
    "state" : "Unusable",
    "version" : "16.4"
  },
  "7C2FAE80-3333-4B8D-9A5E-2C6D7E8F9011" : {
    "build" : "21T569",
    "deletable" : true,
    "identifier" : "7C2FAE80-3333-4B8D-9A5E-2C6D7E8F9011",
    "lastUsedAt" : "{75 days}",
    "path" : "\/System\/Library\/AssetsV2\/com_apple_MobileAsset_watchOSSimulatorRuntime\/a871de.asset\/AssetData\/Restore\/062-10277-009.dmg",
    "runtimeIdentifier" : "com.apple.CoreSimulator.SimRuntime.watchOS-10-5",
    "sizeBytes" : 24576000,
    "state" : "Ready",
    "version" : "10.5"
  },
  "8D30BF91-4444-4C9E-8B6F-3D7E8F901122" : {
    "deletable" : false,
    "identifier" : "8D30BF91-4444-4C9E-8B6F-3D7E8F901122",
    "state" : "Unusable",
    "version" : "1.2"
  }
}
)json";

} // namespace korvanti::testing::LivedIn
