#include "core/views/SymbolIcons.h"

#include <QHash>
#include <QStandardPaths>

namespace quillbay {

namespace {

// Symbol name -> freedesktop icon names, best first.
const QHash<QString, QStringList>& symbolTable()
{
    static const QHash<QString, QStringList> table {
        {QStringLiteral("clock.arrow.circlepath"), {QStringLiteral("view-history"), QStringLiteral("chronometer")}},
        {QStringLiteral("app.badge"), {QStringLiteral("preferences-desktop-icons"), QStringLiteral("image-x-generic")}},
        {QStringLiteral("externaldrive.badge.minus"),
         {QStringLiteral("edit-clear-all"), QStringLiteral("drive-harddisk")}},
        {QStringLiteral("books.vertical"), {QStringLiteral("bookmarks"), QStringLiteral("document-open")}},
        {QStringLiteral("shippingbox.fill"),
         {QStringLiteral("package-x-generic"), QStringLiteral("application-x-archive")}},
        {QStringLiteral("shippingbox"), {QStringLiteral("package-x-generic")}},
        {QStringLiteral("info.circle"), {QStringLiteral("dialog-information"), QStringLiteral("help-about")}},
        {QStringLiteral("exclamationmark.triangle"), {QStringLiteral("dialog-warning")}},
        {QStringLiteral("gearshape"), {QStringLiteral("configure"), QStringLiteral("preferences-system")}},
        {QStringLiteral("hammer"), {QStringLiteral("run-build"), QStringLiteral("tools")}},
        {QStringLiteral("folder"), {QStringLiteral("folder")}},
        {QStringLiteral("folder.badge.questionmark"), {QStringLiteral("folder-locked"), QStringLiteral("folder")}},
        {QStringLiteral("arrow.clockwise"), {QStringLiteral("view-refresh")}},
        {QStringLiteral("arrow.trianglehead.2.clockwise.rotate.90"), {QStringLiteral("view-refresh")}},
        {QStringLiteral("trash"), {QStringLiteral("edit-delete")}},
        {QStringLiteral("magnifyingglass"), {QStringLiteral("edit-find")}},
        {QStringLiteral("doc.on.doc"), {QStringLiteral("edit-copy")}},
        {QStringLiteral("terminal"), {QStringLiteral("utilities-terminal")}},
        {QStringLiteral("square.and.arrow.down"), {QStringLiteral("download")}},
        {QStringLiteral("link"), {QStringLiteral("link")}},
        {QStringLiteral("heart"), {QStringLiteral("emblem-favorite")}},
        {QStringLiteral("arrow.down.circle"),
         {QStringLiteral("update-none"), QStringLiteral("system-software-update")}},
        {QStringLiteral("ellipsis.circle"), {QStringLiteral("overflow-menu"), QStringLiteral("application-menu")}},
        {QStringLiteral("checkmark"), {QStringLiteral("checkmark"), QStringLiteral("dialog-ok")}},
        {QStringLiteral("apple.logo"), {QStringLiteral("cpu")}},
        // Releases table.
        {QStringLiteral("info.circle.fill"), {QStringLiteral("dialog-information"), QStringLiteral("help-about")}},
        {QStringLiteral("arrow.left.and.right"),
         {QStringLiteral("zoom-fit-width"), QStringLiteral("distribute-horizontal-x")}},
        {QStringLiteral("line.3.horizontal.decrease"), {QStringLiteral("view-filter")}},
        {QStringLiteral("tablecells"), {QStringLiteral("table"), QStringLiteral("object-columns")}},
        {QStringLiteral("doc.text"), {QStringLiteral("text-x-generic"), QStringLiteral("x-office-document")}},
        {QStringLiteral("cpu"), {QStringLiteral("cpu")}},
        {QStringLiteral("swift"), {QStringLiteral("text-x-csrc"), QStringLiteral("applications-development")}},
        {QStringLiteral("desktopcomputer"), {QStringLiteral("computer"), QStringLiteral("video-display")}},
        {QStringLiteral("iphone"), {QStringLiteral("smartphone"), QStringLiteral("phone")}},
        {QStringLiteral("applewatch"), {QStringLiteral("mail-thread-watch"), QStringLiteral("smartphone")}},
        {QStringLiteral("tv"), {QStringLiteral("video-television"), QStringLiteral("tv")}},
        {QStringLiteral("vision.pro"), {QStringLiteral("face-glasses"), QStringLiteral("view-preview")}},
        {QStringLiteral("externaldrive.badge.questionmark"),
         {QStringLiteral("drive-harddisk"), QStringLiteral("dialog-question")}},
        {QStringLiteral("checkmark.circle"), {QStringLiteral("emblem-success"), QStringLiteral("dialog-ok")}},
        // Sidebar footer and tip window.
        {QStringLiteral("arrow.down.circle.fill"),
         {QStringLiteral("update-low"), QStringLiteral("system-software-update")}},
        {QStringLiteral("dollarsign.circle"), {QStringLiteral("help-donate-usd"), QStringLiteral("help-donate")}},
        {QStringLiteral("hand.thumbsup"), {QStringLiteral("rating"), QStringLiteral("love")}},
        {QStringLiteral("envelope"), {QStringLiteral("mail-message"), QStringLiteral("mail-send")}},
        {QStringLiteral("list.bullet.rectangle.portrait"),
         {QStringLiteral("view-list-text"), QStringLiteral("view-list-details")}},
        {QStringLiteral("power"), {QStringLiteral("system-shutdown"), QStringLiteral("application-exit")}},
        {QStringLiteral("heart.circle.fill"), {QStringLiteral("love"), QStringLiteral("emblem-favorite")}},
        {QStringLiteral("leaf.fill"), {QStringLiteral("run-clean"), QStringLiteral("flag-green")}},
        {QStringLiteral("info.circle.fill"), {QStringLiteral("dialog-information"), QStringLiteral("help-about")}},
        {QStringLiteral("externaldrive.badge.questionmark"),
         {QStringLiteral("drive-harddisk"), QStringLiteral("dialog-question")}},
        {QStringLiteral("checkmark.circle"), {QStringLiteral("dialog-ok-apply"), QStringLiteral("checkmark")}},
        {QStringLiteral("iphone"), {QStringLiteral("smartphone"), QStringLiteral("phone")}},
        {QStringLiteral("applewatch"), {QStringLiteral("smartwatch"), QStringLiteral("chronometer")}},
        {QStringLiteral("tv"), {QStringLiteral("video-television"), QStringLiteral("input-tvremote")}},
        {QStringLiteral("vision.pro"), {QStringLiteral("video-headset"), QStringLiteral("audio-headset")}},
        {QStringLiteral("desktopcomputer"), {QStringLiteral("computer"), QStringLiteral("video-display")}},
        {QStringLiteral("app"),
         {QStringLiteral("preferences-desktop-icons"), QStringLiteral("application-x-executable")}},
        {QStringLiteral("photo"), {QStringLiteral("image-x-generic"), QStringLiteral("view-preview")}},
        {QStringLiteral("function"), {QStringLiteral("code-function"), QStringLiteral("formula")}},
        {QStringLiteral("questionmark.circle"), {QStringLiteral("help-contextual"), QStringLiteral("help-about")}},
        {QStringLiteral("arrow.trianglehead.2.clockwise.rotate.90.circle"),
         {QStringLiteral("view-refresh"), QStringLiteral("update-medium")}},
        {QStringLiteral("minus.circle"), {QStringLiteral("list-remove"), QStringLiteral("edit-delete")}},
        // Homebrew catalog and package page.
        {QStringLiteral("square.grid.3x1.below.line.grid.1x2"),
         {QStringLiteral("view-sort-descending"), QStringLiteral("view-sort-ascending")}},
        {QStringLiteral("nosign"), {QStringLiteral("dialog-cancel"), QStringLiteral("process-stop")}},
        {QStringLiteral("apple.terminal.fill"), {QStringLiteral("utilities-terminal")}},
        {QStringLiteral("questionmark.circle"), {QStringLiteral("question"), QStringLiteral("dialog-question")}},
        {QStringLiteral("arrow.trianglehead.2.clockwise.rotate.90.circle"),
         {QStringLiteral("update-medium"), QStringLiteral("view-refresh")}},
    };
    return table;
}

} // namespace

QIcon symbolIcon(const QString& symbolName)
{
    static const bool themeReady = (installIconTheme(), true);
    Q_UNUSED(themeReady);
    const auto it = symbolTable().constFind(symbolName);
    if (it == symbolTable().cend())
        return {};
    for (const QString& name : *it) {
        if (QIcon::hasThemeIcon(name))
            return QIcon::fromTheme(name);
    }
    return {};
}

void installIconTheme()
{
    // Offscreen and on desktops without a theme setting, Qt finds no theme by itself.
    if (QIcon::hasThemeIcon(QStringLiteral("view-refresh")))
        return;
    // Without a desktop session (offscreen, minimal window managers) Qt searches only its
    // resources; add the shared icon folders and name the theme the project depends on.
    QStringList paths = QIcon::themeSearchPaths();
    const QStringList dataDirs = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (const QString& dir : dataDirs) {
        const QString icons = dir + QStringLiteral("/icons");
        if (!paths.contains(icons))
            paths << icons;
    }
    QIcon::setThemeSearchPaths(paths);
    QIcon::setThemeName(QStringLiteral("breeze"));
}

} // namespace quillbay
