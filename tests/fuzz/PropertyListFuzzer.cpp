#include "base/PropertyList.h"
#include "base/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using korvanti::PropertyList;

void require(bool holds) {
    if (!holds)
        std::abort();
}

void requireText(const std::string& text) {
    require(korvanti::Text::repaired(text) == text);
}

/// What holds for every list that is read; gives the number of values in it.
std::size_t requireSound(const PropertyList& value, std::size_t depth) {
    std::size_t values = 1;
    if (const auto* array = value.array()) {
        require(depth < 512);
        for (const auto& element : *array)
            values += requireSound(element, depth + 1);
    } else if (const auto* dictionary = value.dictionary()) {
        require(depth < 512);
        for (const auto& [key, element] : *dictionary) {
            requireText(key);
            require(value.find(key) == &element);
            values += requireSound(element, depth + 1);
        }
    } else if (const auto text = value.text()) {
        requireText(*text);
    }
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto list = PropertyList::parse(bytes))
        require(requireSound(*list, 0) <= 1'000'000);
    return 0;
}
