#include "terminal/TerminalFace.h"

#include "analysis/StorageMapper.h"
#include "base/Instant.h"
#include "base/Json.h"
#include "drives/VolumeService.h"
#include "platform/Platform.h"
#include "scan/ReportJson.h"
#include "scanner/Scanner.h"
#include "settings/KorvantiSettings.h"
#include "terminal/MapText.h"
#include "terminal/ReportText.h"
#include "terminal/VolumeText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace korvanti::TerminalFace {
namespace {

constexpr std::array<std::string_view, 6> flags = {"--report",  "--all", "--json",
                                                   "--volumes", "--map", "--help"};

constexpr std::string_view usage =
    "Korvanti — bikin storage Mac lemvar lagi (bonus pintar untuk developer iOS & Android)\n"
    "\n"
    "  Korvanti                 buka app\n"
    "  Korvanti --report        pindai & tampilkan rekomendasi (read-only)\n"
    "  Korvanti --report --all  tampilkan semua item\n"
    "  Korvanti --json          laporan dalam JSON\n"
    "  Korvanti --volumes       info SSD eksternal & saran\n"
    "  Korvanti --map           peta penyimpanan per folder";

bool has(const std::vector<std::string>& arguments, std::string_view flag) {
    return std::ranges::find(arguments, flag) != arguments.end();
}

/// Writes one line, waiting where the reader is slow. False when no more can be written.
bool printLine(int descriptor, std::string line) {
    line += '\n';
    for (std::string_view rest = line; !rest.empty();) {
        const auto count = ::write(descriptor, rest.data(), rest.size());
        if (count < 0 && errno == EAGAIN) {
            pollfd room = {.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&room, 1, -1);
        } else if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0)
            rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Safe from many threads: a line is one write.
void printProgress(const std::string& text) {
    printLine(STDERR_FILENO, "· " + text);
}

ScanReport scan(const Scanner::Progress& progress) {
    const Scanner scanner = {.settings = KorvantiSettings::load(), .home = Platform::homeFolder()};
    return scanner.run(Scanner::defaultProviders(), progress);
}

void printJson() {
    printLine(STDOUT_FILENO, prettySortedJson(toJson(scan([](const std::string&) {}))));
}

void printLines(const std::vector<std::string>& lines) {
    for (const auto& line : lines) {
        if (!printLine(STDOUT_FILENO, line))
            return;
    }
}

void printMap() {
    const auto map = StorageMapper::map(StorageMapper::defaultRoots(Platform::homeFolder()), printProgress);
    StorageMapper::save(map); // so that the application finds it
    printLines(MapText::lines(map));
}

void printReport(ReportText::Options options) {
    const auto report = scan(printProgress);
    printLines(ReportText::lines(report, currentInstant(), options));
}

} // namespace

bool isChosen(const std::vector<std::string>& arguments) {
    return std::ranges::any_of(arguments, [](const std::string& argument) {
        return std::ranges::find(flags, argument) != flags.end();
    });
}

int run(const std::vector<std::string>& arguments) {
    if (has(arguments, "--help"))
        printLine(STDOUT_FILENO, std::string(usage));
    else if (has(arguments, "--json"))
        printJson();
    else if (has(arguments, "--volumes"))
        printLines(VolumeText::lines(VolumeService::externalVolumes()));
    else if (has(arguments, "--map"))
        printMap();
    else
        printReport({.allItems = has(arguments, "--all")});
    return 0;
}

} // namespace korvanti::TerminalFace
