#include "providers/FileKinds.h"

namespace korvanti::FileKinds {

const Extensions& installers() {
    static const Extensions extensions = {"dmg", "pkg", "xip", "iso", "exe", "msi", "mpkg"};
    return extensions;
}

const Extensions& archivesAndPackages() {
    static const Extensions extensions = {"zip", "rar", "7z",  "tar", "gz",
                                          "apk", "aab", "ipa", "deb", "appimage"};
    return extensions;
}

const std::vector<Kind>& largeFiles() {
    static const std::vector<Kind> kinds = {
        {"Video", {"mov", "mp4", "m4v", "mkv", "avi", "webm", "mts", "braw", "r3d"}},
        {"Image disk", {"dmg", "iso", "img", "sparseimage", "sparsebundle"}},
        {"Arsip", {"zip", "rar", "7z", "tar", "gz", "tgz", "xz", "bz2"}},
        {"Mesin virtual", {"vmdk", "vdi", "qcow2", "vhd", "vhdx", "utm", "pvm"}},
        {"Audio", {"wav", "aif", "aiff", "flac", "caf"}},
        {"Foto RAW", {"cr2", "cr3", "nef", "arw", "raf", "dng"}},
        {"File desain", {"psd", "psb", "ai", "sketch", "fig", "blend", "prproj", "aep"}},
        {"Installer", {"pkg", "apk", "aab", "ipa", "exe", "msi", "xip"}},
    };
    return kinds;
}

} // namespace korvanti::FileKinds
