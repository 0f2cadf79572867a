#include "drives/DevCache.h"

#include <array>
#include <gtest/gtest.h>
#include <set>
#include <string_view>

namespace korvanti {
namespace {

struct Row {
    DevCache cache;
    std::string_view rawValue;
    std::string_view title;
    std::string_view detail;
    std::string_view folder;
    std::string_view variable;
};

constexpr std::array rows = {
    Row{DevCache::xcodeDerivedData, "xcodeDerivedData", "DerivedData Xcode",
        "Lewat pengaturan Xcode (Locations › Derived Data). Build Xcode berikutnya menulis ke SSD. Skrip "
        "yang "
        "memakai `-derivedDataPath` sendiri tidak terpengaruh.",
        "DerivedData.noindex", ""},
    Row{DevCache::gradleHome, "gradleHome", "Gradle (cache, wrapper, JDK)",
        "Lewat GRADLE_USER_HOME di ~/.zshenv, aktif hanya bila SSD terpasang. Berlaku untuk Gradle dari "
        "Terminal; buka terminal baru setelah menerapkan.",
        "gradle.noindex", "GRADLE_USER_HOME"},
    Row{DevCache::npmCache, "npmCache", "Cache npm",
        "Lewat npm_config_cache di ~/.zshenv, aktif hanya bila SSD terpasang.", "npm-cache.noindex",
        "npm_config_cache"},
};

TEST(DevCacheTests, eachCacheHasItsTexts) {
    for (const auto& row : rows) {
        EXPECT_EQ(rawValue(row.cache), row.rawValue);
        EXPECT_EQ(title(row.cache), row.title);
        EXPECT_EQ(detail(row.cache), row.detail);
        EXPECT_EQ(folderName(row.cache), row.folder);
        EXPECT_EQ(environmentVariable(row.cache), row.variable);
    }
}

TEST(DevCacheTests, allOfThemAreListedInTheirOrder) {
    ASSERT_EQ(allDevCaches.size(), rows.size());
    for (std::size_t index = 0; index < rows.size(); ++index)
        EXPECT_EQ(allDevCaches[index], rows[index].cache);
}

} // namespace
} // namespace korvanti
