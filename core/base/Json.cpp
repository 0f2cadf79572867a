#include "base/Json.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <set>
#include <utility>

namespace korvanti {
namespace {

constexpr std::size_t deepestNesting = 512;
/// From here on a double no longer tells every integer from its neighbour.
constexpr double firstInexactInteger = 9'007'199'254'740'992; // 2^53

// Reading

/// The text with each single comma in front of a closing bracket made a blank. All else is the parser's.
std::string withoutTrailingCommas(std::string_view text) {
    std::string result(text);
    bool inString = false;
    char last = 0;   // the last byte that is neither white space nor inside a string
    char before = 0; // the one before it
    std::size_t lastAt = 0;
    for (std::size_t at = 0; at < result.size(); ++at) {
        const char byte = result[at];
        if (inString && byte == '\\')
            ++at;
        else if (byte == '"')
            inString = !inString;
        if (inString || byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r')
            continue;
        const bool behindValue = before != 0 && !std::string_view("[{,:").contains(before);
        if ((byte == ']' || byte == '}') && last == ',' && behindValue)
            result[lastAt] = ' ';
        before = std::exchange(last, byte);
        lastAt = at;
    }
    return result;
}

std::string_view mantissaOf(std::string_view number) {
    return number.substr(0, number.find_first_of("eE"));
}

/// The integer that a number with a fraction or an exponent writes, as in "1.5e18": exactly or not at all.
std::optional<std::int64_t> exactInteger(std::string_view number) {
    const std::string_view mantissa = mantissaOf(number);
    std::int64_t exponent = 0;
    if (mantissa.size() < number.size()) {
        std::string_view text = number.substr(mantissa.size() + 1);
        text.remove_prefix(text.starts_with('+') ? 1 : 0);
        int written = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), written).ec != std::errc())
            return std::nullopt;
        exponent = written;
    }
    std::string digits;
    bool inFraction = false;
    for (const char byte : mantissa) {
        if (byte >= '0' && byte <= '9') {
            digits += byte;
            exponent -= inFraction ? 1 : 0;
        } else if (byte != '-') {
            inFraction = true; // the parser puts the separator of the process's locale here
        }
    }
    digits.erase(0, digits.find_first_not_of('0'));
    while (exponent < 0 && digits.ends_with('0')) {
        digits.pop_back();
        ++exponent;
    }
    constexpr std::int64_t mostDigits = 19; // of a signed 64-bit integer
    if (exponent < 0 || exponent + static_cast<std::int64_t>(digits.size()) > mostDigits)
        return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    if (number.starts_with('-'))
        digits.insert(0, 1, '-');
    std::int64_t value = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        return std::nullopt;
    return value;
}

/// Builds the value from the parser's events. The library's own builder lets the last of equal keys win,
/// looks for each key in all before it, and has no limit to the nesting.
class Builder : public nlohmann::json_sax<Json> {
public:
    Json result;
    JsonError error;

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return add(value); }
    bool number_unsigned(std::uint64_t value) override { return add(value); }
    bool number_float(double value, const std::string& text) override {
        if (value == 0 && mantissaOf(text).find_first_of("123456789") != std::string_view::npos)
            return refuse("a number is too small: " + text);
        if (std::fabs(value) >= firstInexactInteger)
            if (const auto integer = exactInteger(text))
                return add(*integer);
        return add(value);
    }
    bool string(std::string& value) override { return add(std::move(value)); }
    bool binary(Json::binary_t&) override { return refuse("binary data"); }
    bool start_object(std::size_t) override { return open(true); }
    bool key(std::string& key) override {
        Container& object = open_.back();
        object.skipsNext = !object.keys.insert(key).second;
        if (!object.skipsNext)
            object.members.emplace_back(std::move(key), Json());
        return true;
    }
    bool end_object() override {
        Json::object_t object;
        object.reserve(open_.back().members.size());
        for (auto& [key, value] : open_.back().members)
            object.emplace_back(std::move(key), std::move(value));
        open_.pop_back();
        return add(std::move(object));
    }
    bool start_array(std::size_t) override { return open(false); }
    bool end_array() override {
        Json::array_t array = std::move(open_.back().elements);
        open_.pop_back();
        return add(std::move(array));
    }
    bool parse_error(std::size_t, const std::string&, const Json::exception& exception) override {
        return refuse(exception.what());
    }

private:
    struct Container {
        bool isObject = false;
        bool skipsNext = false; ///< the next value has a key that came before
        Json::array_t elements;
        std::vector<std::pair<std::string, Json>> members; ///< the last one's value is yet to come
        std::set<std::string> keys;
    };

    bool open(bool isObject) {
        if (open_.size() == deepestNesting)
            return refuse("nested too deeply");
        open_.emplace_back().isObject = isObject;
        return true;
    }

    template <class Value> bool add(Value&& value) {
        if (open_.empty())
            result = std::forward<Value>(value);
        else if (!open_.back().isObject)
            open_.back().elements.emplace_back(std::forward<Value>(value));
        else if (!open_.back().skipsNext)
            open_.back().members.back().second = std::forward<Value>(value);
        return true;
    }

    bool refuse(std::string message) {
        error = {std::move(message)};
        return false;
    }

    std::vector<Container> open_;
};

