#include "terminal/ReportText.h"

#include "base/ByteText.h"
#include "base/CheckedMath.h"
#include "base/Formatters.h"
#include "base/Text.h"
#include "terminal/TextColumns.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

namespace korvanti::ReportText {
namespace {

using TextColumns::leftAligned;
using TextColumns::rightAligned;

/// Rows that a category shows without `allItems`.
constexpr std::size_t shortSection = 12;

std::string smartLine(const SmartInfo& smart, std::int64_t swapUsed) {
    const auto wear = smart.percentageUsed ? fmt::format("{}%", *smart.percentageUsed) : "?";
    const auto written = smart.dataWrittenBytes
                             ? fmt::format("{:.0f} TB", static_cast<double>(*smart.dataWrittenBytes) / 1e12)
                             : "?";
    return fmt::format("Kesehatan SSD: aus {} · total ditulis {} · swap {}", wear, written,
                       bytesText(swapUsed));
}

std::string totalLine(std::string_view label, std::int64_t bytes) {
    return fmt::format("  {} {}", leftAligned(label, 22), rightAligned(bytesText(bytes), 10));
}

void addSection(std::vector<std::string>& lines, ItemCategory category, const std::vector<CleanupItem>& all,
                Options options) {
    std::vector<const CleanupItem*> items;
    std::int64_t cleanable = 0;
    for (const auto& item : all) {
        if (item.category != category)
            continue;
        items.push_back(&item);
        if (isDeletable(item.safety))
            cleanable = addChecked(cleanable, item.bytes);
    }
    if (items.empty())
        return;

    lines.push_back(fmt::format("■ {} — {} bisa dibersihkan", title(category), bytesText(cleanable)));
    const auto shown = options.allItems ? items.size() : std::min(items.size(), shortSection);
    for (std::size_t index = 0; index < shown; ++index) {
        const auto& item = *items[index];
        lines.push_back(fmt::format("  {} {}  {} {}", item.recommended ? "✓" : " ",
                                    rightAligned(bytesText(item.bytes), 9),
                                    leftAligned(label(item.safety), 19), Text::printable(item.title)));
        if (options.allItems)
            lines.push_back("      " + Text::printable(item.displayPath()));
        for (const auto& warning : item.warnings)
            lines.push_back("      ⚠︎ " + Text::printable(warning));
    }
    if (shown < items.size())
        lines.push_back(fmt::format("    … {} item lain (pakai --all)", items.size() - shown));
    lines.emplace_back();
}

} // namespace

std::vector<std::string> lines(const ScanReport& report, Instant now, Options options) {
    const auto& disk = report.disk;
    std::vector<std::string> lines;
    lines.push_back(
        fmt::format("\nKORVANTI · {} · pindai {:.0f} dtk", Formatters::dateAndTime(now), report.duration));
    lines.push_back(fmt::format("Disk internal: {} kosong dari {} (+{} purgeable)", bytesText(disk.available),
                                bytesText(disk.total), bytesText(disk.purgeable())));
    if (disk.smart)
        lines.push_back(smartLine(*disk.smart, disk.swapUsed));
    lines.emplace_back(disk.hasFullDiskAccess ? "Full Disk Access: aktif"
                                              : "Full Disk Access: BELUM — sebagian folder tidak terbaca");
    lines.emplace_back();

    for (const Safety safety : allCases<Safety>)
        lines.push_back(totalLine(label(safety), report.total(safety)));
    lines.push_back(totalLine("→ Rekomendasi Korvanti", report.recommendedBytes()));
    lines.emplace_back();

    for (const ItemCategory category : allCases<ItemCategory>)
        addSection(lines, category, report.items, options);
    for (const auto& note : report.notes)
        lines.push_back("ℹ︎ " + note);
    lines.emplace_back(
        "\n✓ = dipilih otomatis oleh 'Rekomendasi'. Mode terminal tidak menghapus apa pun; pakai app "
        "Korvanti untuk membersihkan.");
    return lines;
}

} // namespace korvanti::ReportText
