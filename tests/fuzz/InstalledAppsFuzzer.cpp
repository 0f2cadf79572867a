#include "Require.h"
#include "analysis/InstalledApps.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace korvanti;

namespace {

/// A home with something in every place that names may lead to, and in places that none may.
class Home {
public:
    Home() {
        require(::mkdtemp(path_.data()) != nullptr);
        for (const char* folder : {"Application Support", "Application Scripts", "Caches", "Containers",
                                   "Cookies", "Group Containers", "HTTPStorages", "Logs", "Preferences",
                                   "Saved Application State", "WebKit"}) {
            for (const char* entry : {"Foo/Bar", "..Foo", "Google", "a.b", "a.b.c", "group.a.b", "x.a.b",
                                      "a.b.savedState", "a.b.binarycookies"})
                std::filesystem::create_directories(path_ + "/Library/" + folder + "/" + entry);
        }
        std::filesystem::create_directories(path_ + "/Documents/Foo");
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    ~Home() { std::filesystem::remove_all(path_); }

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_ = (std::filesystem::temp_directory_path() / "korvanti-fuzz-XXXXXX").string();
};

bool isOneOf(const auto& names, const std::string& name) {
    return std::ranges::find(names, name) != names.end();
}

/// One of the folders of a library, and behind it what the application's identifier or name says.
void requireBelow(const std::string& library, const std::string& location, const std::string& identifier,
                  const std::string& name) {
    static const std::set<std::string> places = {
        "Application Support", "Application Scripts", "Caches", "Containers", "Cookies",
        "Group Containers",    "HTTPStorages",        "Logs",   "WebKit",     "Saved Application State"};
    require(location.starts_with(library + "/"));
    const std::filesystem::path relative = location.substr(library.size() + 1);
    require(relative.lexically_normal() == relative && relative.is_relative());
    const std::vector<std::string> parts(relative.begin(), relative.end());
    require(parts.size() >= 2 && isOneOf(places, parts[0]) && !isOneOf(parts, ".."));
    require(parts[1].contains(identifier) || name.contains(parts[1]));
    require(std::filesystem::exists(location));
}

void checkLocations(const std::optional<std::string>& identifier, const std::string& name) {
    static const Home home;
    const auto locations = InstalledApps::dataLocations(identifier, name, home.path());
    require(std::set(locations.begin(), locations.end()).size() == locations.size());
    for (const auto& location : locations) {
        requireBelow(home.path() + "/Library", location, identifier.value_or(name), name);
        require(!InstalledApps::kindOfLocation(location).empty());
    }
}

void checkRole(const std::string& name, const std::optional<std::string>& identifier,
               const std::optional<std::string>& category) {
    const auto verdict = InstalledApps::classify(name, identifier, category);
    require(!verdict.reason.empty());
    require(verdict.role != AppRole::system || identifier->starts_with("com.apple."));
    require(category || !verdict.reason.contains("Kategori"));
    require(verdict == InstalledApps::classify(Text::lowercased(name), identifier, category));
}

} // namespace

/// The lines are a name, an identifier and a category, as a bundle may tell them of itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::array<std::optional<std::string>, 3> lines;
    std::string_view rest = textOf(data, size);
    for (auto& line : lines) {
        const auto end = rest.find('\n');
        line = rest.substr(0, end);
        if (end == std::string_view::npos)
            break;
        rest.remove_prefix(end + 1);
    }
    const auto& [name, identifier, category] = lines;
    checkRole(*name, identifier, category);
    checkLocations(identifier, *name);
    return 0;
}
