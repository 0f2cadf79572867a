#include "base/XmlPropertyList.h"

#include "base/PropertyListBuilder.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <string>
#include <unicode/utf8.h>
#include <utility>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

namespace korvanti::XmlPropertyList {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view decimalDigits = "0123456789";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Takes a prefix off the text.
bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// Takes everything up to and with the next `end` off the text, and gives what stands before it.
std::optional<std::string_view> takeUntil(std::string_view& text, std::string_view end) {
    const auto found = text.find(end);
    if (found == text.npos)
        return std::nullopt;
    const std::string_view before = text.substr(0, found);
    text.remove_prefix(found + end.size());
    return before;
}

/// The character that stands between "&" and ";".
bool appendReferenced(std::string& text, std::string_view name) {
    constexpr std::pair<std::string_view, char> named[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    const auto* const match = std::ranges::find(named, name, &std::pair<std::string_view, char>::first);
    if (match != std::end(named)) {
        text += match->second;
        return true;
    }
    if (!take(name, "#"))
        return false;
    const int base = take(name, "x") ? 16 : 10;
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code, base);
    if (error != std::errc() || end != name.data() + name.size() || code == 0 || code > 0x10FFFF ||
        U_IS_SURROGATE(code))
        return false;
    std::array<char, U8_MAX_LENGTH> bytes{};
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes.data(), length, code);
    text.append(bytes.data(), length);
    return true;
}

/// Appends text with its "&amp;" and the like resolved.
bool appendCharacters(std::string& text, std::string_view source) {
    while (const auto before = takeUntil(source, "&")) {
        text += *before;
        const auto name = takeUntil(source, ";");
        if (!name || !appendReferenced(text, *name))
            return false;
    }
    text += source;
    return true;
}

std::optional<PropertyList> integerValue(std::string_view text) {
    const bool negative = take(text, "-");
    if (!negative)
        take(text, "+");
    const int base = take(text, "0x") || take(text, "0X") ? 16 : 10;
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    if (error == std::errc::result_out_of_range || magnitude > largest + (negative ? 1 : 0))
        return PropertyList();
    return PropertyList(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}

bool isNumber(std::string_view text) {
    const auto takeDigits = [&text] {
        const auto count = std::min(text.find_first_not_of(decimalDigits), text.size());
        text.remove_prefix(count);
        return count > 0;
    };
    const auto takeSign = [&text] { return take(text, "-") || take(text, "+"); };
    takeSign();
    const bool whole = takeDigits();
    const bool fraction = take(text, ".") && takeDigits();
    if (!whole && !fraction)
        return false;
    if (take(text, "e") || take(text, "E")) {
        takeSign();
        if (!takeDigits())
            return false;
    }
    return text.empty();
}

std::optional<PropertyList> realValue(std::string_view text) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr std::pair<std::string_view, double> named[] = {
        {"nan", std::numeric_limits<double>::quiet_NaN()},
        {"inf", infinity},
        {"+inf", infinity},
        {"-inf", -infinity},
        {"infinity", infinity},
        {"+infinity", infinity},
        {"-infinity", -infinity}};
    const auto* const match = std::ranges::find(named, text, &std::pair<std::string_view, double>::first);
    if (match != std::end(named))
        return PropertyList(match->second);
    if (!isNumber(text))
        return std::nullopt;
    // The program's own locale may write a comma.
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return PropertyList(::strtod_l(std::string(text).c_str(), nullptr, plain));
}

/// "2026-11-15T18:42:59Z" and nothing else.
std::optional<PropertyList> dateValue(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00Z";
    const auto fits = [](char digit, char expected) {
        return expected == '0' ? digit >= '0' && digit <= '9' : digit == expected;
    };
    if (!std::ranges::equal(text, form, fits))
        return std::nullopt;
    const auto number = [text](std::size_t position, std::size_t digits) {
        unsigned value = 0;
        std::from_chars(text.data() + position, text.data() + position + digits, value);
        return value;
    };
    const std::chrono::year_month_day day(std::chrono::year(static_cast<int>(number(0, 4))),
                                          std::chrono::month(number(5, 2)), std::chrono::day(number(8, 2)));
    const std::chrono::hours hours(number(11, 2));
    const std::chrono::minutes minutes(number(14, 2));
    const std::chrono::seconds seconds(number(17, 2));
    if (!day.ok() || hours.count() > 23 || minutes.count() > 59 || seconds.count() > 59)
        return std::nullopt;
    return PropertyList(Instant(std::chrono::sys_days(day)) + hours + minutes + seconds);
}

std::optional<PropertyList> dataValue(std::string_view text) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    static constexpr auto values = [=] {
        std::array<std::uint8_t, 256> table{};
        table.fill(64);
        for (std::size_t i = 0; i < alphabet.size(); ++i)
            table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
        return table;
    }();
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    int digits = 0;
    int padding = 0;
    for (const char letter : text) {
        if (blanks.contains(letter))
            continue;
        const std::uint32_t value = letter == '=' ? 0 : values[static_cast<unsigned char>(letter)];
        padding += letter == '=' ? 1 : 0;
        if (value == 64 || (padding > 0 && letter != '=') || padding > 2)
            return std::nullopt;
        group = group << 6U | value;
        if (++digits < 4)
            continue;
        for (int byte = 0; byte < 3 - padding; ++byte)
            bytes += static_cast<char>(group >> (16U - 8U * static_cast<unsigned>(byte)) & 0xFFU);
        group = 0;
        digits = 0;
    }
    if (digits != 0)
        return std::nullopt;
    return PropertyList(PropertyList::Data{std::move(bytes)});
}

