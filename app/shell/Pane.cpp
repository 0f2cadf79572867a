#include "shell/Pane.h"

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

} // namespace korvanti
