#include "drives/OffloadError.h"

#include "base/ByteText.h"
#include "fs/PathTools.h"

#include <utility>

namespace korvanti {

std::string OffloadError::description() const {
    switch (kind) {
    case Kind::notEnoughSpace:
        return "Ruang SSD kurang: perlu " + bytesText(needed) + ", tersedia " + bytesText(available) + ".";
    case Kind::unsupportedFormat:
        return "Format " + payload +
               " tidak aman untuk data dev (symlink & izin file hilang). Format SSD ke APFS, atau pindahkan "
               "hanya foto/video.";
    case Kind::originalOccupied:
        return "Lokasi asal sudah berisi data baru: " + PathTools::abbreviatingHome(payload);
    case Kind::copyFailed:
        return "Gagal menyalin: " + payload;
    case Kind::verifyFailed:
        return "Verifikasi salinan gagal (data asal TIDAK dihapus): " + payload;
    case Kind::sourceMissing:
        return "Data asal sudah tidak ada.";
    case Kind::volumeMissing:
        return "SSD tidak terpasang.";
    }
    std::unreachable();
}

std::string description(const DriveFailure& failure) {
    return std::visit([](const auto& reason) { return reason.description(); }, failure);
}

} // namespace korvanti
