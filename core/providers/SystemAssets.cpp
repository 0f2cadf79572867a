#include "providers/SystemAssets.h"

namespace korvanti::SystemAssets {

const Explanations& groups() {
    static const Explanations groups = {
        {"com_apple_MobileAsset_iOSSimulatorRuntime",
         {.title = "Runtime Simulator iOS", .instructions = "Kelola di Xcode › Settings › Components."}},
        {"com_apple_MobileAsset_AppleDeveloperDocumentation",
         {.title = "Dokumentasi Xcode",
          .instructions = "Xcode › Settings › Components › hapus Documentation bila jarang dibaca offline."}},
        {"com_apple_MobileAsset_MetalToolchain",
         {.title = "Metal Toolchain",
          .instructions = "Dibutuhkan untuk compile shader Metal. Kelola di Xcode › Settings › Components."}},
        {"com_apple_MobileAsset_UAF_LinguisticData",
         {.title = "Model bahasa Apple Intelligence",
          .instructions = "Dikelola macOS (System Settings › Apple Intelligence & Siri)."}},
        {"com_apple_MobileAsset_UAF_Siri_Understanding",
         {.title = "Model Siri",
          .instructions = "Dikelola macOS (System Settings › Apple Intelligence & Siri)."}},
        {"com_apple_MobileAsset_UAF_Photos_SpatialPhotosRelive",
         {.title = "Model Photos", .instructions = "Dikelola macOS."}},
    };
    return groups;
}

const Explanations& volumes() {
    static const Explanations volumes = {
        {"VM",
         {.title = "Swap memori (VM)",
          .instructions = "macOS memakai SSD sebagai RAM tambahan. Berkurang setelah restart; tutup app "
                          "berat (browser, emulator) saat build."}},
        {"Preboot",
         {.title = "Preboot (komponen boot & cryptex)",
          .instructions =
              "Dikelola macOS. Membesar sementara saat update; mengecil setelah update selesai."}},
        {"Recovery", {.title = "Recovery", .instructions = "Partisi pemulihan macOS. Jangan diubah."}},
        {"System",
         {.title = "macOS (System)", .instructions = "Volume sistem tersegel. Tidak bisa dikurangi."}},
        {"Update", {.title = "Update macOS", .instructions = "File update yang sedang disiapkan."}},
    };
    return volumes;
}

} // namespace korvanti::SystemAssets
