#pragma once

#include <string_view>

namespace korvanti::Platform {

/// Folders that a Mac takes for packages. There the installed applications say so; this is what they usually
/// say.
inline constexpr std::string_view packageExtensions[] = {
    "app",       "appex",     "bundle",        "plugin",      "component",    "kext",         "xpc",
    "prefpane",  "saver",     "qlgenerator",   "mdimporter",  "wdgt",         "service",      "action",
    "workflow",  "scptd",     "rtfd",          "pages",       "numbers",      "key",          "pkg",
    "mpkg",      "download",  "xcodeproj",     "xcworkspace", "xcarchive",    "xcdatamodeld", "playground",
    "dsym",      "mlpackage", "photoslibrary", "aplibrary",   "musiclibrary", "tvlibrary",    "imovielibrary",
    "fcpbundle", "logicx",    "band",          "garageband",  "sparsebundle", "backupbundle", "dvdmedia",
    "theater"};

} // namespace korvanti::Platform
