#include "base/FileError.h"

#include <cerrno>
#include <utility>

namespace korvanti {
namespace {

std::string reasonOf(const std::error_code& code) {
    switch (code.value()) {
    case EACCES:
    case EPERM:
        return "tidak ada izin";
    case EBUSY:
        return "sedang dipakai";
    case EIO:
        return "kesalahan baca/tulis pada disk";
    case EISDIR:
        return "ternyata folder";
    case ELOOP:
        return "jalurnya melewati symlink";
    case EMFILE:
    case ENFILE:
        return "terlalu banyak file yang terbuka";
    case ENAMETOOLONG:
        return "nama terlalu panjang";
    case ENOENT:
        return "sudah tidak ada";
    case ENOSPC:
    case EDQUOT:
        return "ruang disk habis";
    case ENOTDIR:
        return "bukan folder";
    case ENOTEMPTY:
        return "ada isi baru selagi dihapus";
    case EROFS:
        return "volume hanya bisa dibaca";
    case ESTALE:
        return "berubah selagi diproses";
    case EXDEV:
        return "berada di volume lain";
    default:
        return code.message();
    }
}

} // namespace

bool FileError::isPermission() const {
    return code == std::errc::permission_denied || code == std::errc::operation_not_permitted;
}

std::string FileError::description() const {
    return systemText.empty() ? "Gagal pada " + path + ": " + reasonOf(code) : systemText;
}

FileError fileErrorOf(int error, std::string path) {
    return {.path = std::move(path), .code = {error, std::generic_category()}, .systemText = {}};
}

FileError lastFileError(const std::string& path) {
    const int error = errno; // before anything else may change it
    return fileErrorOf(error, path);
}

} // namespace korvanti
