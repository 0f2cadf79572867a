#include "shell/ItemFilter.h"

#include <utility>

namespace korvanti {

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