// Writing

/// The shortest digits that read back as the same number. fmt's layout is the platform's, but for the short
/// stretch from 2^53 to 10^16, where only the platform writes an exponent already.
std::string numberText(double value) {
    if (!std::isfinite(value))
        std::abort();
    std::string text = fmt::format("{}", value);
    if (std::fabs(value) > firstInexactInteger && !text.contains('e')) {
        text.insert(value < 0 ? 2 : 1, 1, '.');
        text.erase(text.find_last_not_of('0') + 1);
        text += "e+15";
    }
    return text;
}

class Writer {
public:
    explicit Writer(bool pretty) : pretty_(pretty) {}

    void write(const Json& value) {
        switch (value.type()) {
        case Json::value_t::null:
            out_ += "null";
            return;
        case Json::value_t::boolean:
            out_ += value.get<bool>() ? "true" : "false";
            return;
        case Json::value_t::number_integer:
            out_ += std::to_string(value.get<std::int64_t>());
            return;
        case Json::value_t::number_unsigned:
            out_ += std::to_string(value.get<std::uint64_t>());
            return;
        case Json::value_t::number_float:
            out_ += numberText(value.get<double>());
            return;
        case Json::value_t::string:
            writeText(value.get_ref<const std::string&>());
            return;
        case Json::value_t::array:
            writeAll('[', value.get_ref<const Json::array_t&>(), ']',
                     [this](const Json& element) { write(element); });
            return;
        case Json::value_t::object:
            writeObject(value.get_ref<const Json::object_t&>());
            return;
        case Json::value_t::binary:
        case Json::value_t::discarded:
            std::abort(); // JSON has no such value
        }
    }

    std::string take() { return std::move(out_); }

private:
    using Member = Json::object_t::value_type;

    void writeObject(const Json::object_t& object) {
        std::vector<const Member*> members;
        members.reserve(object.size());
        for (const Member& member : object)
            members.push_back(&member);
        if (pretty_)
            std::ranges::sort(members, {},
                              [](const Member* member) -> const std::string& { return member->first; });
        writeAll('{', members, '}', [this](const Member* member) {
            writeText(member->first);
            out_ += pretty_ ? " : " : ":";
            write(member->second);
        });
    }

    template <class Values, class WriteOne>
    void writeAll(char opening, const Values& values, char closing, WriteOne writeOne) {
        out_ += opening;
        ++level_;
        const char* separator = "";
        for (const auto& value : values) {
            out_ += std::exchange(separator, ",");
            breakLine();
            writeOne(value);
        }
        if (values.empty() && pretty_)
            out_ += '\n'; // an empty one takes three lines
        --level_;
        breakLine();
        out_ += closing;
    }

    void breakLine() {
        if (pretty_)
            out_.append("\n").append(2 * level_, ' ');
    }

    void writeText(const std::string& text) {
        out_ += '"';
        for (const char byte : Text::repaired(text))
            writeByte(byte);
        out_ += '"';
    }

    void writeByte(char byte) {
        switch (byte) {
        case '"':
        case '\\':
        case '/':
            out_ += {'\\', byte};
            return;
        case '\b':
            out_ += "\\b";
            return;
        case '\f':
            out_ += "\\f";
            return;
        case '\n':
            out_ += "\\n";
            return;
        case '\r':
            out_ += "\\r";
            return;
        case '\t':
            out_ += "\\t";
            return;
        default:
            if (static_cast<unsigned char>(byte) < 0x20)
                out_ += fmt::format("\\u{:04x}", static_cast<unsigned>(byte));
            else
                out_ += byte;
        }
    }

    bool pretty_;
    std::size_t level_ = 0;
    std::string out_;
};

std::string written(const Json& value, bool pretty) {
    Writer writer(pretty);
    writer.write(value);
    return writer.take();
}

// Records

/// Null when there is no such key or no object.
const Json* find(const Json& value, std::string_view key) {
    if (!value.is_object())
        return nullptr;
    const auto& object = value.get_ref<const Json::object_t&>();
    const auto found = std::ranges::find(object, key, &Json::object_t::value_type::first);
    return found != object.end() ? &found->second : nullptr;
}

std::optional<std::int64_t> integerOf(const Json& value) {
    if (value.is_number_float()) {
        const auto number = value.get<double>();
        // A larger one may stand for another integer than was written; what is exact was read as an integer.
        const bool exact = std::fabs(number) < firstInexactInteger && std::trunc(number) == number;
        return exact ? std::optional(static_cast<std::int64_t>(number)) : std::nullopt;
    }
    if (value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>()))
        return std::nullopt;
    return value.is_number_integer() ? std::optional(value.get<std::int64_t>()) : std::nullopt;
}

