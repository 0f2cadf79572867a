#include "base/PropertyListBuilder.h"

#include "base/PropertyListLimits.h"

#include <utility>

namespace korvanti {

bool PropertyListBuilder::key(std::string name) {
    if (open_.empty() || !std::holds_alternative<PropertyList::Dictionary>(open_.back().contents) ||
        open_.back().key)
        return false;
    open_.back().key = std::move(name);
    return true;
}

bool PropertyListBuilder::add(PropertyList value) {
    return ++values_ <= PropertyListLimits::values && place(std::move(value));
}

bool PropertyListBuilder::open(Contents contents) {
    if (++values_ > PropertyListLimits::values || open_.size() == PropertyListLimits::depth || complete())
        return false;
    open_.push_back({.contents = std::move(contents), .key = std::nullopt});
    return true;
}

template <class Type> bool PropertyListBuilder::close() {
    if (open_.empty() || open_.back().key || !std::holds_alternative<Type>(open_.back().contents))
        return false;
    PropertyList whole(std::get<Type>(std::move(open_.back().contents)));
    open_.pop_back();
    return place(std::move(whole));
}

template bool PropertyListBuilder::close<PropertyList::Array>();
template bool PropertyListBuilder::close<PropertyList::Dictionary>();

bool PropertyListBuilder::place(PropertyList value) {
    if (complete())
        return false;
    if (open_.empty()) {
        root_ = std::move(value);
        return true;
    }
    Container& container = open_.back();
    if (auto* array = std::get_if<PropertyList::Array>(&container.contents)) {
        array->push_back(std::move(value));
        return true;
    }
    if (!container.key)
        return false;
    std::get<PropertyList::Dictionary>(container.contents)
        .insert_or_assign(std::move(*container.key), std::move(value));
    container.key.reset();
    return true;
}

} // namespace korvanti
