#include "shell/ItemFilter.h"

#include <utility>

namespace korvanti {

std::string_view rawValue(Pane pane) {
    switch (pane) {
    case Pane::overview:
        return "overview";
    case Pane::cleanup:
        return "cleanup";
    case Pane::map:
        return "map";
    case Pane::apps:
        return "apps";
    case Pane::ssd:
        return "ssd";
    case Pane::history:
        return "history";
    }
    std::unreachable();
}

std::string_view title(ItemFilter filter) {
    switch (filter) {
    case ItemFilter::recommended:
        return "Rekomendasi";
    case ItemFilter::deletable:
        return "Bisa dibersihkan";
    case ItemFilter::review:
        return "Periksa dulu";
    case ItemFilter::all:
        return "Semua";
    }
    std::unreachable();
}

bool matches(ItemFilter filter, const CleanupItem& item) {
    switch (filter) {
    case ItemFilter::recommended:
        return item.recommended;
    case ItemFilter::deletable:
        return item.isSelectable();
    case ItemFilter::review:
        return item.safety == Safety::review;
    case ItemFilter::all:
        return true;
    }
    std::unreachable();
}

} // namespace korvanti
