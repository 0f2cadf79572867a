#include "process/Toolchain.h"

#include "base/Text.h"
#include "fs/PathTools.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace korvanti::Toolchain {
namespace {

using namespace std::chrono_literals;

Shell::Environment toolEnvironment() {
    if (const auto& folder = developerDir())
        return {{"DEVELOPER_DIR", *folder}};
    return {};
}

bool findsProcess(const std::string& option, const std::string& pattern) {
    return Shell::run("/usr/bin/pgrep", {option, pattern}, {.timeout = 10s}).ok();
}

} // namespace

const std::optional<std::string>& developerDir() {
    static const auto found =
        findDeveloperDir(Shell::run("/usr/bin/xcode-select", {"-p"}, {.timeout = 10s}).out, "/Applications");
    return found;
}

std::optional<std::string> findDeveloperDir(const std::string& selected, const std::string& applications) {
    if (const std::string folder(Text::trimmed(selected));
        folder.ends_with(".app/Contents/Developer") && PathTools::exists(folder))
        return folder;

    std::vector<std::string> names;
    for (const auto& path : PathTools::children(applications)) {
        const auto name = PathTools::lastComponent(path);
        if (name.starts_with("Xcode") && name.ends_with(".app"))
            names.emplace_back(name);
    }
    // "Xcode.app" comes before every other, betas and old versions included.
    std::ranges::sort(names, {},
                      [](const std::string& name) { return std::pair(name != "Xcode.app", name); });
    for (const auto& name : names) {
        auto folder = PathTools::joined(applications, name + "/Contents/Developer");
        if (PathTools::exists(folder))
            return folder;
    }
    return std::nullopt;
}

std::optional<ShellResult> simctl(const std::vector<std::string>& arguments, Shell::Seconds timeout) {
    if (!developerDir())
        return std::nullopt;
    std::vector<std::string> words = {"simctl"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Shell::run("/usr/bin/xcrun", words, {.environment = toolEnvironment(), .timeout = timeout});
}

void restrainGit() {
    for (const auto* name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_COMMON_DIR", "GIT_INDEX_FILE",
                             "GIT_OBJECT_DIRECTORY", "GIT_NAMESPACE"})
        ::unsetenv(name);
    const auto set = [](const std::string& name, const std::string& value) {
        ::setenv(name.c_str(), value.c_str(), 1);
    };
    set("GIT_OPTIONAL_LOCKS", "0");
    set("GIT_TERMINAL_PROMPT", "0");
    set("GIT_NO_LAZY_FETCH", "1");
    set("GIT_ALLOW_PROTOCOL", "none"); // for those that don't know the one before

    // Behind what the user set in the same way.
    constexpr std::pair<const char*, const char*> settings[] = {{"core.fsmonitor", "false"},
                                                                {"log.showSignature", "false"}};
    const char* const given = std::getenv("GIT_CONFIG_COUNT");
    auto count = std::max<std::int64_t>(0, Text::integer(given ? given : "").value_or(0));
    for (const auto& [key, value] : settings) {
        set("GIT_CONFIG_KEY_" + std::to_string(count), key);
        set("GIT_CONFIG_VALUE_" + std::to_string(count), value);
        ++count;
    }
    set("GIT_CONFIG_COUNT", std::to_string(count));
}

ShellResult git(const std::vector<std::string>& arguments, const std::string& folder,
                Shell::Seconds timeout) {
    std::vector<std::string> words = {"-C", folder};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Shell::run("/usr/bin/git", words,
                      {.environment = toolEnvironment(), .timeout = timeout, .rawOutput = true});
}

bool isRunning(const std::string& pattern) {
    return findsProcess("-f", pattern);
}

bool isAppRunning(const std::string& bundleName) {
    return findsProcess("-x", bundleName);
}

} // namespace korvanti::Toolchain
