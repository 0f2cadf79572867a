#include "LivedInMac.h"

#include "base/Instant.h"
#include "support/Git.h"

#include <array>
#include <regex>

namespace korvanti::testing {
namespace {

constexpr std::int64_t page = 4096;
constexpr int largestBlock = 14; ///< of 2^14 pages: 67 MB

std::string propertyList(std::span<const LivedIn::InfoValue> values) {
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
)";
    for (const auto& [key, value] : values) {
        text += "\t<key>" + std::string(key) + "</key>\n\t";
        text += value == "true" ? "<true/>\n" : "<string>" + std::string(value) + "</string>\n";
    }
    return text + "</dict>\n</plist>\n";
}

} // namespace

LivedInMac::LivedInMac() : now(wholeSeconds(currentInstant())) {}

void LivedInMac::SetUp() {
    for (int power = 0; power <= largestBlock; ++power)
        blocks_.file(std::to_string(power), {.allocatedBytes = page << power, .modified = ago(2000)});

    makeMoneyApp();
    for (const auto& repository : LivedIn::repositories) {
        make(repository);
        const auto project = mac.home.path(repository.path);
        git(project, {"init", "-q"});
        git(project, {"add", "."});
        git(project, {"commit", "-q", "-m", "semua"}, ago(repository.days));
        mac.home.setModified(std::string(repository.path) + "/.git/index", ago(repository.days));
    }
    make(LivedIn::unbornRepository);
    git(mac.home.path(LivedIn::unbornRepository.path), {"init", "-q"});
    make(LivedIn::looseProject);

    for (const auto& [path, bytes, days] : LivedIn::folders)
        fill(path, bytes, days);
    for (const auto& [path, bytes, days] : LivedIn::passedOver)
        fill(path, bytes, days);
    for (const auto& [path, bytes, days] : LivedIn::files) {
        const auto& [folder, relative] = spot(path);
        folder.file(relative, {.allocatedBytes = bytes, .modified = ago(days)});
    }
    for (const auto& secret : LivedIn::secrets)
        mac.home.file(secret, {.text = std::string(LivedIn::secretText)});
    for (const auto& application : LivedIn::applications)
        install(application);
    makeSmallThings();
    answerForTools();

    // Last, as whatever is made in a folder changes it.
    for (const auto& [path, bytes, days] : LivedIn::folders) {
        const auto& [folder, relative] = spot(path);
        folder.setModified(relative, ago(days));
    }
}

ProgramResult LivedInMac::scan(const std::vector<std::string>& arguments, ProgramOptions options) {
    options.environment.insert({{"ANDROID_HOME", std::nullopt}, {"ANDROID_SDK_ROOT", std::nullopt}});
    return korvanti(arguments, options);
}

std::int64_t LivedInMac::ago(int days) const {
    return now - days * 86400LL - 43200;
}

std::string LivedInMac::absolute(std::string_view path) const {
    const auto& [folder, relative] = spot(path);
    return folder.path(relative);
}

LivedInMac::Spot LivedInMac::spot(std::string_view path) const {
    for (const TempFolder* folder :
         std::array<const TempFolder*, 4>{&mac.home, &mac.applications, &systemApplications, &assets}) {
        if (path.starts_with(folder->path() + "/"))
            return {*folder, std::string(path.substr(folder->path().size() + 1))};
    }
    return {mac.home, std::string(path)};
}

/// One page is the folder's own and tells its date.
void LivedInMac::fill(std::string_view path, std::int64_t bytes, int days) const {
    const auto& [folder, relative] = spot(path);
    folder.file(relative + "/isi", {.allocatedBytes = page, .modified = ago(days)});
    auto left = (bytes + page - 1) / page - 1;
    for (int power = largestBlock; power >= 0; --power) {
        for (int copy = 0; left >= 1LL << power; ++copy) {
            folder.hardLink(relative + "/blok-" + std::to_string(power) + "-" + std::to_string(copy),
                            blocks_.path(std::to_string(power)));
            left -= 1LL << power;
        }
    }
}

