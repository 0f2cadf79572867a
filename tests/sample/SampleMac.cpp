#include "sample/SampleMac.h"

#include "base/Instant.h"
#include "process/Shell.h"
#include "support/BoxAnswers.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace korvanti::testing {
namespace {

constexpr std::int64_t page = 4096;
constexpr const char* homeFolder = "/Users/tester";

DiskFolder home() {
    return DiskFolder(homeFolder);
}

Blocks blocks() {
    return {"/box/blocks", 14}; // up to 67 MB
}

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

std::string sampleOf(const std::string& name) {
    std::ifstream stream(KORVANTI_TEST_DATA "/" + name, std::ios::binary);
    if (!stream)
        throw std::runtime_error("no " + name);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// By "Tester", who commits at `date`.
void git(std::string_view project, std::vector<std::string> arguments, std::int64_t date = 1'700'000'000) {
    const auto instant = "@" + std::to_string(date) + " +0000";
    arguments.insert(arguments.begin(), {"-C", SampleMac::absolute(project)});
    const auto result = Shell::run("/usr/bin/git", arguments,
                                   {.environment = {{"GIT_CONFIG_GLOBAL", "/dev/null"},
                                                    {"GIT_CONFIG_NOSYSTEM", "1"},
                                                    {"GIT_AUTHOR_NAME", "Tester"},
                                                    {"GIT_AUTHOR_EMAIL", "tester@example.com"},
                                                    {"GIT_AUTHOR_DATE", instant},
                                                    {"GIT_COMMITTER_NAME", "Tester"},
                                                    {"GIT_COMMITTER_EMAIL", "tester@example.com"},
                                                    {"GIT_COMMITTER_DATE", instant}}});
    if (!result.ok())
        throw std::runtime_error("git: " + result.err);
}

} // namespace

Blocks::Blocks(std::string folder, int largest) : folder_(std::move(folder)), largest_(largest) {}

void Blocks::make(std::int64_t modified) const {
    for (int power = 0; power <= largest_; ++power)
        folder_.file(std::to_string(power), {.allocatedBytes = page << power, .modified = modified});
}

void Blocks::fill(const DiskFolder& folder, std::int64_t bytes, std::int64_t modified) const {
    folder.file("isi", {.allocatedBytes = page, .modified = modified});
    auto left = (bytes + page - 1) / page - 1;
    for (int power = largest_; power >= 0; --power) {
        const auto name = std::to_string(power);
        for (int copy = 0; left >= 1LL << power; ++copy) {
            folder.hardLink("blok-" + name + "-" + std::to_string(copy), folder_.path(name));
            left -= 1LL << power;
        }
    }
}

SampleMac::SampleMac(std::int64_t now, SizeOf sizeOf) : now_(now), sizeOf_(std::move(sizeOf)) {}

void SampleMac::make() const {
    blocks().make(ago(2000));

    makeMoneyApp();
    for (const auto& repository : LivedIn::repositories) {
        make(repository);
        git(repository.path, {"init", "-q"});
        git(repository.path, {"add", "."});
        git(repository.path, {"commit", "-q", "-m", "semua"}, ago(repository.days));
        home().setModified(std::string(repository.path) + "/.git/index", ago(repository.days));
    }
    make(LivedIn::unbornRepository);
    git(LivedIn::unbornRepository.path, {"init", "-q"});
    make(LivedIn::looseProject);

    for (const auto& [path, bytes, days] : LivedIn::folders)
        fill(path, sizeOf(path, bytes), days);
    for (const auto& [path, bytes, days] : LivedIn::passedOver)
        fill(path, bytes, days);
    for (const auto& [path, bytes, days] : LivedIn::files)
        file(path, {.allocatedBytes = bytes, .modified = ago(days)});
    for (const auto& secret : LivedIn::secrets)
        home().file(secret, {.text = std::string(LivedIn::secretText)});
    for (const auto& application : LivedIn::applications)
        install(application);
    makeSmallThings();
    answerForTools();

    // Last, as whatever is made in a folder changes it.
    for (const auto& [path, bytes, days] : LivedIn::folders)
        DiskFolder(absolute(path)).setModified({}, ago(days));
}

std::int64_t SampleMac::ago(int days) const {
    return now_ - days * 86400LL - 43200;
}

std::string SampleMac::dated(std::string_view text) const {
    static const std::regex mark(R"(\{([0-9]+) days\})");
    std::string result(text);
    for (std::smatch match; std::regex_search(result, match, mark);)
        result.replace(static_cast<std::size_t>(match.position()), static_cast<std::size_t>(match.length()),
                       iso8601Text(instantFromSeconds(ago(std::stoi(match[1])))));
    return result;
}

std::string SampleMac::absolute(std::string_view path) {
    return path.starts_with('/') ? std::string(path) : home().path(path);
}

void SampleMac::file(std::string_view path, const DiskFolder::File& contents) const {
    const std::filesystem::path full = absolute(path);
    DiskFolder(full.parent_path()).file(full.filename().string(), contents);
}

void SampleMac::fill(std::string_view path, std::int64_t bytes, int days) const {
    blocks().fill(DiskFolder(absolute(path)), bytes, ago(days));
}

std::int64_t SampleMac::sizeOf(std::string_view path, std::int64_t bytes) const {
    return sizeOf_ ? sizeOf_(path, bytes) : bytes;
}

void SampleMac::install(const LivedIn::Application& application) const {
    auto bytes = sizeOf(application.bundle, application.bytes);
    const auto contents = std::string(application.bundle) + "/Contents";
    if (!application.info.empty()) {
        file(contents + "/Info.plist", {.text = propertyList(application.info)});
        bytes -= page;
    }
    fill(contents + "/MacOS", bytes, 800);
}

void SampleMac::make(const LivedIn::Project& project) const {
    for (const auto& [path, text] : project.files)
        home().file(std::string(project.path) + "/" + std::string(path),
                    {.text = std::string(text), .modified = ago(project.days)});
}

/// Worked on lately, with a worktree where the work has stopped.
void SampleMac::makeMoneyApp() const {
    const auto& [path, days, files] = LivedIn::moneyApp;
    make(LivedIn::moneyApp);
    git(path, {"init", "-q"});
    git(path, {"add", "."});
    git(path, {"commit", "-q", "-m", "awal"}, ago(135));
    git(path, {"worktree", "add", "-q", "-b", "fitur", ".claude/worktrees/fitur-baru"});
    git(path, {"commit", "-q", "--allow-empty", "-m", "terbaru"}, ago(days));
    home().setModified(std::string(path) + "/.git/index", ago(days));
    home().setModified(std::string(path) + "/.git/worktrees/fitur-baru/index", ago(75));
}

void SampleMac::makeSmallThings() const {
    const DiskFolder applications("/Applications");
    DiskFolder("/Library/Application Support/com.apple.TCC").file("TCC.db"); // Full Disk Access
    home().folder("Library/Application Support/Korvanti");                   // it has run before
    applications.folder("Xcode.app/Contents/Developer");
    applications.folder("Insaquarium.app/Contents/_MASReceipt");
    applications.symlink("Netflix.app", applications.path("Insaquarium.app"));

    home().file(".nvm/alias/default", {.text = "20\n"});
    home().file(".vscode/extensions/.obsolete", {.text = R"({"dart-code.dart-code-3.90.0": true,
        "ms-python.python-2024.8.0": true, "ms-python.python-2024.10.1": false, "tidak.ada-1.0.0": true})"});
    home().symlink(".cache/prisma", home().path(".npm/_cacache"));
    home().symlink("Library/Developer/Xcode/iOS DeviceSupport/iPhone9,1 15.0 (19A346)",
                   home().path("Library/Developer/Xcode/DerivedData"));

    const auto soon = iso8601Text(instantFromSeconds(now_ + 15 * 86400)); // this month or the next
    fill(".codex/sessions/" + soon.substr(0, 4) + "/" + soon.substr(5, 2), 99'000'000, 1);

    // Large files where nobody looks for them.
    const auto film = home().path("Movies/wawancara.mov");
    for (const auto& place : {"Documents/salinan.mov", "Movies/.cache/salinan.mov",
                              "Music/Rekaman.app/Contents/salinan.mov", "Developer/toko-web/salinan.mov"})
        home().hardLink(place, film);
}

void SampleMac::answerForTools() const {
    BoxAnswers::say("xcode-select -p", "/Applications/Xcode.app/Contents/Developer\n");
    BoxAnswers::say("xcrun simctl list devices -j", dated(LivedIn::simulators));
    BoxAnswers::say("xcrun simctl runtime list -j", dated(LivedIn::runtimes));
    BoxAnswers::say("diskutil info -plist /", sampleOf("diskutil-info-root.plist"));
    BoxAnswers::say("diskutil apfs list -plist", sampleOf("diskutil-apfs-list.plist"));
    BoxAnswers::say("tmutil listlocalsnapshots /", std::string(LivedIn::snapshots));
    BoxAnswers::say("ps -axo comm=", std::string(LivedIn::processes));
}

} // namespace korvanti::testing
