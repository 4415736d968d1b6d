#include "foundation/PathContainment.h"

#include <QDir>
#include <QFileInfo>

namespace quillbay {

bool isPathInside(const QString& path, const QString& root)
{
    if (root.isEmpty() || path.isEmpty())
        return false;
    if (path == root)
        return true;
    if (root.endsWith(QLatin1Char('/')))
        return path.startsWith(root);
    return path.size() > root.size() && path.startsWith(root) && path.at(root.size()) == QLatin1Char('/');
}

QString standardizedPath(const QString& path)
{
    if (path.isEmpty())
        return path;
    QString clean = QDir::cleanPath(path);
    return clean;
}

QString resolvedPath(const QString& path)
{
    if (path.isEmpty())
        return path;
    const QString clean = standardizedPath(path);
    QString existing = clean;
    QString rest;
    while (!existing.isEmpty()) {
        const QString canonical = QFileInfo(existing).canonicalFilePath();
        if (!canonical.isEmpty())
            return rest.isEmpty() ? canonical : standardizedPath(canonical + QLatin1Char('/') + rest);
        const qsizetype slash = existing.lastIndexOf(QLatin1Char('/'));
        if (slash < 0)
            break;
        const QString name = existing.mid(slash + 1);
        rest = rest.isEmpty() ? name : name + QLatin1Char('/') + rest;
        existing = slash == 0 ? QStringLiteral("/") : existing.left(slash);
        if (existing == QLatin1String("/") && QFileInfo(existing).canonicalFilePath().isEmpty())
            break;
    }
    return clean;
}

} // namespace quillbay
