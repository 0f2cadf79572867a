pragma Singleton
import QtQuick
import Korvanti.Ui

/// Colours, type and durations of Korvanti. The one place for any of them.
QtObject {
    id: root

    // The palette.
    readonly property color accent: Theme.dark ? "#5AB3FF" : "#0064AF"
    readonly property color ink: Theme.dark ? "#EAF3FF" : "#082E52"
    readonly property color sky: Theme.dark ? "#4FB2FF" : "#1F8CF0"
    readonly property color muted: Theme.dark ? "#B3C6D8" : "#405B73"
    readonly property color iceFill: Theme.dark ? "#10283F" : "#E4F3FF"
    readonly property color blueWash: Theme.dark ? "#152D47" : "#DCEAFF"
    readonly property color peachWash: Theme.dark ? "#3A2923" : "#FFE3D7"
    readonly property color limeWash: Theme.dark ? "#262F1D" : "#E6EDCD"
    readonly property color lilacWash: Theme.dark ? "#29253D" : "#EDE9FA"
    readonly property color heroFill: Theme.dark ? "#0B2E4E" : "#08375F"
    readonly property color green: Theme.dark ? "#4CC38A" : "#1A7A50"
    readonly property color amber: Theme.dark ? "#F0B14A" : "#B07612"
    readonly property color coral: Theme.dark ? "#FF7A66" : "#C2412D"
    readonly property color capacityCyan: "#4FD7F8"

    // Surfaces.
    readonly property color window: Theme.dark ? "#12181F" : "#F7F9FB"
    readonly property color sidebar: Theme.dark ? "#171E27" : "#EDF1F6"
    readonly property color card: Theme.dark ? "#1A222C" : "#FFFFFF"
    readonly property color list: Theme.dark ? "#151C24" : "#FFFFFF"
    readonly property color sheet: Theme.dark ? "#1B232D" : "#FFFFFF"
    readonly property color innerList: Theme.dark ? "#151C24" : "#F9FBFC"
    readonly property color panel: Theme.dark ? "#1B232D" : "#FBFCFD"
    readonly property color cardBorder: Theme.dark ? "#28333F" : "#E2E8EF"
    readonly property color separator: Theme.dark ? "#252F3A" : "#E3E9EF"
    readonly property color capacityTrack: Theme.dark ? "#2B3744" : "#DBE4ED"
    readonly property color segmentedTrack: Theme.dark ? "#1E2731" : "#E8EDF3"
    readonly property color rowHover: Theme.dark ? "#1F2933" : "#F1F5F9"
    readonly property color rowPressed: Theme.dark ? "#263240" : "#E8EEF4"
    readonly property color sidebarSelected: Theme.dark ? "#22364B" : "#D9E6F4"
    readonly property color sidebarHover: Theme.dark ? "#1E2833" : "#E4EAF1"
    readonly property color scrim: Theme.dark ? "#8C05080C" : "#59182635"

    // Words.
    readonly property color text: Theme.dark ? "#E8EEF5" : "#15212E"
    readonly property color text2: Theme.dark ? "#A9B7C6" : "#4A5B6C"
    readonly property color text3: Theme.dark ? "#8C9CAC" : "#5E6F80"
    readonly property color warnText: Theme.dark ? "#F0B14A" : "#8A5800"

    // Controls.
    readonly property color control: Theme.dark ? "#26313D" : "#FFFFFF"
    readonly property color controlBorder: Theme.dark ? "#384552" : "#CBD5DF"
    readonly property color controlHover: Theme.dark ? "#2E3A47" : "#F3F6F9"
    readonly property color controlPressed: Theme.dark ? "#202A34" : "#E6ECF2"
    readonly property color disabledFill: Theme.dark ? "#26313D" : "#DDE4EC"
    readonly property color checkboxBorder: Theme.dark ? "#6B7B8C" : "#8494A5"
    readonly property color checkboxDisabled: Theme.dark ? "#1E2731" : "#EEF2F6"
    readonly property color focusRing: Theme.dark ? "#5AB3FF" : "#0064AF"

    // What white stands on: the same in both appearances, as white on the dark values could not be read.
    readonly property color fill: "#0064AF"
    readonly property color fillHover: "#00589B"
    readonly property color fillPressed: "#004A82"
    readonly property color danger: "#C2412D"
    readonly property color dangerHover: "#AD3826"
    readonly property color dangerPressed: "#962F1F"
    readonly property color white: "#FFFFFF"

    // On the hero card, which is deep blue in both appearances.
    readonly property color heroText: "#C6DCF0"
    readonly property color heroOverline: "#B9EBC6"
    readonly property color heroSymbol: "#08375F"
    readonly property color heroControl: "#FFFFFF"
    readonly property color heroControlHover: "#EAF3FC"
    readonly property color heroControlPressed: "#D5E6F7"
    readonly property color heroControlText: "#0064AF"
    readonly property color heroDisabledFill: "#59FFFFFF"
    readonly property color heroDisabledText: "#99082E52"
    readonly property color heroLink: "#D9FFFFFF"
    readonly property color heroLinkPressed: "#B3FFFFFF"

    // Durations in milliseconds. With less motion nothing moves, and what fades does so in one pace.
    readonly property int hoverDuration: 90
    readonly property int scrimDuration: Theme.reducedMotion ? 100 : 140
    readonly property int sheetDuration: Theme.reducedMotion ? 100 : 180
    readonly property int sheetOutDuration: Theme.reducedMotion ? 100 : 120
    readonly property int fadeDuration: Theme.reducedMotion ? 100 : 90
    readonly property int slideDuration: Theme.reducedMotion ? 0 : 90
    readonly property int openDuration: Theme.reducedMotion ? 0 : 160
    readonly property int growDuration: Theme.reducedMotion ? 0 : 320
    readonly property int sheetRise: Theme.reducedMotion ? 0 : 8 // pixels

    /// How type is set, in the order of `BrandText.Style`.
    readonly property list<TypeStyle> types: [
        TypeStyle { size: 40; weight: Font.Bold; line: 48; tracking: -0.4; color: root.white },
        TypeStyle { size: 30; weight: Font.DemiBold; line: 38; tracking: -0.2; color: root.ink },
        TypeStyle { size: 26; weight: Font.Bold; line: 32; tracking: -0.2; color: root.text },
        TypeStyle { size: 22; weight: Font.DemiBold; line: 28; tracking: -0.1; color: root.text },
        TypeStyle { size: 20; weight: Font.DemiBold; line: 26; tracking: -0.1; color: root.text },
        TypeStyle { size: 18; weight: Font.Bold; line: 22; tracking: -0.4; color: root.ink },
        TypeStyle { size: 17; weight: Font.DemiBold; line: 22; tracking: -0.25; color: root.text },
        TypeStyle { size: 14; weight: Font.DemiBold; line: 19; tracking: -0.1; color: root.text },
        TypeStyle { size: 13; weight: Font.Normal; line: 19; color: root.text },
        TypeStyle { size: 13; weight: Font.Medium; line: 19; color: root.text },
        TypeStyle { size: 13; weight: Font.DemiBold; line: 19; color: root.text },
        TypeStyle { size: 12; weight: Font.Normal; line: 18; color: root.text },
        TypeStyle { size: 12; weight: Font.Medium; line: 18; color: root.text },
        TypeStyle { size: 11; weight: Font.Normal; line: 16; color: root.text2 },
        TypeStyle { size: 11; weight: Font.Medium; line: 16; color: root.text2 },
        TypeStyle { size: 11; weight: Font.DemiBold; line: 14; tracking: 0.6; color: root.text3 },
        TypeStyle { size: 10; weight: Font.Normal; line: 15; mono: true; color: root.text3 }
    ]

    /// Symbol and ground of a class of safety, by its place in the order of classes.
    function safetyTint(safety: int): color {
        switch (safety) {
        case 0: return root.green;
        case 1: return root.accent;
        case 2: return root.amber;
        case 3: return root.muted;
        default: return root.text2;
        }
    }
    function safetyWash(safety: int): color {
        switch (safety) {
        case 0: return root.limeWash;
        case 1: return root.blueWash;
        case 2: return root.peachWash;
        default: return root.lilacWash;
        }
    }

    /// A measure in pixels at the size of text that the user has chosen.
    function scaled(pixels: real): real {
        return Math.round(pixels * Theme.fontScale);
    }

    /// A colour that lets its ground through.
    function translucent(color: color, opacity: real): color {
        return Qt.rgba(color.r, color.g, color.b, opacity);
    }
}