void LivedInMac::install(const LivedIn::Application& application) const {
    auto bytes = application.bytes;
    const auto contents = std::string(application.bundle) + "/Contents";
    if (!application.info.empty()) {
        const auto& [folder, relative] = spot(contents);
        folder.file(relative + "/Info.plist", {.text = propertyList(application.info)});
        bytes -= page;
    }
    fill(contents + "/MacOS", bytes, 800);
}

void LivedInMac::make(const LivedIn::Project& project) const {
    for (const auto& [path, text] : project.files)
        mac.home.file(std::string(project.path) + "/" + std::string(path),
                      {.text = std::string(text), .modified = ago(project.days)});
}

/// Worked on lately, with a worktree where the work has stopped.
void LivedInMac::makeMoneyApp() const {
    const auto& [path, days, files] = LivedIn::moneyApp;
    make(LivedIn::moneyApp);
    const auto project = mac.home.path(path);
    git(project, {"init", "-q"});
    git(project, {"add", "."});
    git(project, {"commit", "-q", "-m", "awal"}, ago(135));
    git(project, {"worktree", "add", "-q", "-b", "fitur", ".claude/worktrees/fitur-baru"});
    git(project, {"commit", "-q", "--allow-empty", "-m", "terbaru"}, ago(days));
    mac.home.setModified(std::string(path) + "/.git/index", ago(days));
    mac.home.setModified(std::string(path) + "/.git/worktrees/fitur-baru/index", ago(75));
}

void LivedInMac::makeSmallThings() const {
    mac.grantFullDiskAccess();
    mac.home.folder("Library/Application Support/Korvanti"); // it has run before
    mac.applications.folder("Xcode.app/Contents/Developer");
    mac.applications.folder("Insaquarium.app/Contents/_MASReceipt");
    mac.applications.symlink("Netflix.app", mac.applications.path("Insaquarium.app"));

    mac.home.file(".nvm/alias/default", {.text = "20\n"});
    mac.home.file(".vscode/extensions/.obsolete", {.text = R"({"dart-code.dart-code-3.90.0": true,
        "ms-python.python-2024.8.0": true, "ms-python.python-2024.10.1": false, "tidak.ada-1.0.0": true})"});
    mac.home.symlink(".cache/prisma", mac.home.path(".npm/_cacache"));
    mac.home.symlink("Library/Developer/Xcode/iOS DeviceSupport/iPhone9,1 15.0 (19A346)",
                     mac.home.path("Library/Developer/Xcode/DerivedData"));

    const auto soon = iso8601Text(instantFromSeconds(now + 15 * 86400)); // this month or the next
    fill(".codex/sessions/" + soon.substr(0, 4) + "/" + soon.substr(5, 2), 99'000'000, 1);

    // Large files where nobody looks for them.
    const auto film = mac.home.path("Movies/wawancara.mov");
    for (const auto& place : {"Documents/salinan.mov", "Movies/.cache/salinan.mov",
                              "Music/Rekaman.app/Contents/salinan.mov", "Developer/toko-web/salinan.mov"})
        mac.home.hardLink(place, film);
}

void LivedInMac::answerForTools() const {
    const auto sample = [](const std::string& name) { return textOf(KORVANTI_TEST_DATA "/" + name); };
    const auto dated = [this](std::string_view text) {
        const std::regex mark(R"(\{([0-9]+) days\})");
        std::string result(text);
        for (std::smatch match; std::regex_search(result, match, mark);)
            result.replace(static_cast<std::size_t>(match.position()),
                           static_cast<std::size_t>(match.length()),
                           iso8601Text(instantFromSeconds(ago(std::stoi(match[1])))));
        return result;
    };
    mac.answer("xcode-select -p", "/Applications/Xcode.app/Contents/Developer\n");
    mac.answer("xcrun simctl list devices -j", dated(LivedIn::simulators));
    mac.answer("xcrun simctl runtime list -j", dated(LivedIn::runtimes));
    mac.answer("diskutil info -plist /", sample("diskutil-info-root.plist"));
    mac.answer("diskutil apfs list -plist", sample("diskutil-apfs-list.plist"));
    mac.answer("tmutil listlocalsnapshots /", std::string(LivedIn::snapshots));
    mac.answer("ps -axo comm=", std::string(LivedIn::processes));
}

} // namespace korvanti::testing
