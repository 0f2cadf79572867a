// Asks the guard about items as a scan of a developer's home finds them, and prints how long that takes and
// how long the mount table alone, which it reads for each folder.

#include "base/Text.h"
#include "cleaning/SafetyGuard.h"
#include "fs/MountTable.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace korvanti;
namespace fs = std::filesystem;

/// The places that most items of a report lie at.
std::vector<CleanupItem> itemsIn(const std::string& home) {
    const std::vector<std::string> places = {"Library/Caches/com.example.app-{}",
                                             "Library/Developer/Xcode/DerivedData/App-{}/Build",
                                             "Library/Application Support/Editor/Cache-{}",
                                             ".gradle/caches/modules-2/files-{}",
                                             "Projects/client-{}/app/node_modules",
                                             "Projects/client-{}/app/build",
                                             ".cargo/registry/src/index-{}",
                                             "Library/Containers/com.example.gone-{}/Data"};
    constexpr std::size_t count = 10'000;
    std::vector<CleanupItem> items;
    items.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        const auto& place = places[index % places.size()];
        const auto path = home + "/" + fmt::format(fmt::runtime(place), index / places.size());
        fs::create_directories(path);
        items.push_back({.path = path, .safety = Safety::regenerable, .action = CleanupAction::delete_()});
    }
    return items;
}

double milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: korvanti_guard_verdicts HOME\n", stderr);
        return 2;
    }
    const SafetyGuard guard(argv[1]);
    const auto items = itemsIn(guard.home());
    std::size_t accepted = 0;
    const auto ask = [&] {
        accepted = 0;
        for (const auto& item : items)
            accepted += guard.validate(item).has_value() ? 1 : 0;
    };
    ask(); // warms the cache
    const double verdicts = milliseconds(ask);
    const double table = milliseconds([&] {
        for (std::size_t count = 0; count < items.size(); ++count)
            static_cast<void>(MountTable::all());
    });
    fmt::print("accepted {}\nmicrosecondsVerdicts {}\nmicrosecondsMountTable {}\n", accepted,
               static_cast<long>(verdicts * 1e3), static_cast<long>(table * 1e3));
    return 0;
}
