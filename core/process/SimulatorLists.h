#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the simulator tool lists as JSON, in the order of its text. A wrong type or a missing field anywhere
/// spoils the whole text; fields and keys not named here are ignored.
namespace korvanti::SimulatorLists {

struct Device {
    std::string udid;
    std::string name;
    std::string state;               ///< such as "Booted" or "Shutdown"
    std::optional<bool> isAvailable; ///< absent counts as true
    std::optional<std::string> dataPath;
    std::optional<std::int64_t> dataPathSize;
    std::optional<std::string> lastUsedAt; ///< ISO 8601
    std::optional<std::string> availabilityError;
    bool operator==(const Device&) const = default;
};

/// All devices by runtime.
struct DeviceList {
    struct Group {
        std::string runtime; ///< identifier
        std::vector<Device> devices;
        bool operator==(const Group&) const = default;
    };
    std::vector<Group> devices;
    bool operator==(const DeviceList&) const = default;
};

struct Runtime {
    std::string identifier; ///< what the tool's delete takes
    std::optional<std::string> version;
    std::optional<std::string> build;
    std::optional<std::int64_t> sizeBytes;
    std::optional<std::string> lastUsedAt;        ///< ISO 8601
    std::optional<bool> deletable;                ///< absent counts as true
    std::optional<std::string> runtimeIdentifier; ///< as in `DeviceList`
    std::optional<std::string> path;
    bool operator==(const Runtime&) const = default;
};

/// Reads what `simctl list devices -j` prints.
[[nodiscard]] std::optional<DeviceList> devices(std::string_view json);
/// Reads what `simctl runtime list -j` prints.
[[nodiscard]] std::optional<std::vector<Runtime>> runtimes(std::string_view json);

/// A runtime's identifier for people: "iOS 17.2" of one that ends in ".iOS-17-2".
[[nodiscard]] std::string runtimeName(std::string_view identifier);

} // namespace korvanti::SimulatorLists
