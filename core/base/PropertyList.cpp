#include "base/PropertyList.h"

#include "base/BinaryPropertyList.h"
#include "base/PropertyListLimits.h"
#include "base/XmlPropertyList.h"

#include <type_traits>

namespace korvanti {
namespace {

template <class Type, class Value> std::optional<Type> copyOf(const Value& value) {
    const Type* found = std::get_if<Type>(&value);
    return found ? std::optional<Type>(*found) : std::nullopt;
}

} // namespace

// A growing list of values must move them.
static_assert(std::is_nothrow_move_constructible_v<PropertyList>);

// A map's own end goes down its tree by recursion, and with each level of nesting once more. A deep list of
// large dictionaries would take more than a megabyte of stack, which only a main thread has on every system.
PropertyList::~PropertyList() {
    if (auto* entries = std::get_if<Dictionary>(&value_)) {
        while (!entries->empty())
            entries->erase(entries->begin());
    }
}

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > PropertyListLimits::bytes)
        return std::nullopt;
    return BinaryPropertyList::isBinary(bytes) ? BinaryPropertyList::parse(bytes)
                                               : XmlPropertyList::parse(bytes);
}

std::optional<bool> PropertyList::boolean() const {
    return copyOf<bool>(value_);
}

std::optional<std::int64_t> PropertyList::integer() const {
    return copyOf<std::int64_t>(value_);
}

std::optional<double> PropertyList::real() const {
    return copyOf<double>(value_);
}

std::optional<std::string> PropertyList::text() const {
    return copyOf<std::string>(value_);
}

std::optional<Instant> PropertyList::date() const {
    return copyOf<Instant>(value_);
}

const PropertyList::Data* PropertyList::data() const {
    return std::get_if<Data>(&value_);
}

const PropertyList::Array* PropertyList::array() const {
    return std::get_if<Array>(&value_);
}

const PropertyList::Dictionary* PropertyList::dictionary() const {
    return std::get_if<Dictionary>(&value_);
}

const PropertyList* PropertyList::find(const std::string& key) const {
    const Dictionary* entries = dictionary();
    if (!entries)
        return nullptr;
    const auto entry = entries->find(key);
    return entry == entries->end() ? nullptr : &entry->second;
}

std::optional<std::string> PropertyList::text(const std::string& key) const {
    const PropertyList* value = find(key);
    return value ? value->text() : std::nullopt;
}

} // namespace korvanti
