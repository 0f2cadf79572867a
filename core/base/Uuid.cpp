#include "base/Uuid.h"

#include <uuid/uuid.h>

namespace korvanti {
namespace {

constexpr std::size_t textLength = 36;

/// What the library reads beyond this differs between the systems.
bool isCanonical(std::string_view text) {
    if (text.size() != textLength)
        return false;
    for (std::size_t i = 0; i < textLength; ++i) {
        const char c = text[i];
        const bool hyphenHere = i == 8 || i == 13 || i == 18 || i == 23;
        const bool digit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (hyphenHere ? c != '-' : !digit)
            return false;
    }
    return true;
}

} // namespace

Uuid Uuid::random() {
    Uuid uuid;
    ::uuid_generate_random(uuid.bytes.data());
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    Uuid uuid;
    if (!isCanonical(text) || ::uuid_parse(std::string(text).c_str(), uuid.bytes.data()) != 0)
        return std::nullopt;
    return uuid;
}

std::string Uuid::text() const {
    char text[textLength + 1];
    ::uuid_unparse_upper(bytes.data(), text);
    return text;
}

} // namespace korvanti
