#include "drives/DevCache.h"

#include <utility>

namespace korvanti {

std::string_view rawValue(DevCache cache) {
    switch (cache) {
    case DevCache::xcodeDerivedData:
        return "xcodeDerivedData";
    case DevCache::gradleHome:
        return "gradleHome";
    case DevCache::npmCache:
        return "npmCache";
    }
    std::unreachable();
}

std::string_view title(DevCache cache) {
    switch (cache) {
    case DevCache::xcodeDerivedData:
        return "DerivedData Xcode";
    case DevCache::gradleHome:
        return "Gradle (cache, wrapper, JDK)";
    case DevCache::npmCache:
        return "Cache npm";
    }
    std::unreachable();
}

std::string_view detail(DevCache cache) {
    switch (cache) {
    case DevCache::xcodeDerivedData:
        return "Lewat pengaturan Xcode (Locations › Derived Data). Build Xcode berikutnya menulis ke SSD. "
               "Skrip yang memakai `-derivedDataPath` sendiri tidak terpengaruh.";
    case DevCache::gradleHome:
        return "Lewat GRADLE_USER_HOME di ~/.zshenv, aktif hanya bila SSD terpasang. Berlaku untuk Gradle "
               "dari Terminal; buka terminal baru setelah menerapkan.";
    case DevCache::npmCache:
        return "Lewat npm_config_cache di ~/.zshenv, aktif hanya bila SSD terpasang.";
    }
    std::unreachable();
}

std::string_view folderName(DevCache cache) {
    switch (cache) {
    case DevCache::xcodeDerivedData:
        return "DerivedData.noindex";
    case DevCache::gradleHome:
        return "gradle.noindex";
    case DevCache::npmCache:
        return "npm-cache.noindex";
    }
    std::unreachable();
}

std::string_view environmentVariable(DevCache cache) {
    switch (cache) {
    case DevCache::xcodeDerivedData:
        return "";
    case DevCache::gradleHome:
        return "GRADLE_USER_HOME";
    case DevCache::npmCache:
        return "npm_config_cache";
    }
    std::unreachable();
}

} // namespace korvanti