class Reader {
public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}

    std::optional<PropertyList> read() {
        take(rest_, "\xEF\xBB\xBF");
        auto tag = nextTag();
        const bool wrapped = tag && tag->name == "plist" && !tag->closing && !tag->empty;
        if (wrapped)
            tag = nextTag();
        while (tag && element(*tag)) {
            if (!builder_.complete()) {
                tag = nextTag();
                continue;
            }
            if (wrapped && !takeClosing("plist"))
                return std::nullopt;
            return builder_.take();
        }
        return std::nullopt;
    }

private:
    struct Tag {
        std::string_view name;
        bool closing; ///< "</name>"
        bool empty;   ///< "<name/>"
    };

    /// The next tag, with the comments and declarations before it left out. Absent when something else comes.
    std::optional<Tag> nextTag() {
        while (true) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
            if (take(rest_, "<?")) {
                if (!takeUntil(rest_, "?>"))
                    return std::nullopt;
            } else if (take(rest_, "<!--")) {
                if (!takeUntil(rest_, "-->"))
                    return std::nullopt;
            } else if (take(rest_, "<!DOCTYPE")) {
                if (!takeTag())
                    return std::nullopt;
            } else {
                return take(rest_, "<") ? readTag() : std::nullopt;
            }
        }
    }

    /// Takes a tag's text up to and with its ">". One inside quotes does not end it; a tag or a definition of
    /// the document's own can't stand inside.
    std::optional<std::string_view> takeTag() {
        char quote = 0;
        for (std::size_t i = 0; i < rest_.size(); ++i) {
            const char letter = rest_[i];
            if (quote != 0) {
                if (letter == quote)
                    quote = 0;
            } else if (letter == '"' || letter == '\'') {
                quote = letter;
            } else if (letter == '<' || letter == '[') {
                return std::nullopt;
            } else if (letter == '>') {
                const std::string_view text = rest_.substr(0, i);
                rest_.remove_prefix(i + 1);
                return text;
            }
        }
        return std::nullopt;
    }

    std::optional<Tag> readTag() {
        auto text = takeTag();
        if (!text)
            return std::nullopt;
        const bool closing = take(*text, "/");
        const bool empty = !closing && text->ends_with('/');
        if (empty)
            text->remove_suffix(1);
        return Tag{text->substr(0, text->find_first_of(blanks)), closing, empty};
    }

    bool takeClosing(std::string_view name) {
        const auto tag = nextTag();
        return tag && tag->closing && tag->name == name;
    }

    /// The characters up to the closing tag, with "<![CDATA[" sections as they stand. Repaired.
    std::optional<std::string> text(const Tag& tag) {
        std::string text;
        while (!tag.empty) {
            const auto before = rest_.substr(0, rest_.find('<'));
            rest_.remove_prefix(before.size());
            if (!appendCharacters(text, before))
                return std::nullopt;
            if (take(rest_, "<![CDATA[")) {
                const auto section = takeUntil(rest_, "]]>");
                if (!section)
                    return std::nullopt;
                text += *section;
            } else if (take(rest_, "<!--")) {
                if (!takeUntil(rest_, "-->"))
                    return std::nullopt;
            } else {
                if (!takeClosing(tag.name))
                    return std::nullopt;
                break;
            }
        }
        return Text::repaired(text);
    }

    /// The plain contents of an element that holds neither markup nor references.
    std::optional<std::string_view> contents(const Tag& tag) {
        if (tag.empty)
            return std::string_view();
        const std::string_view found = rest_.substr(0, rest_.find('<'));
        rest_.remove_prefix(found.size());
        return takeClosing(tag.name) ? std::optional(trimmed(found)) : std::nullopt;
    }

    std::optional<PropertyList> scalar(const Tag& tag) {
        if (tag.name == "string") {
            auto characters = text(tag);
            return characters ? std::optional(PropertyList(*std::move(characters))) : std::nullopt;
        }
        const auto inside = contents(tag);
        if (!inside)
            return std::nullopt;
        if (tag.name == "true" || tag.name == "false")
            return inside->empty() ? std::optional(PropertyList(tag.name == "true")) : std::nullopt;
        if (tag.name == "integer")
            return integerValue(*inside);
        if (tag.name == "real")
            return realValue(*inside);
        if (tag.name == "date")
            return dateValue(*inside);
        if (tag.name == "data")
            return dataValue(*inside);
        return std::nullopt;
    }

    bool element(const Tag& tag) {
        if (tag.name == "array")
            return (tag.closing || builder_.openArray()) &&
                   (!(tag.closing || tag.empty) || builder_.closeArray());
        if (tag.name == "dict")
            return (tag.closing || builder_.openDictionary()) &&
                   (!(tag.closing || tag.empty) || builder_.closeDictionary());
        if (tag.closing)
            return false;
        if (tag.name == "key") {
            auto name = text(tag);
            return name && builder_.key(*std::move(name));
        }
        auto value = scalar(tag);
        return value && builder_.add(*std::move(value));
    }

    std::string_view rest_;
    PropertyListBuilder builder_;
};

} // namespace

std::optional<PropertyList> parse(std::string_view bytes) {
    return Reader(bytes).read();
}

} // namespace korvanti::XmlPropertyList
