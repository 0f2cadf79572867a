#include "providers/SimulatorProvider.h"

#include "base/CheckedMath.h"
#include "base/Formatters.h"
#include "fs/PathTools.h"
#include "process/SimulatorLists.h"
#include "process/Toolchain.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

using SimulatorLists::Device;
using SimulatorLists::Runtime;
using namespace std::chrono_literals;

constexpr std::int64_t smallestDevice = 50'000'000; ///< of those that can be used
constexpr std::int64_t daysInUse = 60;
constexpr std::int64_t daysUntilReset = 30;

/// What the simulator tool says, read by `decode` (text -> optional). Absent without an Xcode, and when the
/// tool fails or says something else.
template <class Decode> auto listed(const std::vector<std::string>& arguments, Decode decode) {
    const auto result = Toolchain::simctl(arguments, 60s);
    return result && result->ok() ? decode(result->out) : std::nullopt;
}

std::optional<Instant> lastUse(const std::optional<std::string>& text) {
    return text ? instantFromStrictIso8601(*text) : std::nullopt;
}

/// Some place on the disk. The home folder or one around it is none: in the report it would stand for
/// everything in there.
bool isPlace(std::string_view path, const std::string& home) {
    return path.starts_with('/') && !path.contains('\0') && !PathTools::isSameOrAncestor(path, home);
}

/// The folder around a device's data, if it has any.
std::optional<std::string> folderOf(const Device& device, const std::string& home) {
    const std::string folder(PathTools::parent(device.dataPath.value_or("")));
    return isPlace(folder, home) ? std::optional(folder) : std::nullopt;
}

/// What to say of a device and what to do with it.
CleanupItem verdict(const Device& device, std::optional<Instant> lastActivity, const ScanContext& context) {
    const std::string usage =
        lastActivity ? "Terakhir dipakai " + Formatters::relative(*lastActivity, context.now) + "."
                     : "Belum pernah dijalankan.";
    if (device.state == "Booted")
        return {.detail = "Sedang berjalan. " + usage,
                .safety = Safety::keep,
                .action = CleanupAction::manual("Matikan simulator dulu bila ingin di-reset.")};
    if (device.isAvailable.value_or(true))
        return {.detail = usage + " Reset mengembalikan simulator ke kondisi baru: app uji & datanya hilang, "
                                  "simulatornya tetap ada.",
                .safety = Safety::regenerable,
                .action = CleanupAction::simulatorErase(device.udid),
                .recommended = context.daysSince(lastActivity).value_or(daysUntilReset + 1) > daysUntilReset};
    return {.detail = "Runtime-nya sudah tidak terpasang, simulator ini tidak bisa dipakai lagi.",
            .safety = Safety::regenerable,
            .action = CleanupAction::simulatorDelete(device.udid),
            .recommended = true};
}

std::optional<CleanupItem> deviceItem(const Device& device, std::string_view runtimeName,
                                      const ScanContext& context) {
    const auto folder = folderOf(device, context.home);
    if (!folder)
        return std::nullopt;
    const auto told = plausibleBytes(device.dataPathSize);
    const std::int64_t bytes = told ? *told : context.sizes->measure(*folder).bytes;
    if (device.isAvailable.value_or(true) && bytes < smallestDevice)
        return std::nullopt;

    const auto lastActivity = lastUse(device.lastUsedAt);
    CleanupItem item = verdict(device, lastActivity, context);
    item.title = device.name + " · ";
    item.title += runtimeName;
    item.path = *folder;
    item.bytes = bytes;
    item.category = ItemCategory::simulators;
    item.lastActivity = lastActivity;
    return CleanupItem::make(std::move(item));
}

std::string label(const Runtime& runtime) {
    if (runtime.runtimeIdentifier)
        return SimulatorLists::runtimeName(*runtime.runtimeIdentifier);
    return runtime.version.value_or("simulator");
}

CleanupItem runtimeItem(const Runtime& runtime, bool inUse, const std::string& home) {
    CleanupItem item;
    item.title = "Runtime " + label(runtime) + " (" + runtime.build.value_or("?") + ")";
    item.path = runtime.path.value_or("");
    if (!isPlace(item.path, home))
        item.path = "runtime:" + runtime.identifier;
    item.bytes = plausibleBytes(runtime.sizeBytes).value_or(0);
    item.category = ItemCategory::simulators;
    item.lastActivity = lastUse(runtime.lastUsedAt);
    if (runtime.deletable.value_or(true) && !inUse) {
        item.detail = "Tidak dipakai simulator mana pun dalam 60 hari. Bisa diunduh ulang dari Xcode › "
                      "Settings › Components.";
        item.safety = Safety::costly;
        item.action = CleanupAction::simulatorRuntimeDelete(runtime.identifier);
    } else {
        item.detail = "Dipakai simulator Anda. Dikelola Xcode (disimpan di /System/Library/AssetsV2).";
        item.safety = Safety::managed;
        item.action = CleanupAction::manual("Xcode › Settings › Components untuk mengelola runtime.");
    }
    return CleanupItem::make(std::move(item));
}

} // namespace

std::vector<CleanupItem> SimulatorProvider::items(const ScanContext& context) const {
    const auto list = listed({"list", "devices", "-j"}, SimulatorLists::devices);
    if (!list)
        return {};
    std::vector<CleanupItem> items;
    std::set<std::string> recentRuntimes;
    for (const auto& [runtime, devices] : list->devices) {
        const auto runtimeName = SimulatorLists::runtimeName(runtime);
        for (const Device& device : devices) {
            const auto days = context.daysSince(lastUse(device.lastUsedAt));
            if (device.isAvailable.value_or(true) && days && *days <= daysInUse)
                recentRuntimes.insert(runtime);
            if (auto item = deviceItem(device, runtimeName, context))
                items.push_back(*std::move(item));
        }
    }

    const auto runtimes = listed({"runtime", "list", "-j"}, SimulatorLists::runtimes);
    if (!runtimes)
        return items;
    for (const Runtime& runtime : *runtimes) {
        const auto& identifier = runtime.runtimeIdentifier;
        items.push_back(
            runtimeItem(runtime, identifier && recentRuntimes.contains(*identifier), context.home));
    }
    return items;
}

} // namespace korvanti
