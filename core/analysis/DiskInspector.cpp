#include "analysis/DiskInspector.h"

#include "base/CheckedMath.h"
#include "base/FileDescriptor.h"
#include "platform/Platform.h"
#include "process/Shell.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>

namespace korvanti::DiskInspector {
namespace {

using std::chrono::seconds;

/// What `diskutil` told as a dictionary; absent when it failed or told something else.
std::optional<PropertyList::Dictionary> askDiskutil(const std::vector<std::string>& arguments,
                                                    Shell::Seconds timeout) {
    const auto result = Shell::run("/usr/sbin/diskutil", arguments, {.timeout = timeout, .rawOutput = true});
    const auto list = result.ok() ? PropertyList::parse(result.out) : std::nullopt;
    const auto* dictionary = list ? list->dictionary() : nullptr;
    return dictionary ? std::optional(*dictionary) : std::nullopt;
}

const PropertyList* find(const PropertyList::Dictionary& dictionary, const std::string& key) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : &entry->second;
}

std::optional<std::string> text(const PropertyList* value) {
    return value ? value->text() : std::nullopt;
}

/// A number without its fraction; absent beyond the range. A boolean is no number.
std::optional<std::int64_t> wholeNumber(const PropertyList* value) {
    if (!value)
        return std::nullopt;
    if (const auto real = value->real()) {
        constexpr double end = 0x1p63;
        return *real >= -end && *real < end ? std::optional(static_cast<std::int64_t>(*real)) : std::nullopt;
    }
    return value->integer();
}

/// The array when all in it are dictionaries, or else an empty one.
PropertyList::Array dictionaries(const PropertyList* value) {
    const auto* array = value ? value->array() : nullptr;
    const auto isDictionary = [](const PropertyList& element) { return element.dictionary() != nullptr; };
    return array && std::ranges::all_of(*array, isDictionary) ? *array : PropertyList::Array();
}

/// The first of an array of strings, empty when there is none.
std::string firstText(const PropertyList* value) {
    const auto* array = value ? value->array() : nullptr;
    const auto isText = [](const PropertyList& element) { return element.text().has_value(); };
    if (!array || array->empty() || !std::ranges::all_of(*array, isText))
        return {};
    return array->front().text().value_or("");
}

std::optional<std::int64_t> bytesOfDataUnits(std::optional<std::int64_t> units) {
    constexpr std::int64_t bytesPerUnit = 512'000; // NVMe counts in thousands of 512-byte sectors
    std::int64_t bytes = 0;
    if (!units || __builtin_mul_overflow(*units, bytesPerUnit, &bytes))
        return std::nullopt;
    return bytes;
}

} // namespace

DiskSnapshot snapshot(const std::string& home, SnapshotOptions options) {
    const auto capacity = Platform::volumeCapacity(home);
    const auto info = options.includeSmart ? diskutilInfo("/") : std::nullopt;
    DiskSnapshot disk;
    disk.total = capacity.total;
    disk.available = capacity.available;
    disk.availableImportant = capacity.availableImportant.value_or(capacity.available);
    disk.apfsVolumes = apfsVolumes();
    disk.smart = info ? smart(*info) : std::nullopt;
    disk.swapUsed = swapUsed();
    disk.physicalMemory = Platform::physicalMemory();
    disk.hasFullDiskAccess = hasFullDiskAccess();
    return disk;
}

std::optional<PropertyList::Dictionary> diskutilInfo(const std::string& target) {
    return askDiskutil({"info", "-plist", target}, seconds(20));
}

std::vector<APFSVolumeUsage> apfsVolumes() {
    const auto info = diskutilInfo("/");
    const auto startUp = info ? text(find(*info, "APFSContainerReference")) : std::nullopt;
    const auto layout = askDiskutil({"apfs", "list", "-plist"}, seconds(30));
    return layout ? apfsVolumes(*layout, startUp) : std::vector<APFSVolumeUsage>();
}

std::vector<APFSVolumeUsage> apfsVolumes(const PropertyList::Dictionary& layout,
                                         const std::optional<std::string>& startUp) {
    const auto containers = dictionaries(find(layout, "Containers"));
    if (containers.empty())
        return {};

    const auto isStartUp = [&](const PropertyList& container) {
        return startUp && container.text("ContainerReference") == startUp;
    };
    const auto found = std::ranges::find_if(containers, isStartUp);
    const auto& container = found == containers.end() ? containers.front() : *found;

    std::vector<APFSVolumeUsage> volumes;
    for (const auto& volume : dictionaries(container.find("Volumes")))
        volumes.push_back({.name = volume.text("Name").value_or("?"),
                           .role = firstText(volume.find("Roles")),
                           .bytes = plausibleBytes(wholeNumber(volume.find("CapacityInUse"))).value_or(0)});
    return volumes;
}

std::optional<SmartInfo> smart(const PropertyList::Dictionary& info) {
    const auto* details = find(info, "SMARTDeviceSpecificKeysMayVaryNotGuaranteed");
    const auto* status = find(info, "SMARTStatus");
    if (!status && !(details && details->dictionary()))
        return std::nullopt;

    const auto number = [details](const char* key) {
        return wholeNumber(details ? details->find(key) : nullptr);
    };
    return SmartInfo{.percentageUsed = number("PERCENTAGE_USED"),
                     .dataWrittenBytes = bytesOfDataUnits(number("DATA_UNITS_WRITTEN_0")),
                     .powerOnHours = number("POWER_ON_HOURS_0"),
                     .availableSpare = number("AVAILABLE_SPARE"),
                     .status = text(status),
                     .unsafeShutdowns = number("UNSAFE_SHUTDOWNS_0")};
}

std::int64_t swapUsed() {
    return Platform::swapUsed();
}

bool hasFullDiskAccess() {
    constexpr auto privacyDatabase = "/Library/Application Support/com.apple.TCC/TCC.db";
    return static_cast<bool>(FileDescriptor(::open(privacyDatabase, O_RDONLY | O_NONBLOCK | O_CLOEXEC)));
}

FreeSpace freeSpace(const std::string& home) {
    const auto capacity = Platform::volumeCapacity(home);
    return {.available = capacity.availableImportant.value_or(0), .total = capacity.total};
}

} // namespace korvanti::DiskInspector
