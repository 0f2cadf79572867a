// Cleans once: korvanti_clean_once ITEMS HOME LOG
//
// ITEMS is a file with a JSON array of items, LOG the activity log. Prints the number of each item on a line
// as the cleaner begins with it, then how many there are, then the outcomes, one JSON object a line. Exit
// status 2 when the items can't be read.
#include "cleaning/Cleaner.h"
#include "fs/FileContents.h"
#include "scan/ReportJson.h"

#include <cstdio>
#include <dlfcn.h>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace korvanti;

std::optional<std::vector<CleanupItem>> itemsIn(const std::string& file) {
    const auto text = FileContents::read(file);
    const auto json = text ? parseJson(*text) : std::unexpected(JsonError{"unreadable"});
    if (!json || !json->is_array())
        return std::nullopt;
    std::vector<CleanupItem> items;
    for (const auto& element : *json) {
        auto item = cleanupItemFromJson(element);
        if (!item)
            return std::nullopt;
        items.push_back(std::move(*item));
    }
    return items;
}

/// Tells the library of failing system calls, where it is loaded, which part of the run begins.
void enterStage(int stage) {
    static const auto enter = reinterpret_cast<void (*)(int)>(::dlsym(RTLD_DEFAULT, "korvantiEnterStage"));
    if (enter)
        enter(stage);
}

void print(const CleanupOutcome& outcome) {
    const Json json = {{"path", outcome.item.path},
                       {"success", outcome.success},
                       {"freedBytes", outcome.freedBytes},
                       {"message", outcome.message}};
    std::printf("%s\n", json.dump().c_str());
}

} // namespace

int main(int count, char** arguments) {
    const auto items = count == 4 ? itemsIn(arguments[1]) : std::nullopt;
    if (!items)
        return 2;
    const Cleaner cleaner(arguments[2], ActivityLog(arguments[3]));
    enterStage(0);
    const auto outcomes = cleaner.run(*items, [](std::size_t index, std::size_t, const std::string&) {
        std::printf("%zu\n", index);
        std::fflush(stdout);
        enterStage(static_cast<int>(index) + 1);
    });
    enterStage(-1);
    for (const auto& outcome : outcomes)
        print(outcome);
}
