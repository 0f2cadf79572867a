#include "RulesSupport.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace korvanti::testing {

std::vector<std::vector<std::string>> ruleTable(const std::string& name) {
    std::ifstream file(KORVANTI_TEST_DATA "/rules/" + name, std::ios::binary);
    EXPECT_TRUE(file.good()) << name;
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        std::istringstream stream(line + '\t');
        auto& row = rows.emplace_back();
        for (std::string field; std::getline(stream, field, '\t');)
            row.push_back(field);
    }
    return rows;
}

Instant now() {
    return instantFromSeconds(nowSeconds);
}

Instant ago(std::int64_t days, std::int64_t seconds) {
    return instantFromSeconds(secondsAgo(days, seconds));
}

void Weights::add(const std::string& folder, std::int64_t bytes, std::int64_t modified) {
    constexpr std::int64_t piece = 16LL << 20;
    std::filesystem::create_directories(folder);
    for (std::int64_t left = bytes; left > 0; left -= piece)
        std::filesystem::create_hard_link(file(std::min(left, piece), modified),
                                          folder + "/weight-" + std::to_string(count_++));
}

const std::string& Weights::file(std::int64_t bytes, std::int64_t modified) {
    auto& path = files_[{bytes, modified}];
    if (path.empty())
        path = pool_.file("weight-" + std::to_string(files_.size()),
                          {.allocatedBytes = bytes, .modified = modified});
    return path;
}

} // namespace korvanti::testing
