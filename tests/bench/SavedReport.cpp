#include "SavedReport.h"

#include "base/Json.h"
#include "fs/FileContents.h"
#include "scan/ReportJson.h"
#include "settings/AppPaths.h"

namespace korvanti::bench {

bool saveReport(std::size_t items) {
    ScanReport report{.startedAt = currentInstant(), .duration = 2.5, .items = {}, .disk = {}, .notes = {}};
    report.disk.hasFullDiskAccess = true;
    constexpr Safety classes[] = {Safety::regenerable, Safety::costly, Safety::review, Safety::keep,
                                  Safety::managed};
    for (std::size_t number = 0; number < items; ++number) {
        const auto name = std::to_string(number);
        report.items.push_back(CleanupItem::make(
            {.title = "node_modules proyek-" + name,
             .detail = "Dependensi npm, dipasang lagi dengan satu perintah saat proyeknya dibuka kembali.",
             .path = "/home/someone/Developer/klien/proyek-" + name + "/node_modules",
             .bytes = static_cast<std::int64_t>((number * 7919) % 900'000'000),
             .category = allCases<ItemCategory>[number * allCases<ItemCategory>.size() / items],
             .safety = classes[number % std::size(classes)],
             .action = number % 7 == 0 ? CleanupAction::manual("Buka Finder dan hapus sendiri.")
                                       : CleanupAction::delete_(),
             .recommended = number % 5 == 0,
             .lastActivity = report.startedAt - std::chrono::hours(24 * (number % 400)),
             .warnings = number % 11 == 0 ? std::vector<std::string>{"Tutup dulu editornya."}
                                          : std::vector<std::string>{}}));
    }
    return FileContents::writeAtomically(AppPaths::lastReport(), prettySortedJson(toJson(report)))
        .has_value();
}

} // namespace korvanti::bench
