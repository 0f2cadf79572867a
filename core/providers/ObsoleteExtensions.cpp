#include "providers/ObsoleteExtensions.h"

#include "base/Json.h"
#include "fs/PathTools.h"

namespace korvanti::ObsoleteExtensions {

std::vector<std::string> names(std::string_view text) {
    const auto list = parseJson(text);
    if (!list || !list->is_object())
        return {};
    std::vector<std::string> names;
    for (const auto& [name, isObsolete] : list->get_ref<const Json::object_t&>()) {
        if (!isObsolete.is_boolean())
            return {};
        if (isObsolete.get<bool>() && PathTools::isEntryName(name))
            names.push_back(name);
    }
    return names;
}

} // namespace korvanti::ObsoleteExtensions
