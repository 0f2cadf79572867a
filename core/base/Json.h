#pragma once

#include "base/Instant.h"

#include <cstdint>
#include <expected>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// A JSON value; an object keeps its keys in the order in which they were set.
using Json = nlohmann::ordered_json;

/// Why a text is no JSON or a value has not the expected form. For developers and tests; never shown to the
/// user.
struct JsonError {
    std::string message;
    bool operator==(const JsonError&) const = default;
};

/// Reads a whole JSON text as the platform's decoder does: UTF-8 with or without a byte order mark, nesting
/// up to 512, one trailing comma allowed, the first of equal keys wins. Anything else is an error.
[[nodiscard]] std::expected<Json, JsonError> parseJson(std::string_view text);

/// The platform encoder's pretty form with keys sorted by their UTF-8 bytes: two spaces a level, " : " behind
/// a key, "\/", an empty array or object on three lines, no line end behind the last bracket.
/// Text that is not UTF-8 is repaired. A number that is not finite is a fault of the program and ends the
/// process.
[[nodiscard]] std::string prettySortedJson(const Json& value);

/// The platform encoder's compact form, keys in the order of the value; otherwise the same.
[[nodiscard]] std::string compactJson(const Json& value);

/// Takes the fields of one JSON object, strictly: a missing key or a value of another type is remembered as
/// the reader's error (the first one stays) and gives the type's empty value, so that a record is read in one
/// go:
///
///     JsonObjectReader in(json);
///     Thing thing{.name = in.text("name"), .bytes = in.integer("bytes")};
///     return in.finish(std::move(thing));
///
/// Optional fields take a missing key and null alike. Unknown keys are ignored.
class JsonObjectReader {
public:
    /// Looks at `value`, which must outlive the reader.
    explicit JsonObjectReader(const Json& value);

    std::string text(std::string_view key);
    std::int64_t integer(std::string_view key); ///< also from "5.0" and "1e3", not from 5.5
    double number(std::string_view key);
    bool boolean(std::string_view key);
    Instant instant(std::string_view key);
    std::vector<std::string> texts(std::string_view key);
    std::map<std::string, std::string> textMap(std::string_view key);

    std::optional<std::string> optionalText(std::string_view key);
    std::optional<std::int64_t> optionalInteger(std::string_view key);
    std::optional<bool> optionalBoolean(std::string_view key);
    std::optional<Instant> optionalInstant(std::string_view key);
    std::optional<std::vector<std::string>> optionalTexts(std::string_view key);

    /// The value of a key that must be there; a null value after an error.
    const Json& value(std::string_view key);
    /// The value of a key that may be missing or null.
    const Json* optionalValue(std::string_view key) const;

    /// One record read by `decode` (Json -> std::expected<Record, JsonError>).
    template <class Decode> auto record(std::string_view key, Decode decode) {
        return taken(decode(value(key)));
    }
    /// The same where the key may be missing.
    template <class Decode> auto optionalRecord(std::string_view key, Decode decode) {
        using Record = typename decltype(decode(std::declval<const Json&>()))::value_type;
        const Json* found = optionalValue(key);
        return found ? std::optional<Record>(taken(decode(*found))) : std::nullopt;
    }
    /// An array of records; one bad element is an error of the whole.
    template <class Decode> auto records(std::string_view key, Decode decode) {
        using Record = typename decltype(decode(std::declval<const Json&>()))::value_type;
        std::vector<Record> all;
        for (const Json& element : array(key)) {
            if (failed())
                break;
            all.push_back(taken(decode(element)));
        }
        return all;
    }

    /// Remembers an error, if none came before.
    void fail(std::string message);
    [[nodiscard]] bool failed() const { return error_.has_value(); }

    /// The record if every field was there and right, else the first error.
    template <class Record> [[nodiscard]] std::expected<Record, JsonError> finish(Record record) const {
        if (error_)
            return std::unexpected(*error_);
        return record;
    }

private:
    const Json& array(std::string_view key); ///< an empty array after an error
    template <class Record> Record taken(std::expected<Record, JsonError> result) {
        if (result)
            return std::move(*result);
        fail(result.error().message);
        return Record{};
    }

    const Json* object_;
    std::optional<JsonError> error_;
};

} // namespace korvanti
