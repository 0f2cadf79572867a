#include "platform/linux/UdevRecord.h"

#include "base/Text.h"

#include <charconv>

namespace korvanti::Platform {

UdevRecord udevRecordFromText(std::string_view text) {
    constexpr std::string_view labelKey = "E:ID_FS_LABEL_ENC=";
    constexpr std::string_view uuidKey = "E:ID_FS_UUID=";
    UdevRecord record;
    for (const auto line : Text::pieces(text, '\n')) {
        if (line.starts_with(labelKey) && line != labelKey)
            record.label = decodedUdevName(line.substr(labelKey.size()));
        else if (line.starts_with(uuidKey) && line != uuidKey)
            record.uuid = line.substr(uuidKey.size());
    }
    return record;
}

std::string decodedUdevName(std::string_view encoded) {
    constexpr std::size_t escapeLength = 4;
    std::string decoded;
    while (!encoded.empty()) {
        const auto escape = encoded.substr(0, escapeLength);
        unsigned char byte = 0;
        if (escape.size() == escapeLength && escape.starts_with("\\x") &&
            std::from_chars(escape.data() + 2, escape.data() + escapeLength, byte, 16).ptr ==
                escape.data() + escapeLength) {
            decoded += static_cast<char>(byte);
            encoded.remove_prefix(escapeLength);
        } else {
            decoded += encoded.front();
            encoded.remove_prefix(1);
        }
    }
    return decoded;
}

} // namespace korvanti::Platform
