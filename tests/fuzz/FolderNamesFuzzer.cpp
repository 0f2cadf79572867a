#include "Require.h"
#include "base/Json.h"
#include "providers/DeviceSupportProvider.h"
#include "providers/EditorExtensionProvider.h"
#include "providers/GradleProvider.h"
#include "providers/ObsoleteExtensions.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

using namespace korvanti;

namespace {

using Device = DeviceSupportProvider::Named;
using Extension = EditorExtensionProvider::Named;

constexpr std::size_t npos = std::string_view::npos;

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
}

/// The numbers with dots between them that a text begins with.
std::string_view leadingVersion(std::string_view text) {
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] >= '0' && text[at] <= '9')
            end = at + 1;
        else if (text[at] != '.' || end != at || at == 0)
            break;
    }
    return text.substr(0, end);
}

void requireVersion(const std::string& version) {
    require(!version.empty() && !version.starts_with('.') && !version.ends_with('.') &&
            !version.contains(".."));
    require(!isAscii(version) || version.find_first_not_of("0123456789.") == npos);
}

std::optional<Device> expectedDevice(std::string_view name) {
    const auto blank = name.find_first_of(" \t\n\v\f\r");
    if (blank != npos && blank > 0 && name[blank] == ' ') {
        if (const auto version = leadingVersion(name.substr(blank + 1)); !version.empty())
            return Device{std::string(name.substr(0, blank)), std::string(version)};
    }
    const auto version = leadingVersion(name);
    return version.empty() ? std::nullopt : std::optional(Device{"", std::string(version)});
}

void checkDevice(std::string_view name) {
    const auto device = DeviceSupportProvider::named(name);
    if (device) {
        requireVersion(device->version);
        require(name.starts_with((device->model.empty() ? "" : device->model + " ") + device->version));
    }
    require(!isAscii(name) || device == expectedDevice(name));
}

std::optional<Extension> expectedExtension(std::string_view name) {
    for (auto dash = name.find('-', 1); dash != npos; dash = name.find('-', dash + 1)) {
        const auto version = leadingVersion(name.substr(dash + 1));
        const auto rest = name.substr(dash + 1 + version.size());
        if (std::ranges::count(version, '.') == 2 && (rest.empty() || (rest.starts_with('-') && rest != "-")))
            return Extension{std::string(name.substr(0, dash)), std::string(version)};
    }
    return std::nullopt;
}

void checkExtension(std::string_view name) {
    const auto extension = EditorExtensionProvider::named(name);
    if (extension) {
        requireVersion(extension->version);
        require(std::ranges::count(extension->version, '.') == 2);
        require(!extension->id.empty() && name.starts_with(extension->id + "-" + extension->version));
    }
    const bool isOneLine = name.find_first_of("\n\v\f\r") == npos;
    constexpr std::size_t surelySearched = 4096;
    if (isAscii(name) && isOneLine && name.size() <= surelySearched)
        require(extension == expectedExtension(name));
}

void checkGradle(std::string_view name) {
    const bool expected = leadingVersion(name).contains('.');
    const bool found = GradleProvider::isVersion(name);
    require(isAscii(name) ? found == expected : found || !expected);
}

bool leadsNowhereElse(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == npos && name.find('\0') == npos;
}

/// All the marks, or none when one of them is not as expected.
void checkObsolete(std::string_view text) {
    const auto names = ObsoleteExtensions::names(text);
    require(std::ranges::all_of(names, leadsNowhereElse));
    require(std::set(names.begin(), names.end()).size() == names.size());

    const auto json = parseJson(text);
    const bool isMap = json && json->is_object() &&
                       std::ranges::all_of(*json, [](const Json& mark) { return mark.is_boolean(); });
    std::size_t expected = 0;
    for (const auto& [name, mark] : isMap ? json->get_ref<const Json::object_t&>() : Json::object_t())
        expected += mark.get<bool>() && leadsNowhereElse(name);
    require(names.size() == expected);
    require(std::ranges::all_of(names, [&](const std::string& name) { return (*json)[name] == true; }));
}

} // namespace

/// Names of folders of which versions are told, and the names that an editor marks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    checkDevice(text);
    checkExtension(text);
    checkGradle(text);
    checkObsolete(text);
    return 0;
}
