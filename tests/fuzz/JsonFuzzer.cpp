#include "Require.h"
#include "base/Json.h"

#include "base/Text.h"

using namespace korvanti;

namespace {

/// Equal with the keys of all objects in any order.
bool equal(const Json& one, const Json& other) {
    return nlohmann::json(one) == nlohmann::json(other);
}

void readsEveryField(const Json& value) {
    JsonObjectReader in(value);
    (void)in.optionalInstant("t");
    (void)in.optionalInteger("n");
    (void)in.optionalTexts("a");
    (void)in.textMap("m");
    (void)in.finish(0);
}

} // namespace

/// Whatever is read can be written, and reads back as the same value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto value = parseJson(textOf(data, size));
    if (!value)
        return 0;

    const std::string compact = compactJson(*value);
    const auto fromCompact = parseJson(compact);
    require(fromCompact && *fromCompact == *value);
    require(Text::repaired(compact) == compact);

    const std::string pretty = prettySortedJson(*value);
    const auto fromPretty = parseJson(pretty);
    require(fromPretty && equal(*fromPretty, *value));
    require(Text::repaired(pretty) == pretty);

    readsEveryField(*value);
    return 0;
}
