pragma Singleton

import QtQuick
import QorvaneStyle

/// Every colour, size and duration of the interface.
QtObject {
    readonly property bool isDark: Appearance.isDark

    // Grounds
    readonly property color window: isDark ? "#1E1E20" : "#FFFFFF"
    readonly property color sidebar: isDark ? "#28282B" : "#F2F2F4"
    readonly property color card: isDark ? "#29292C" : "#F6F6F8"
    readonly property color field: isDark ? "#343438" : "#EEEEF1"
    readonly property color button: isDark ? "#48484D" : "#EEEEF1"
    readonly property color emptyCell: isDark ? "#2C2C30" : "#ECECEF"
    readonly property color emptyHit: "#4D8E8E93" // gray at 30 %
    readonly property color popup: isDark ? "#333337" : "#FFFFFF"
    readonly property color hairline: isDark ? "#3A3A3E" : "#E2E2E6"
    readonly property color popupLine: isDark ? "#4C4C51" : "#E2E2E6"
    readonly property color hover: isDark ? "#14FFFFFF" : "#0D000000"
    /// Over everything that waits behind a dialog.
    readonly property color veil: "#66000000"
    /// One of the layers that a soft shadow is made of.
    readonly property color shadow: isDark ? "#07000000" : "#03000000"
    readonly property color pressed: isDark ? "#24FFFFFF" : "#1A000000"

    // Ink. The secondary shades are the lightest, or darkest, that keep 4.5 to 1 on every ground above but buttons,
    // hovered ones too.
    readonly property color text: isDark ? "#F2F2F4" : "#1D1D1F"
    readonly property color secondaryText: isDark ? "#B2B2B8" : "#626267"
    readonly property color accentInk: Appearance.inkOn(accentFill)
    readonly property color destructive: isDark ? "#FF7A70" : "#C9211E"

    // The accent is the desktop's where it names one.
    readonly property color accent: Appearance.hasAccentColor ? Appearance.accentColor
                                                              : isDark ? "#3B8CFF" : "#0A6CFF"
    readonly property color accentFill: Appearance.fillFor(Appearance.hasAccentColor ? Appearance.accentColor
                                                                                     : isDark ? "#2F7CF0" : "#0A6CFF")
    // Of the small captions in the sidebar too, and of the rings beside them: they keep 4.5 to 1 there, pressed rows
    // included.
    readonly property color orange: isDark ? "#FFA733" : "#8E4D00"
    readonly property color blue: isDark ? "#82B8FF" : "#0654CC"
    // Of a mark without words: it keeps 3 to 1 on the same rows.
    readonly property color green: isDark ? "#46C768" : "#23873F"
    readonly property color star: "#F7B500"

    // The marks of a video lie on its picture, so they are the same in light and dark.
    readonly property color videoBadge: "#E0352B"
    readonly property color inkOnPicture: "#FFFFFF"
    readonly property color badgeDisc: "#99000000"
    readonly property color badgeShadow: "#CC000000"

    // Type, in pixels
    readonly property int caption2Size: 10
    readonly property int captionSize: 11
    readonly property int subheadlineSize: 12
    readonly property int bodySize: 13
    readonly property int headlineSize: 13
    readonly property int title3Size: 15
    readonly property int title2Size: 17
    readonly property int titleSize: 22

    // Sizes: everything sits on a grid of eight.
    readonly property int unit: 8
    readonly property int rowHeight: 28
    readonly property int rowRadius: 6
    readonly property int fieldRadius: 8
    readonly property int cellRadius: 8
    readonly property int cardRadius: 10
    readonly property int cardPadding: 12
    readonly property int toolbarHeight: 52
    readonly property int iconSize: 18
    readonly property int controlHeight: 30
    readonly property int sidebarHeaderHeight: 32
    readonly property int sidebarIconX: 13
    readonly property int sidebarIconGap: 6
    readonly property int contentPadding: 16
    readonly property int pagePadding: 32
    readonly property int pageIconSize: 48
    readonly property int photoSize: 200
    readonly property int photoGap: 10
    readonly property int hitWidth: 180
    readonly property int hitPictureHeight: 120
    readonly property int hitHeight: 140
    readonly property int hitGap: 16
    readonly property int badgeMargin: 6
    readonly property int badgePadding: 6
    readonly property int badgeRadius: 4
    readonly property int playDiscSize: 40
    readonly property int openPlayDiscSize: 72
    readonly property int selectionStroke: 3
    readonly property int focusStroke: 2

    // Patience, in milliseconds
    readonly property int untilWaitingShows: 300
    readonly property int untilTip: 700
    readonly property int tipStays: 6000

    // Motion, in milliseconds
    readonly property int quick: Appearance.reducesMotion ? 0 : 120
    readonly property int panel: Appearance.reducesMotion ? 0 : 200
    readonly property int ring: Appearance.reducesMotion ? 0 : 1000
    readonly property int turn: 900 // of a waiting mark, which rests where motion is reduced
    readonly property int easing: Easing.OutCubic
}
