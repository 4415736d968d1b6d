#pragma once

#include <QString>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay::services {

// Where a published snapshot set lies under the data folder:
//   sets/<id>/manifest.json, sets/<id>/formula.json, sets/<id>/cask.json,
//   sets/<id>/details/<kind>/<detailFileName(name)>,
//   current -> sets/<id>   (a symbolic link, replaced in one rename on publication)
namespace catalogLayout {

QString setsFolder(const QString& dataDir);
QString setFolder(const QString& dataDir, const QString& snapshotID);
QString currentLink(const QString& dataDir);
// The folder of the set that "current" names, or "" when nothing is published.
QString currentSetFolder(const QString& dataDir);

QString manifestPath(const QString& setFolder);
QString snapshotPath(const QString& setFolder, HomebrewCatalogKind kind);
QString detailPath(const QString& setFolder, HomebrewCatalogKind kind, const QString& name);

// A file name for any package name: ASCII letters, digits, "-", "." and "_" stay, every
// other byte becomes %XX, so no name can climb out of its folder.
QString detailFileName(const QString& name);

// Snapshot ids are letters, digits, ".", "_" and "-", and never "." or "..".
bool isSnapshotID(const QString& text);

} // namespace catalogLayout
} // namespace quillbay::services
