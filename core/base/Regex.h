#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct URegularExpression;

namespace korvanti {

/// A regular expression of the platform's own kind and engine (ICU). Safe from any thread.
class Regex {
public:
    /// Compiles a pattern of the program's own; a wrong one is a fault of the program and ends it.
    explicit Regex(std::string_view pattern);
    ~Regex();
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    struct Match {
        std::size_t position = 0; ///< bytes from the start of the text
        /// The whole match, then the capture groups; nil for one that took no part.
        std::vector<std::optional<std::string>> groups;
        bool operator==(const Match&) const = default;
    };

    /// The leftmost match anywhere in the text. Bytes that are not UTF-8 count as U+FFFD. A text on which the
    /// engine would go on for more than a moment, which takes one made for the purpose, counts as having no
    /// (further) match.
    [[nodiscard]] std::optional<Match> first(std::string_view text) const;
    /// All matches, from left to right, none overlapping another.
    [[nodiscard]] std::vector<Match> all(std::string_view text) const;

private:
    template <class Found> void find(std::string_view text, Found found) const;

    struct Close {
        void operator()(URegularExpression* expression) const;
    };
    std::unique_ptr<URegularExpression, Close> expression_; ///< never searched with itself, only copied
};

} // namespace korvanti
