#include <QColor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <span>
#include <utility>

#include "platform/Appearance.h"

namespace quillbay {

namespace {

using RoleColor = std::pair<QPalette::ColorRole, QRgb>;

// Close to the desktop's own light and dark schemes, with text, placeholder text
// included, kept above 4.5:1 against the background it is drawn on.
constexpr RoleColor lightColors[] = {
    {QPalette::Window, 0xefefef},
    {QPalette::WindowText, 0x1d1d1f},
    {QPalette::Base, 0xffffff},
    {QPalette::AlternateBase, 0xf5f5f5},
    {QPalette::Text, 0x1d1d1f},
    {QPalette::Button, 0xe6e6e6},
    {QPalette::ButtonText, 0x1d1d1f},
    {QPalette::BrightText, 0xffffff},
    {QPalette::Light, 0xffffff},
    {QPalette::Midlight, 0xf2f2f2},
    {QPalette::Mid, 0xb8b8b8},
    {QPalette::Dark, 0x9f9f9f},
    {QPalette::Shadow, 0x767676},
    {QPalette::Highlight, 0x308cc6},
    {QPalette::HighlightedText, 0xffffff},
    {QPalette::Link, 0x005fb8},
    {QPalette::LinkVisited, 0x6b3fa0},
    {QPalette::ToolTipBase, 0xffffdc},
    {QPalette::ToolTipText, 0x1d1d1f},
    {QPalette::PlaceholderText, 0x6e6e73},
};
constexpr QRgb lightDisabledText = 0x9a9a9a;

constexpr RoleColor darkColors[] = {
    {QPalette::Window, 0x2b2b2d},
    {QPalette::WindowText, 0xe8e8ea},
    {QPalette::Base, 0x1e1e20},
    {QPalette::AlternateBase, 0x262629},
    {QPalette::Text, 0xe8e8ea},
    {QPalette::Button, 0x3a3a3d},
    {QPalette::ButtonText, 0xe8e8ea},
    {QPalette::BrightText, 0xffffff},
    {QPalette::Light, 0x555559},
    {QPalette::Midlight, 0x46464a},
    {QPalette::Mid, 0x5c5c61},
    {QPalette::Dark, 0x1a1a1c},
    {QPalette::Shadow, 0x0c0c0d},
    {QPalette::Highlight, 0x2f6fc4},
    {QPalette::HighlightedText, 0xffffff},
    {QPalette::Link, 0x6cb0ff},
    {QPalette::LinkVisited, 0xb48ef0},
    {QPalette::ToolTipBase, 0x3a3a3d},
    {QPalette::ToolTipText, 0xe8e8ea},
    {QPalette::PlaceholderText, 0x9a9aa0},
};
constexpr QRgb darkDisabledText = 0x808086;

QPalette paletteOf(std::span<const RoleColor> colors, QRgb disabledText)
{
    QPalette palette;
    for (const auto& [role, rgb] : colors)
        palette.setColor(role, QColor(rgb));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(disabledText));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, palette.color(QPalette::Mid));
    return palette;
}

bool iconThemeExists(const QString& name)
{
    for (const QString& folder : QIcon::themeSearchPaths()) {
        if (QFileInfo::exists(folder + QLatin1Char('/') + name + QStringLiteral("/index.theme")))
            return true;
    }
    return false;
}

// Icon themes come in light and dark pairs ("breeze", "breeze-dark"); symbols drawn for
// one background vanish on the other, so the icons follow the palette. Following the
// system restores whatever theme the desktop had chosen.
void matchIconTheme(ApplicationAppearance appearance)
{
    static const QString systemTheme = QIcon::themeName();
    const QString suffix = QStringLiteral("-dark");
    const QString lightTheme = systemTheme.endsWith(suffix) ? systemTheme.chopped(suffix.size()) : systemTheme;
    QString wanted = systemTheme;
    if (appearance == ApplicationAppearance::light)
        wanted = lightTheme;
    else if (appearance == ApplicationAppearance::dark)
        wanted = lightTheme + suffix;
    if (wanted.isEmpty() || wanted == QIcon::themeName() || !iconThemeExists(wanted))
        return;
    QIcon::setThemeName(wanted);
}

} // namespace

QPalette applicationAppearancePalette(ApplicationAppearance appearance)
{
    switch (appearance) {
    case ApplicationAppearance::light:
        return paletteOf(lightColors, lightDisabledText);
    case ApplicationAppearance::dark:
        return paletteOf(darkColors, darkDisabledText);
    case ApplicationAppearance::system:
        break;
    }
    return QPalette();
}

void setApplicationAppearance(ApplicationAppearance appearance)
{
    // A palette with no role set lets the toolkit fall back to the style's and the
    // desktop's own colours, which is what following the system means here. The style of
    // a plain desktop (Fusion) draws everything from the palette, so a full palette is a
    // complete light or dark look.
    matchIconTheme(appearance);
    QGuiApplication::setPalette(applicationAppearancePalette(appearance));
}

} // namespace quillbay
