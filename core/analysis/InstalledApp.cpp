#include "analysis/InstalledApp.h"

#include "base/CheckedMath.h"

#include <algorithm>
#include <utility>

namespace korvanti {

std::string_view rawValue(AppRole role) {
    switch (role) {
    case AppRole::work:
        return "work";
    case AppRole::communication:
        return "communication";
    case AppRole::nonWork:
        return "nonWork";
    case AppRole::system:
        return "system";
    case AppRole::other:
        return "other";
    }
    std::unreachable();
}

std::string_view label(AppRole role) {
    switch (role) {
    case AppRole::work:
        return "Kerja";
    case AppRole::communication:
        return "Komunikasi";
    case AppRole::nonWork:
        return "Non-kerja";
    case AppRole::system:
        return "Sistem";
    case AppRole::other:
        return "Lainnya";
    }
    std::unreachable();
}

std::int64_t InstalledApp::dataBytes() const {
    std::int64_t sum = 0;
    for (const auto& location : data)
        sum = addChecked(sum, location.bytes);
    return sum;
}

std::int64_t InstalledApp::totalBytes() const {
    return addChecked(bytes, dataBytes());
}

std::optional<Instant> InstalledApp::lastActivity() const {
    return std::max(lastUsed, dataActivity); // absent is before every instant
}

} // namespace korvanti
