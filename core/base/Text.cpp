#include "base/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <unicode/ubrk.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace korvanti::Text {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// Line and paragraph separators break a line like a line feed; bidirectional controls can make a name read
/// as another one.
bool isControl(UChar32 character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
           (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

template <class IsRefused> std::string rewritten(std::string_view bytes, IsRefused isRefused) {
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t next = 0; next < bytes.size();) {
        const std::size_t start = next;
        UChar32 character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"                 // inside the macro
        U8_NEXT(bytes.data(), next, bytes.size(), character); // negative for an invalid sequence
#pragma GCC diagnostic pop
        text += character < 0 || isRefused(character) ? replacement : bytes.substr(start, next - start);
    }
    return text;
}

struct Close {
    void operator()(UText* text) const { utext_close(text); }
    void operator()(UBreakIterator* breaks) const { ubrk_close(breaks); }
};

} // namespace

std::string repaired(std::string_view bytes) {
    return rewritten(bytes, [](UChar32) { return false; });
}

std::string printable(std::string_view bytes) {
    return rewritten(bytes, isControl);
}

std::size_t characterCount(std::string_view text) {
    const bool plain = std::ranges::all_of(
        text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80 && byte != '\r'; });
    if (plain)
        return text.size();

    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UText, Close> characters(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
    const std::unique_ptr<UBreakIterator, Close> breaks(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    ubrk_setUText(breaks.get(), characters.get(), &status);
    if (U_FAILURE(status))
        std::abort(); // without its own data the library can't go on
    std::size_t count = 0;
    while (ubrk_next(breaks.get()) != UBRK_DONE)
        ++count;
    return count;
}

} // namespace korvanti::Text
