#include "EndToEnd.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace korvanti::testing {

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

} // namespace korvanti::testing