std::optional<double> numberOf(const Json& value) {
    return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

std::optional<bool> booleanOf(const Json& value) {
    return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

std::optional<std::string> textOf(const Json& value) {
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

std::optional<Instant> instantOf(const Json& value) {
    return value.is_string() ? instantFromIso8601(value.get_ref<const std::string&>()) : std::nullopt;
}

std::optional<std::vector<std::string>> textsOf(const Json& value) {
    if (!value.is_array())
        return std::nullopt;
    std::vector<std::string> texts;
    for (const Json& element : value) {
        if (!element.is_string())
            return std::nullopt;
        texts.push_back(element.get<std::string>());
    }
    return texts;
}

std::optional<std::map<std::string, std::string>> textMapOf(const Json& value) {
    if (!value.is_object())
        return std::nullopt;
    std::map<std::string, std::string> texts;
    for (const auto& [key, element] : value.get_ref<const Json::object_t&>()) {
        if (!element.is_string())
            return std::nullopt;
        texts.emplace(key, element.get<std::string>());
    }
    return texts;
}

/// The field by way of `convert` (Json -> optional); `form` says in the error what it should have been.
template <class Convert>
auto required(JsonObjectReader& in, std::string_view key, Convert convert, const char* form) {
    auto converted = convert(in.value(key));
    if (!converted)
        in.fail(fmt::format("\"{}\" is not {}", key, form));
    return converted.value_or(typename decltype(converted)::value_type{});
}

template <class Convert>
auto optional(JsonObjectReader& in, std::string_view key, Convert convert, const char* form) {
    const Json* found = in.optionalValue(key);
    auto converted = found ? convert(*found) : std::nullopt;
    if (found && !converted)
        in.fail(fmt::format("\"{}\" is not {}", key, form));
    return converted;
}

constexpr const char* aText = "a text";
constexpr const char* anInteger = "an integer";
constexpr const char* aBoolean = "true or false";
constexpr const char* anInstant = "an instant";
constexpr const char* aListOfTexts = "a list of texts";

} // namespace

std::expected<Json, JsonError> parseJson(std::string_view text) {
    if (text.contains('\0')) // the parser would take it for the end
        return std::unexpected(JsonError{"a zero byte"});
    Builder builder;
    const std::string prepared = withoutTrailingCommas(text);
    if (!Json::sax_parse(prepared, &builder))
        return std::unexpected(std::move(builder.error));
    return std::move(builder.result);
}

std::string prettySortedJson(const Json& value) {
    return written(value, true);
}

std::string compactJson(const Json& value) {
    return written(value, false);
}

JsonObjectReader::JsonObjectReader(const Json& value) : object_(&value) {
    if (!value.is_object())
        fail("not an object");
}

std::string JsonObjectReader::text(std::string_view key) {
    return required(*this, key, textOf, aText);
}

std::int64_t JsonObjectReader::integer(std::string_view key) {
    return required(*this, key, integerOf, anInteger);
}

double JsonObjectReader::number(std::string_view key) {
    return required(*this, key, numberOf, "a number");
}

bool JsonObjectReader::boolean(std::string_view key) {
    return required(*this, key, booleanOf, aBoolean);
}

Instant JsonObjectReader::instant(std::string_view key) {
    return required(*this, key, instantOf, anInstant);
}

std::vector<std::string> JsonObjectReader::texts(std::string_view key) {
    return required(*this, key, textsOf, aListOfTexts);
}

std::map<std::string, std::string> JsonObjectReader::textMap(std::string_view key) {
    return required(*this, key, textMapOf, "an object of texts");
}

std::optional<std::string> JsonObjectReader::optionalText(std::string_view key) {
    return optional(*this, key, textOf, aText);
}

std::optional<std::int64_t> JsonObjectReader::optionalInteger(std::string_view key) {
    return optional(*this, key, integerOf, anInteger);
}

std::optional<bool> JsonObjectReader::optionalBoolean(std::string_view key) {
    return optional(*this, key, booleanOf, aBoolean);
}

std::optional<Instant> JsonObjectReader::optionalInstant(std::string_view key) {
    return optional(*this, key, instantOf, anInstant);
}

std::optional<std::vector<std::string>> JsonObjectReader::optionalTexts(std::string_view key) {
    return optional(*this, key, textsOf, aListOfTexts);
}

const Json& JsonObjectReader::value(std::string_view key) {
    static const Json null;
    if (const Json* found = find(*object_, key))
        return *found;
    fail(fmt::format("\"{}\" is missing", key));
    return null;
}

const Json* JsonObjectReader::optionalValue(std::string_view key) const {
    const Json* found = find(*object_, key);
    return found && !found->is_null() ? found : nullptr;
}

void JsonObjectReader::fail(std::string message) {
    if (!error_)
        error_ = {std::move(message)};
}

const Json& JsonObjectReader::array(std::string_view key) {
    static const Json empty = Json::array();
    const Json& found = value(key);
    if (found.is_array())
        return found;
    fail(fmt::format("\"{}\" is not a list", key));
    return empty;
}

} // namespace korvanti
