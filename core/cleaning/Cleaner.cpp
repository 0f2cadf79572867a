#include "cleaning/Cleaner.h"

#include "base/ByteText.h"
#include "base/CheckedMath.h"
#include "base/FileDescriptor.h"
#include "base/Text.h"
#include "cleaning/Trash.h"
#include "cleaning/TreeRemover.h"
#include "fs/PathTools.h"
#include "process/Shell.h"
#include "process/SimulatorLists.h"
#include "process/Toolchain.h"

#include <algorithm>
#include <chrono>
#include <expected>
#include <utility>
#include <variant>

namespace korvanti {
namespace {

using Kind = CleanupAction::Kind;
using Refusal = SafetyGuard::Refusal;
using Done = std::expected<void, Refusal>;

/// What becomes of one item: the message, and whether it succeeded, with the bytes that count as freed.
struct Result {
    bool success = false;
    std::int64_t freedBytes = 0;
    std::string message;
};

Result succeeded(std::int64_t freedBytes, std::string message) {
    return {.success = true, .freedBytes = freedBytes, .message = std::move(message)};
}

Result failed(std::string message) {
    return {.success = false, .freedBytes = 0, .message = std::move(message)};
}

constexpr const char* simulatorRuns = "Sedang berjalan. Matikan simulator dulu.";

bool isOfGradle(const CleanupItem& item) {
    return item.path.contains("/.gradle/");
}

bool isOfXcode(const CleanupItem& item) {
    return item.category == ItemCategory::xcode || item.category == ItemCategory::simulators;
}

std::string messageOf(const GuardError& error, const std::string& /*path*/) {
    return error.description();
}

std::string messageOf(const FileError& error, const std::string& path) {
    if (!error.isPermission())
        return error.description();
    return path.ends_with(".app")
               ? "Butuh izin admin. Hapus lewat Finder (seret ke Tong Sampah) atau Launchpad."
               : "Tidak ada izin. Aktifkan Full Disk Access untuk Korvanti.";
}

std::string messageOf(const Refusal& refusal, const std::string& path) {
    return std::visit([&](const auto& error) { return messageOf(error, path); }, refusal);
}

/// Admits a path and does something to it, both by the same held entry.
template <class Act>
Done admitAndDo(const SafetyGuard& guard, const std::string& path, SafetyGuard::PathOptions options,
                Act act) {
    const auto admitted = guard.admit(path, options);
    if (!admitted)
        return std::unexpected(admitted.error());
    if (auto done = act(*admitted); !done)
        return std::unexpected(Refusal(std::move(done.error())));
    return {};
}

Done removePath(const SafetyGuard& guard, const std::string& path, SafetyGuard::PathOptions options = {}) {
    return admitAndDo(guard, path, options, TreeRemover::remove);
}

Done trashPath(const SafetyGuard& guard, const std::string& path, SafetyGuard::PathOptions options = {}) {
    return admitAndDo(guard, path, options,
                      [&](const AdmittedEntry& entry) { return Trash::move(entry, guard.home()); });
}

Result withRelated(const std::vector<std::string>& skipped, Result whole) {
    if (skipped.empty())
        return whole;
    std::string names;
    for (const auto& name : skipped)
        names += (names.empty() ? "" : ", ") + name;
    return failed("Sebagian dilewati: " + names);
}

/// What the simulator tool says now: a report may be old. Where it says nothing of the device, it doesn't
/// run.
bool isSimulatorRunning(const std::string& udid) {
    const auto result = Toolchain::simctl({"list", "devices", "-j"}, std::chrono::seconds(60));
    const auto list = result && result->ok() ? SimulatorLists::devices(result->out) : std::nullopt;
    const auto wanted = Text::lowercased(udid);
    return list && std::ranges::any_of(list->devices, [&](const auto& group) {
               return std::ranges::any_of(group.devices, [&](const SimulatorLists::Device& device) {
                   return Text::lowercased(device.udid) == wanted &&
                          (device.state == "Booted" || device.state == "Booting");
               });
           });
}

Result simulatorResult(const std::vector<std::string>& arguments, Shell::Seconds timeout,
                       const CleanupItem& item, std::string message) {
    const auto result = Toolchain::simctl(arguments, timeout);
    if (!result)
        return failed("Xcode tidak ditemukan");
    if (result->ok())
        return succeeded(item.bytes, std::move(message));
    const auto said = Text::trimmed(result->err);
    return failed(said.empty() ? "simctl gagal" : std::string(said));
}

/// The children of a folder in the home, by full path. None where it can't be listed, or is a link.
std::vector<std::string> childrenOf(const std::string& home, const std::string& path) {
    const auto pinned = PinnedEntry::open(home, path);
    if (!pinned || !pinned->isFolder())
        return {};
    const FileDescriptor folder(Platform::openFolderAt(pinned->folder(), "."));
    std::vector<std::string> children;
    for (const auto& entry : PathTools::entries(folder.get()).value_or(std::vector<PathTools::Entry>()))
        children.push_back(PathTools::joined(path, entry.name));
    return children;
}

Result emptyTrash(const SafetyGuard& guard, const CleanupItem& item) {
    int failures = 0;
    for (const auto& child : childrenOf(guard.home(), item.path)) {
        if (!removePath(guard, child, {.allowRepository = true}))
            ++failures;
    }
    if (failures > 0)
        return failed(std::to_string(failures) + " item tidak bisa dihapus (butuh Full Disk Access?)");
    return succeeded(item.bytes, "Tong Sampah dikosongkan");
}

Result clean(const Cleaner& cleaner, const SafetyGuard& guard, const CleanupItem& item) {
    using std::chrono::seconds;
    if (const auto verdict = guard.validate(item); !verdict)
        return failed(verdict.error().description());

    const auto& payload = item.action.payload;
    switch (item.action.kind) {
    case Kind::simulatorErase:
        if (isSimulatorRunning(payload))
            return failed(simulatorRuns);
        static_cast<void>(Toolchain::simctl({"shutdown", payload}, seconds(60)));
        return simulatorResult({"erase", payload}, seconds(180), item, "Simulator di-reset");
    case Kind::simulatorDelete:
        if (isSimulatorRunning(payload))
            return failed(simulatorRuns);
        return simulatorResult({"delete", payload}, seconds(180), item, "Simulator dihapus");
    case Kind::simulatorRuntimeDelete:
        return simulatorResult({"runtime", "delete", payload}, seconds(600), item, "Runtime dihapus");
    case Kind::manual:
        return failed("Butuh langkah manual"); // the guard lets none through
    case Kind::delete_:
        if (const auto done = removePath(guard, item.path); !done)
            return failed(messageOf(done.error(), item.path));
        return withRelated(
            cleaner.processRelated(
                item, [&](const std::string& path) { return removePath(guard, path).has_value(); }),
            succeeded(item.bytes, "Dihapus"));
    case Kind::trash:
        if (const auto done = trashPath(guard, item.path, {.allowApplicationBundle = true}); !done)
            return failed(messageOf(done.error(), item.path));
        // The space is free only when the Trash is emptied.
        return withRelated(
            cleaner.processRelated(
                item, [&](const std::string& path) { return trashPath(guard, path).has_value(); }),
            succeeded(0, "Dipindah ke Tong Sampah"));
    case Kind::emptyTrash:
        return emptyTrash(guard, item);
    }
    std::unreachable();
}

} // namespace

Cleaner::Cleaner(const std::string& home, ActivityLog log) : guardrail_(home), log_(std::move(log)) {}

std::vector<std::string> Cleaner::preflightWarnings(const std::vector<CleanupItem>& items) {
    std::vector<std::string> warnings;
    if (std::ranges::any_of(items, isOfXcode) && Toolchain::isAppRunning("Xcode"))
        warnings.emplace_back(
            "Xcode sedang terbuka. Sebaiknya tutup Xcode dulu agar DerivedData/simulator tidak "
            "dipakai saat dihapus.");
    if (std::ranges::any_of(items, isOfGradle) && Toolchain::isRunning("GradleDaemon"))
        warnings.emplace_back(
            "Gradle daemon sedang berjalan dan akan dihentikan sebelum cache Gradle dihapus.");
    std::int64_t trashed = 0;
    for (const auto& item : items) {
        if (item.action.kind == Kind::trash)
            trashed = addChecked(trashed, item.bytes);
    }
    if (trashed >= 1)
        warnings.push_back(bytesText(trashed) +
                           " dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah dikosongkan.");
    return warnings;
}

std::vector<CleanupOutcome> Cleaner::run(const std::vector<CleanupItem>& items, const Progress& progress,
                                         const ShouldStop& shouldStop) const {
    if (std::ranges::any_of(items, isOfGradle))
        static_cast<void>(
            Shell::run("/usr/bin/pkill", {"-f", "GradleDaemon"}, {.timeout = std::chrono::seconds(10)}));

    std::vector<CleanupOutcome> outcomes;
    outcomes.reserve(items.size());
    for (const auto& item : items) {
        if (shouldStop && shouldStop())
            break;
        progress(outcomes.size(), items.size(), item.title);
        const auto result = clean(*this, guardrail_, item);
        log_.append({.date = currentInstant(),
                     .kind = std::string(item.action.verb()),
                     .title = item.title,
                     .path = item.path,
                     .bytes = result.freedBytes,
                     .success = result.success,
                     .message = result.message});
        outcomes.push_back({item, result.success, result.freedBytes, result.message});
    }
    progress(outcomes.size(), items.size(), {});
    return outcomes;
}

std::vector<std::string> Cleaner::processRelated(const CleanupItem& item, const Action& action) const {
    std::vector<std::string> skipped;
    if (!item.relatedPaths)
        return skipped;
    for (const auto& path : *item.relatedPaths) {
        if (!PathTools::exists(path))
            continue;
        if (!guardrail_.validate(path, {}) || !action(path))
            skipped.emplace_back(PathTools::lastComponent(path));
    }
    return skipped;
}

} // namespace korvanti
