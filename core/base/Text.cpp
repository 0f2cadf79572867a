#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/ubrk.h>
#include <unicode/ustring.h>
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

/// The text put together from what `rewrite(character, bytes)` makes of each character; a negative one stands
/// for a sequence that is no UTF-8.
template <class Rewrite> std::string rewritten(std::string_view bytes, Rewrite rewrite) {
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t next = 0; next < bytes.size();) {
        const std::size_t start = next;
        UChar32 character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // inside the macro
        U8_NEXT(bytes.data(), next, bytes.size(), character);
#pragma GCC diagnostic pop
        text += rewrite(character, bytes.substr(start, next - start));
    }
    return text;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // inside the macros

/// The first or last character of a text that is not empty; negative where the bytes are no UTF-8.
UChar32 firstCharacter(std::string_view text) {
    text = text.substr(0, U8_MAX_LENGTH);
    std::int32_t next = 0;
    UChar32 character = 0;
    U8_NEXT(text.data(), next, static_cast<std::int32_t>(text.size()), character);
    return character;
}

UChar32 lastCharacter(std::string_view text) {
    text.remove_prefix(text.size() - std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    auto next = static_cast<std::int32_t>(text.size());
    UChar32 character = 0;
    U8_PREV(bytes, 0, next, character);
    return character;
}

#pragma GCC diagnostic pop

/// Blanks, tabs and line ends as the platform's sets of them have it; some of these are no white space
/// elsewhere.
bool isWhiteSpaceOrLineEnd(UChar32 character) {
    return (character >= 0x0009 && character <= 0x000D) || character == 0x0020 || character == 0x0085 ||
           character == 0x00A0 || character == 0x1680 || (character >= 0x2000 && character <= 0x200B) ||
           character == 0x2028 || character == 0x2029 || character == 0x202F || character == 0x205F ||
           character == 0x3000;
}

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

constexpr char lowercasedASCII(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

std::string lowercased(UChar32 character) {
    UChar before[U16_MAX_LENGTH];
    std::int32_t length = 0;
    U16_APPEND_UNSAFE(before, length, character);
    UChar after[8];
    UErrorCode status = U_ZERO_ERROR;
    const auto count = u_strToLower(after, std::size(after), before, length, "", &status);
    char bytes[4 * std::size(after)];
    std::int32_t size = 0;
    u_strToUTF8(bytes, std::size(bytes), &size, after, count, &status);
    if (U_FAILURE(status))
        std::abort(); // no character has a mapping so long
    return {bytes, static_cast<std::size_t>(size)};
}

struct Close {
    void operator()(UText* text) const { utext_close(text); }
    void operator()(UBreakIterator* breaks) const { ubrk_close(breaks); }
};

} // namespace

std::string repaired(std::string_view bytes) {
    if (isASCII(bytes))
        return std::string(bytes);
    return rewritten(
        bytes, [](UChar32 character, std::string_view own) { return character < 0 ? replacement : own; });
}

std::string printable(std::string_view bytes) {
    return rewritten(bytes, [](UChar32 character, std::string_view own) {
        return character < 0 || isControl(character) ? replacement : own;
    });
}

std::size_t characterCount(std::string_view text) {
    if (isASCII(text) && !text.contains('\r'))
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

std::string lowercased(std::string_view text) {
    if (isASCII(text)) { // as nearly all are, and a list of many is searched at each key
        std::string lower(text);
        std::ranges::transform(lower, lower.begin(), lowercasedASCII);
        return lower;
    }
    return rewritten(text, [](UChar32 character, std::string_view own) {
        return character < 0 ? std::string(own) : lowercased(character);
    });
}

std::string composed(std::string_view text) {
    if (isASCII(text))
        return std::string(text);
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    const auto* const form = icu::Normalizer2::getNFCInstance(status);
    if (U_SUCCESS(status))
        form->normalizeUTF8(0, repaired(text), sink, nullptr, status);
    if (U_FAILURE(status))
        std::abort(); // without its own data the library can't go on
    return result;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isWhiteSpaceOrLineEnd(firstCharacter(text)))
        text.remove_prefix(static_cast<std::size_t>(U8_LENGTH(firstCharacter(text))));
    while (!text.empty() && isWhiteSpaceOrLineEnd(lastCharacter(text)))
        text.remove_suffix(static_cast<std::size_t>(U8_LENGTH(lastCharacter(text))));
    return text;
}

std::string_view trimmed(std::string_view text, std::string_view characters) {
    const auto first = std::min(text.find_first_not_of(characters), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    for (auto found = text.find(from); found != text.npos; found = text.find(from)) {
        result.append(text.substr(0, found)).append(to);
        text.remove_prefix(found + from.size());
    }
    return result.append(text);
}

std::vector<std::string_view> pieces(std::string_view text, char separator) {
    std::vector<std::string_view> found;
    while (!text.empty()) {
        const auto piece = text.substr(0, text.find(separator));
        if (!piece.empty())
            found.push_back(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
    return found;
}

std::optional<std::int64_t> integer(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || behind != end)
        return std::nullopt;
    return number;
}

} // namespace korvanti::Text
