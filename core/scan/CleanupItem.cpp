#include "scan/CleanupItem.h"

#include "fs/PathTools.h"

#include <utility>

namespace korvanti {

std::string_view label(Safety safety) {
    switch (safety) {
    case Safety::regenerable:
        return "Aman";
    case Safety::costly:
        return "Aman · unduh ulang";
    case Safety::review:
        return "Periksa dulu";
    case Safety::keep:
        return "Penting";
    case Safety::managed:
        return "Dikelola sistem";
    }
    std::unreachable();
}

std::string_view summary(Safety safety) {
    switch (safety) {
    case Safety::regenerable:
        return "Dibuat ulang otomatis oleh tool-nya. Tidak ada data yang hilang.";
    case Safety::costly:
        return "Aman dihapus, tapi akan diunduh atau di-build ulang (butuh waktu & internet).";
    case Safety::review:
        return "Bisa berisi data bernilai. Masuk Tong Sampah dulu, atau pindahkan ke SSD.";
    case Safety::keep:
        return "Sedang dipakai atau penting. Korvanti tidak akan menghapusnya.";
    case Safety::managed:
        return "Dikelola macOS atau app lain. Ikuti cara resmi yang dijelaskan.";
    }
    std::unreachable();
}

namespace {

struct CategoryTexts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbol;
};

CategoryTexts texts(ItemCategory category) {
    switch (category) {
    case ItemCategory::xcode:
        return {"xcode", "Xcode", "hammer"};
    case ItemCategory::simulators:
        return {"simulators", "Simulator iOS", "ipad.and.iphone"};
    case ItemCategory::android:
        return {"android", "Android & Gradle", "square.stack.3d.up"};
    case ItemCategory::projects:
        return {"projects", "Artefak proyek", "folder.badge.gearshape"};
    case ItemCategory::toolchains:
        return {"toolchains", "Paket & toolchain", "shippingbox"};
    case ItemCategory::aiTools:
        return {"aiTools", "Tool AI & editor", "sparkles"};
    case ItemCategory::appCaches:
        return {"appCaches", "Cache app & browser", "globe"};
    case ItemCategory::apps:
        return {"apps", "Aplikasi jarang dipakai", "gamecontroller"};
    case ItemCategory::personal:
        return {"personal", "File pribadi", "photo.on.rectangle"};
    case ItemCategory::system:
        return {"system", "Sistem macOS", "gearshape.2"};
    }
    std::unreachable();
}

} // namespace

std::string_view rawValue(ItemCategory category) {
    return texts(category).rawValue;
}
std::string_view title(ItemCategory category) {
    return texts(category).title;
}
std::string_view symbol(ItemCategory category) {
    return texts(category).symbol;
}

std::string_view CleanupAction::verb() const {
    switch (kind) {
    case Kind::delete_:
        return "Hapus permanen";
    case Kind::trash:
        return "Pindah ke Tong Sampah";
    case Kind::emptyTrash:
        return "Kosongkan Tong Sampah";
    case Kind::simulatorErase:
        return "Reset simulator";
    case Kind::simulatorDelete:
        return "Hapus simulator";
    case Kind::simulatorRuntimeDelete:
        return "Hapus runtime simulator";
    case Kind::manual:
        return "Panduan";
    }
    std::unreachable();
}

std::optional<std::string> CleanupAction::instructions() const {
    if (kind != Kind::manual)
        return std::nullopt;
    return payload;
}

CleanupItem CleanupItem::make(CleanupItem fields) {
    const bool harmless = fields.safety == Safety::regenerable || fields.safety == Safety::costly;
    fields.recommended = fields.recommended && harmless && fields.action.isAutomatic();
    return fields;
}

std::string CleanupItem::displayPath() const {
    return PathTools::abbreviatingHome(path);
}

} // namespace korvanti
