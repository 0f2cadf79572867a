#include "base/Language.h"

#include <cstdlib>

namespace korvanti {

std::string environmentLocale(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return value;
    }
    return {};
}

Language systemLanguage() {
    const auto name = environmentLocale("LC_MESSAGES");
    return name.substr(0, name.find_first_of("_-.@")) == "id" ? Language::indonesian : Language::english;
}

} // namespace korvanti
