#include "fs/PathTools.h"

#include <array>
#include <optional>
#include <utility>

/// `PathTools::matches`: the Mac's fnmatch(pattern, name, 0) in the C locale, the same on every system. It
/// differs from glibc's in two places: an unterminated bracket matches nothing, and a backslash at the end
/// stands for itself.
namespace korvanti::PathTools {
namespace {

bool isInClass(char c, std::string_view name, bool& known) {
    using Test = bool (*)(char);
    static constexpr Test lower = [](char x) { return x >= 'a' && x <= 'z'; };
    static constexpr Test upper = [](char x) { return x >= 'A' && x <= 'Z'; };
    static constexpr Test digit = [](char x) { return x >= '0' && x <= '9'; };
    static constexpr Test alpha = [](char x) { return lower(x) || upper(x); };
    static constexpr Test alnum = [](char x) { return alpha(x) || digit(x); };
    static constexpr Test graph = [](char x) { return x > ' ' && x < 0x7f; };
    static constexpr std::array<std::pair<std::string_view, Test>, 12> classes = {{
        {"alnum", alnum},
        {"alpha", alpha},
        {"blank", [](char x) { return x == ' ' || x == '\t'; }},
        {"cntrl", [](char x) { return (x >= 0 && x < ' ') || x == 0x7f; }},
        {"digit", digit},
        {"graph", graph},
        {"lower", lower},
        {"print", [](char x) { return x == ' ' || graph(x); }},
        {"punct", [](char x) { return graph(x) && !alnum(x); }},
        {"space", [](char x) { return x == ' ' || (x >= '\t' && x <= '\r'); }},
        {"upper", upper},
        {"xdigit", [](char x) { return digit(x) || (x >= 'a' && x <= 'f') || (x >= 'A' && x <= 'F'); }},
    }};
    for (const auto& [className, test] : classes) {
        if (className == name)
            return test(c);
    }
    known = false;
    return false;
}

/// One bracket expression, `pattern` standing behind its "[". Answers whether `c` is in it and moves
/// `pattern` behind its "]"; absent for a bracket that does not end or names an unknown class.
std::optional<bool> matchesBracket(std::string_view& pattern, char c) {
    const bool negated = pattern.starts_with('!') || pattern.starts_with('^');
    if (negated)
        pattern.remove_prefix(1);
    // A "]" in the first place is one of the characters.
    for (bool first = true, found = false; !pattern.empty(); first = false) {
        if (pattern.front() == ']' && !first) {
            pattern.remove_prefix(1);
            return found != negated;
        }
        if (pattern.starts_with("[:")) {
            const auto end = pattern.find(":]", 2);
            if (end != std::string_view::npos) {
                bool known = true;
                found |= isInClass(c, pattern.substr(2, end - 2), known);
                if (!known)
                    return std::nullopt;
                pattern.remove_prefix(end + 2);
                continue;
            }
        }
        const auto take = [&pattern] {
            if (pattern.front() == '\\' && pattern.size() > 1)
                pattern.remove_prefix(1);
            const auto taken = static_cast<unsigned char>(pattern.front());
            pattern.remove_prefix(1);
            return taken;
        };
        const auto low = take();
        auto high = low;
        if (pattern.size() > 1 && pattern[0] == '-' && pattern[1] != ']') {
            pattern.remove_prefix(1);
            high = take();
        }
        const auto value = static_cast<unsigned char>(c);
        found |= low <= value && value <= high;
    }
    return std::nullopt;
}

/// Whether the first element of `pattern`, which is no star, matches `c`; moves `pattern` behind it.
bool matchesOne(std::string_view& pattern, char c) {
    const char element = pattern.front();
    pattern.remove_prefix(1);
    if (element == '?')
        return true;
    if (element == '[')
        return matchesBracket(pattern, c).value_or(false);
    if (element == '\\' && !pattern.empty()) {
        const char escaped = pattern.front();
        pattern.remove_prefix(1);
        return escaped == c;
    }
    return element == c;
}

} // namespace

bool matches(std::string_view name, std::string_view pattern) {
    // Where to go on when the text behind the last star does not fit: one character of the name further.
    std::optional<std::string_view> starPattern;
    std::string_view starName;
    while (true) {
        if (pattern.starts_with('*')) {
            pattern.remove_prefix(1);
            starPattern = pattern;
            starName = name;
            continue;
        }
        if (name.empty() && pattern.empty())
            return true;
        if (!name.empty() && !pattern.empty() && matchesOne(pattern, name.front())) {
            name.remove_prefix(1);
            continue;
        }
        if (!starPattern || starName.empty())
            return false;
        starName.remove_prefix(1);
        name = starName;
        pattern = *starPattern;
    }
}

} // namespace korvanti::PathTools
