#include "terminal/VolumeText.h"

#include "base/ByteText.h"
#include "base/Text.h"
#include "drives/VolumeAdvisor.h"

#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace korvanti::VolumeText {
namespace {

std::string_view sign(Advice::Level level) {
    switch (level) {
    case Advice::Level::good:
        return "✓";
    case Advice::Level::info:
        return "•";
    case Advice::Level::warning:
        return "⚠︎";
    }
    std::unreachable();
}

void addVolume(std::vector<std::string>& lines, const VolumeInfo& volume) {
    lines.push_back(
        fmt::format("\n■ {}  {}", Text::printable(volume.name), Text::printable(volume.mountPath)));
    lines.push_back(fmt::format("  {} · {} · {} kosong dari {}", Text::printable(volume.formatName),
                                Text::printable(volume.busProtocol.value_or("?")), bytesText(volume.free),
                                bytesText(volume.total)));
    for (const auto& advice : VolumeAdvisor::advice(volume)) {
        lines.push_back(fmt::format("  {} {}: {}", sign(advice.level), Text::printable(advice.title),
                                    Text::printable(advice.detail)));
        if (advice.command)
            lines.push_back("      $ " + Text::printable(*advice.command));
    }
}

} // namespace

std::vector<std::string> lines(const std::vector<VolumeInfo>& volumes) {
    if (volumes.empty())
        return {"Tidak ada SSD/disk eksternal yang terpasang."};
    std::vector<std::string> lines;
    for (const auto& volume : volumes)
        addVolume(lines, volume);
    return lines;
}

} // namespace korvanti::VolumeText
