#include "Require.h"
#include "process/SimulatorLists.h"

#include "base/Instant.h"
#include "base/Json.h"

using namespace korvanti;

namespace {

/// What the formatter accepts is an instant for the lenient decoder too, and the same one.
void readsDate(std::string_view text) {
    const auto instant = instantFromStrictIso8601(text);
    const auto start = text.find_first_of("0123456789");
    require(!instant || instant == instantFromIso8601(text.substr(start)));
}

} // namespace

/// A text lists either devices or runtimes or nothing; nothing of it is lost on the way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    const auto json = parseJson(text);

    const auto devices = SimulatorLists::devices(text);
    require(!devices || (json && devices->devices.size() == (*json)["devices"].size()));
    for (const auto& group : devices ? devices->devices : std::vector<SimulatorLists::DeviceList::Group>()) {
        (void)SimulatorLists::runtimeName(group.runtime);
        for (const auto& device : group.devices)
            readsDate(device.lastUsedAt.value_or(""));
    }

    const auto runtimes = SimulatorLists::runtimes(text);
    require(!runtimes || (json && runtimes->size() == json->size()));
    require(!devices || !runtimes);
    for (const auto& runtime : runtimes.value_or(std::vector<SimulatorLists::Runtime>())) {
        (void)SimulatorLists::runtimeName(runtime.runtimeIdentifier.value_or(""));
        readsDate(runtime.lastUsedAt.value_or(""));
    }
    return 0;
}
