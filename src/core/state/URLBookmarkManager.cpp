#include "core/state/URLBookmarkManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <nlohmann/json.hpp>

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "platform/FolderBookmark.h"

namespace quillbay {

namespace {

// Decodes the whole file or nothing: one malformed entry (a missing key, a wrong type,
// bytes that are not base64) makes the file unreadable, as a strict decoder would.
std::optional<QList<URLBookmark>> decode(const QByteArray& bytes, QString* error)
{
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = parseError.errorString();
        return std::nullopt;
    }
    if (!document.isArray()) {
        *error = QStringLiteral("The data couldn’t be read because it isn’t in the correct format.");
        return std::nullopt;
    }
    QList<URLBookmark> list;
    for (const QJsonValue& value : document.array()) {
        const QJsonObject object = value.toObject();
        const QJsonValue urlString = object.value(QLatin1String("urlString"));
        const QJsonValue bookmarkData = object.value(QLatin1String("bookmarkData"));
        if (!value.isObject() || !urlString.isString() || !bookmarkData.isString()) {
            *error = QStringLiteral("The data couldn’t be read because it is missing.");
            return std::nullopt;
        }
        const auto decoded = QByteArray::fromBase64Encoding(bookmarkData.toString().toLatin1(),
                                                            QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            *error = QStringLiteral("The data couldn’t be read because it isn’t in the correct format.");
            return std::nullopt;
        }
        URLBookmark entry;
        entry.urlString = urlString.toString();
        entry.bookmarkData = *decoded;
        list.append(std::move(entry));
    }
    return list;
}

QByteArray encode(const QList<URLBookmark>& list)
{
    // Keys in declared order, which QJsonObject (sorted by key) would not keep.
    auto array = nlohmann::ordered_json::array();
    for (const URLBookmark& entry : list) {
        nlohmann::ordered_json object;
        object["urlString"] = entry.urlString.toStdString();
        object["bookmarkData"] = entry.bookmarkData.toBase64().toStdString();
        array.push_back(std::move(object));
    }
    return QByteArray::fromStdString(array.dump());
}

} // namespace

URLBookmarkManager::URLBookmarkManager(QString folder)
    : m_folder(std::move(folder))
{
}

QString URLBookmarkManager::fileName(File file)
{
    switch (file) {
    case File::customArchives:
        return QStringLiteral("customArchivesURLs.json");
    case File::customDerivedData:
        return QStringLiteral("customDerivedDataURLs.json");
    }
    Q_UNREACHABLE();
}

QString URLBookmarkManager::filePath(File file) const
{
    if (m_folder.isEmpty())
        return {};
    return QDir(m_folder).filePath(fileName(file));
}

QList<URLBookmark> URLBookmarkManager::load(File file) const
{
    const QString path = filePath(file);
    if (path.isEmpty() || !QFileInfo::exists(path))
        return {};
    QFile input(path);
    QString error;
    std::optional<QList<URLBookmark>> decoded;
    if (input.open(QIODevice::ReadOnly))
        decoded = decode(input.readAll(), &error);
    else
        error = input.errorString();
    if (!decoded) {
        qCCritical(logApp).noquote() << QStringLiteral("Failed to load bookmarks: %1").arg(error);
        return {};
    }

    QList<URLBookmark> list = std::move(*decoded);
    bool changed = false;
    for (URLBookmark& entry : list) {
        QString resolveError;
        const auto resolved = FolderBookmark::resolve(entry.bookmarkData, &resolveError);
        if (!resolved) {
            qCCritical(logApp).noquote() << QStringLiteral("Failed to resolve a custom Xcode folder bookmark: %1")
                                                .arg(privateText(resolveError));
            continue;
        }
        if (resolved->isStale) {
            const QByteArray renewed = FolderBookmark::make(resolved->path);
            if (!renewed.isEmpty()) {
                entry.bookmarkData = renewed;
                changed = true;
            }
        }
        if (FolderBookmark::canAccess(resolved->path))
            entry.url = resolved->path;
    }
    if (changed) {
        QString saveError;
        if (!save(list, file, &saveError))
            qCCritical(logApp).noquote()
                << QStringLiteral("Failed to update custom Xcode folder bookmarks: %1").arg(privateText(saveError));
    }
    return list;
}

bool URLBookmarkManager::save(const QList<URLBookmark>& list, File file, QString* error) const
{
    const QString path = filePath(file);
    if (path.isEmpty() || !QDir().mkpath(m_folder)) {
        if (error)
            *error
                = QStringLiteral("The file “%1” couldn’t be saved because there is no such file.").arg(fileName(file));
        return false;
    }
    QString writeError;
    if (!writeFileAtomically(path, encode(list), &writeError)) {
        if (error)
            *error = QStringLiteral("The file “%1” couldn’t be saved: %2").arg(fileName(file), writeError);
        return false;
    }
    qCDebug(logApp) << "Custom Xcode folder bookmarks saved.";
    return true;
}

} // namespace quillbay
