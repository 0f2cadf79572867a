#include "Require.h"
#include "base/PropertyList.h"
#include "base/Text.h"

namespace {

using korvanti::PropertyList;

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
    if (const auto list = PropertyList::parse(textOf(data, size)))
        require(requireSound(*list, 0) <= 1'000'000);
    return 0;
}
