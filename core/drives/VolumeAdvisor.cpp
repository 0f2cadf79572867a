#include "drives/VolumeAdvisor.h"

#include <string_view>

namespace korvanti::VolumeAdvisor {
namespace {

using Level = Advice::Level;

Advice adviceOnFormat(const VolumeInfo& volume) {
    if (volume.isAPFS())
        return {Level::good, "Format APFS",
                "Format terbaik untuk SSD di Mac: cepat, mendukung symlink, izin file, clone, dan snapshot."};
    if (volume.fsType == "hfs")
        return {Level::info, "Format Mac OS Extended",
                "Berfungsi, tapi APFS lebih cepat dan andal untuk SSD. Pertimbangkan format ulang ke APFS "
                "saat SSD kosong."};
    if (volume.fsType == "exfat" || volume.fsType == "msdos")
        return {Level::warning, "Format " + volume.formatName + " — tidak cocok untuk kerja dev",
                "Tanpa journaling dan izin file Unix: repo git, symlink, cache Gradle/Xcode bisa rusak bila "
                "SSD tercabut. Pakai hanya untuk foto/video, atau pindahkan isinya dulu lalu format ulang "
                "ke APFS lewat Disk Utility › Erase (isi SSD terhapus)."};
    return {Level::info, "Format " + volume.formatName, "Format ini tidak umum dipakai di Mac."};
}

/// As one word for a shell: whoever names a volume must not get to say what the user's shell runs.
std::string shellWord(std::string_view text) {
    std::string word = "\"";
    for (const char byte : text) {
        if (std::string_view("\"\\$`").contains(byte))
            word += '\\';
        word += byte;
    }
    return word + '"';
}

Advice adviceOnOwnership(const VolumeInfo& volume) {
    return {Level::warning, "Ownership diabaikan",
            "macOS mengabaikan pemilik file di volume ini. Untuk proyek & cache dev sebaiknya diaktifkan "
            "agar izin executable dan git konsisten.",
            "sudo diskutil enableOwnership " + shellWord(volume.mountPath)};
}

Advice adviceOnConnection(const std::string& busProtocol) {
    // "PCI-Express" is one of the latter.
    const bool isFast = busProtocol.contains("Thunderbolt") || busProtocol.contains("PCI");
    const auto title = "Koneksi " + busProtocol;
    if (isFast)
        return {Level::good, title, "Jalur cepat (Thunderbolt/USB4), cocok untuk proyek & cache build."};
    return {Level::info, title,
            "USB biasa cukup untuk arsip & cache. Untuk menaruh proyek/DerivedData, enclosure "
            "Thunderbolt/USB4 NVMe 2–4× lebih cepat."};
}

bool isAlmostFull(const VolumeInfo& volume) {
    return volume.total >= 1 && static_cast<double>(volume.free) / static_cast<double>(volume.total) < 0.1;
}

} // namespace

std::vector<Advice> advice(const VolumeInfo& volume) {
    std::vector<Advice> all = {adviceOnFormat(volume)};
    if (volume.supportsDevWork() && volume.ownersEnabled == false)
        all.push_back(adviceOnOwnership(volume));
    if (volume.solidState == false)
        all.push_back({Level::warning, "Bukan SSD",
                       "Disk berputar (HDD) terlalu lambat untuk build. Pakai untuk arsip & backup saja."});
    if (volume.busProtocol)
        all.push_back(adviceOnConnection(*volume.busProtocol));
    if (volume.encrypted == false && volume.supportsDevWork())
        all.push_back({Level::info, "Tidak terenkripsi",
                       "Kode, keystore, dan sesi login di SSD bisa dibaca orang lain bila SSD hilang. "
                       "Pertimbangkan APFS (Encrypted)."});
    if (isAlmostFull(volume))
        all.push_back(
            {Level::warning, "SSD hampir penuh", "Sisakan minimal 10–15% agar kinerja SSD tetap stabil."});
    const auto wear = volume.smart ? volume.smart->percentageUsed.value_or(0) : 0;
    if (wear >= 80)
        all.push_back(
            {Level::warning, "Keausan SSD " + std::to_string(wear) + "%", "Siapkan backup & pengganti."});
    return all;
}

} // namespace korvanti::VolumeAdvisor
