#include "base/BinaryPropertyList.h"

#include "base/PropertyListBuilder.h"
#include "base/PropertyListLimits.h"
#include "base/Text.h"

#include <unicode/unistr.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::BinaryPropertyList {
namespace {

constexpr std::string_view magic = "bplist0";
constexpr std::uint64_t headerBytes = 8;
constexpr std::uint64_t trailerBytes = 32;

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes)
        value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

std::string textFromUtf16(std::string_view bytes) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units.push_back(static_cast<char16_t>(bigEndian(bytes.substr(i, 2))));
    std::string text;
    // Half of a pair comes out as U+FFFD.
    icu::UnicodeString(false, units.data(), static_cast<std::int32_t>(units.size())).toUTF8String(text);
    return text;
}

class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    std::optional<PropertyList> read() {
        if (!readTrailer() || !object(top_))
            return std::nullopt;
        while (!open_.empty()) {
            if (!step())
                return std::nullopt;
        }
        return builder_.take();
    }

private:
    enum Type : std::uint8_t {
        simple = 0x0,
        integer = 0x1,
        real = 0x2,
        date = 0x3,
        data = 0x4,
        asciiText = 0x5,
        utf16Text = 0x6,
        archiveReference = 0x8,
        array = 0xA,
        dictionary = 0xD,
    };

    /// The head of an object: its type, the low half of its first byte, and where its contents start.
    struct Head {
        std::uint8_t type;
        std::uint8_t low;
        std::uint64_t contents;
    };

    /// An array or dictionary whose elements are being read. The positions are those of lists of references.
    struct Open {
        bool isDictionary;
        std::uint64_t keys;
        std::uint64_t values;
        std::uint64_t count;
        std::uint64_t next = 0;
    };

    bool readTrailer() {
        if (bytes_.size() < headerBytes + trailerBytes)
            return false;
        const std::string_view trailer = bytes_.substr(bytes_.size() - trailerBytes);
        offsetSize_ = static_cast<unsigned char>(trailer[6]);
        referenceSize_ = static_cast<unsigned char>(trailer[7]);
        objectCount_ = bigEndian(trailer.substr(8, 8));
        top_ = bigEndian(trailer.substr(16, 8));
        table_ = bigEndian(trailer.substr(24, 8));

        const std::uint64_t end = bytes_.size() - trailerBytes;
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8)
            return false;
        // The table of offsets fills all that lies between the objects and the trailer.
        return table_ >= headerBytes && table_ <= end && (end - table_) % offsetSize_ == 0 &&
               objectCount_ == (end - table_) / offsetSize_;
    }

    /// The bytes of an object's contents; absent when they reach beyond the objects.
    std::optional<std::string_view> slice(std::uint64_t position, std::uint64_t count, std::uint64_t unit) {
        if (position > table_ || count > (table_ - position) / unit)
            return std::nullopt;
        return bytes_.substr(position, count * unit);
    }

    std::optional<Head> head(std::uint64_t number) {
        if (number >= objectCount_)
            return std::nullopt;
        const std::uint64_t position = bigEndian(bytes_.substr(table_ + number * offsetSize_, offsetSize_));
        if (position < headerBytes || position >= table_)
            return std::nullopt;
        const auto first = static_cast<unsigned char>(bytes_[position]);
        return Head{static_cast<std::uint8_t>(first >> 4U), static_cast<std::uint8_t>(first & 0xFU),
                    position + 1};
    }

    /// The length that a head tells; moves the head past an integer that holds it.
    std::optional<std::uint64_t> length(Head& head) {
        constexpr std::uint8_t follows = 0xF;
        if (head.low != follows)
            return head.low;
        const auto marker = slice(head.contents, 1, 1);
        if (!marker)
            return std::nullopt;
        const auto first = static_cast<unsigned char>(marker->front());
        if (first >> 4U != integer || (first & 0xFU) > 3)
            return std::nullopt;
        const std::uint64_t size = 1ULL << (first & 0xFU);
        const auto number = slice(head.contents + 1, size, 1);
        if (!number)
            return std::nullopt;
        head.contents += 1 + size;
        return bigEndian(*number);
    }

    /// The contents of data or text, of `unit` bytes an element.
    std::optional<std::string_view> payload(Head head, std::uint64_t unit) {
        const auto count = length(head);
        const auto contents = count ? slice(head.contents, *count, unit) : std::nullopt;
        if (!contents || contents->size() > payloadLeft_)
            return std::nullopt;
        payloadLeft_ -= contents->size();
        return contents;
    }

    std::optional<std::string> text(Head head) {
        if (head.type == asciiText) {
            const auto contents = payload(head, 1);
            return contents ? std::optional(Text::repaired(*contents)) : std::nullopt;
        }
        if (head.type == utf16Text) {
            const auto contents = payload(head, 2);
            return contents ? std::optional(textFromUtf16(*contents)) : std::nullopt;
        }
        return std::nullopt;
    }

    /// One, two and four bytes are unsigned, eight and sixteen signed.
    std::optional<PropertyList> integerValue(Head head) {
        if (head.low > 4)
            return std::nullopt;
        const auto contents = slice(head.contents, 1ULL << head.low, 1);
        if (!contents)
            return std::nullopt;
        if (contents->size() < 16)
            return PropertyList(static_cast<std::int64_t>(bigEndian(*contents)));
        const auto high = static_cast<std::int64_t>(bigEndian(contents->substr(0, 8)));
        const auto low = static_cast<std::int64_t>(bigEndian(contents->substr(8)));
        const bool fits = high == (low < 0 ? -1 : 0);
        return fits ? PropertyList(low) : PropertyList();
    }

    std::optional<double> realValue(Head head) {
        if (head.low != 2 && head.low != 3)
            return std::nullopt;
        const auto contents = slice(head.contents, 1ULL << head.low, 1);
        if (!contents)
            return std::nullopt;
        if (contents->size() == 4)
            return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(*contents)));
        return std::bit_cast<double>(bigEndian(*contents));
    }

    std::optional<PropertyList> scalar(Head head) {
        switch (head.type) {
        case simple:
            if (head.low == 0x8 || head.low == 0x9)
                return PropertyList(head.low == 0x9);
            return head.low == 0x0 ? std::optional(PropertyList()) : std::nullopt;
        case integer:
            return integerValue(head);
        case real: {
            const auto number = realValue(head);
            return number ? std::optional(PropertyList(*number)) : std::nullopt;
        }
        case date: {
            const auto seconds = realValue(head);
            if (!seconds || head.low != 3)
                return std::nullopt;
            return std::isnan(*seconds) ? PropertyList() : PropertyList(instantFromReference(*seconds));
        }
        case data: {
            const auto contents = payload(head, 1);
            if (!contents)
                return std::nullopt;
            return PropertyList(PropertyList::Data{std::string(*contents)});
        }
        case asciiText:
        case utf16Text: {
            auto contents = text(head);
            return contents ? std::optional(PropertyList(*std::move(contents))) : std::nullopt;
        }
        case archiveReference:
            return slice(head.contents, head.low + 1ULL, 1) ? std::optional(PropertyList()) : std::nullopt;
        default:
            return std::nullopt;
        }
    }

    /// Adds an object to the list; of an array or dictionary only the start, the rest comes with `step`.
    bool object(std::uint64_t number) {
        auto found = head(number);
        if (!found)
            return false;
        if (found->type != array && found->type != dictionary) {
            auto value = scalar(*found);
            return value && builder_.add(*std::move(value));
        }
        const bool isDictionary = found->type == dictionary;
        const auto count = length(*found);
        if (!count || !slice(found->contents, *count, referenceSize_ * (isDictionary ? 2ULL : 1ULL)))
            return false;
        const std::uint64_t values = found->contents + (isDictionary ? *count * referenceSize_ : 0);
        open_.push_back(
            {.isDictionary = isDictionary, .keys = found->contents, .values = values, .count = *count});
        return isDictionary ? builder_.openDictionary() : builder_.openArray();
    }

    /// Reads the next element of the innermost array or dictionary, or closes it.
    bool step() {
        Open& innermost = open_.back();
        const bool isDictionary = innermost.isDictionary;
        if (innermost.next == innermost.count) {
            open_.pop_back();
            return isDictionary ? builder_.closeDictionary() : builder_.closeArray();
        }
        const std::uint64_t key = innermost.keys + innermost.next * referenceSize_;
        const std::uint64_t value = innermost.values + innermost.next * referenceSize_;
        ++innermost.next;
        if (isDictionary) {
            const auto keyHead = head(reference(key));
            auto name = keyHead ? text(*keyHead) : std::nullopt;
            if (!name || !builder_.key(*std::move(name)))
                return false;
        }
        return object(reference(value));
    }

    std::uint64_t reference(std::uint64_t position) const {
        return bigEndian(bytes_.substr(position, referenceSize_));
    }

    std::string_view bytes_;
    std::uint64_t offsetSize_ = 0;
    std::uint64_t referenceSize_ = 0;
    std::uint64_t objectCount_ = 0;
    std::uint64_t top_ = 0;
    std::uint64_t table_ = 0; ///< where the objects end and their offsets start
    std::uint64_t payloadLeft_ = PropertyListLimits::bytes;
    std::vector<Open> open_;
    PropertyListBuilder builder_;
};

} // namespace

bool isBinary(std::string_view bytes) {
    return bytes.starts_with(magic);
}

std::optional<PropertyList> parse(std::string_view bytes) {
    return isBinary(bytes) ? Reader(bytes).read() : std::nullopt;
}

} // namespace korvanti::BinaryPropertyList
