#pragma once

#include <QByteArray>
#include <QString>
#include <QUuid>
#include <optional>

namespace quillbay {

// A folder the user added, with its bookmark. `id` is new at every load and creation and
// is never stored; `url` is present only when the bookmark resolved to a folder that can be
// read and written now, so a folder that went away stays listed (and removable) without it.
struct URLBookmark
{
    QUuid id = QUuid::createUuid();
    QString urlString;
    QByteArray bookmarkData;
    std::optional<QString> url;
};

} // namespace quillbay
