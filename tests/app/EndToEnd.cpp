#include "EndToEnd.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sys/stat.h>
#include <utility>

namespace korvanti::testing {
namespace {

std::size_t hashOf(const std::filesystem::path& file) {
    std::string contents(std::filesystem::file_size(file), '\0');
    std::ifstream(file, std::ios::binary)
        .read(contents.data(), static_cast<std::streamsize>(contents.size()));
    return std::hash<std::string>()(contents);
}

} // namespace

ProgramOptions EndToEnd::with(const std::string& variable, std::optional<std::string> value) {
    return {.environment = {{variable, std::move(value)}}};
}

ProgramOptions EndToEnd::reading(ProgramOptions::Reading amount) {
    return {.reading = amount};
}

ProgramResult EndToEnd::korvanti(const std::vector<std::string>& arguments, ProgramOptions options) {
    options.environment.insert({{"HOME", "/Users/tester"}, {"LC_ALL", "C"}, {"TZ", "UTC"}});
    std::vector<std::string> command = {KORVANTI_EXECUTABLE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto result = runProgram(command, options);
    EXPECT_EQ(result.status, 0) << result.err;
    return result;
}

void EndToEnd::occupy(std::string_view location, std::int64_t bytes) const {
    mac.home.file(std::string(location) + "/contents", {.allocatedBytes = bytes});
}

std::vector<std::string> linesOf(const std::string& output) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (auto end = output.find('\n'); end != std::string::npos; end = output.find('\n', start)) {
        lines.push_back(output.substr(start, end - start));
        start = end + 1;
    }
    EXPECT_EQ(start, output.size()) << "the last line has no end: " << output.substr(start);
    return lines;
}

std::vector<std::string> sectionOf(const std::string& output, std::string_view heading) {
    const auto lines = linesOf(output);
    const auto first =
        std::ranges::find_if(lines, [&](const std::string& line) { return line.starts_with(heading); });
    return {first, std::find(first, lines.end(), "")};
}

std::set<std::string> picture(const std::string& folder) {
    std::set<std::string> all;
    std::map<ino_t, std::size_t> hashes; // many names of few files
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        struct stat status {};
        EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
        if (entry.is_regular_file() && !hashes.contains(status.st_ino))
            hashes[status.st_ino] = hashOf(entry.path());
        std::string line = entry.path();
        if (entry.is_symlink())
            line += " -> " + std::filesystem::read_symlink(entry.path()).string();
        for (const auto number :
             {static_cast<std::int64_t>(status.st_mode), static_cast<std::int64_t>(status.st_uid),
              static_cast<std::int64_t>(status.st_size), static_cast<std::int64_t>(status.st_ino),
              static_cast<std::int64_t>(status.st_mtim.tv_sec),
              static_cast<std::int64_t>(status.st_mtim.tv_nsec), static_cast<std::int64_t>(status.st_nlink)})
            line += " " + std::to_string(number);
        all.insert(line + " " + std::to_string(hashes[status.st_ino]));
    }
    return all;
}

} // namespace korvanti::testing
