#include "xcode_cleanup/PropertyList.h"

#include <QFile>
#include <limits>

#include <plist/plist.h>

namespace quillbay {

namespace {

plist_t node(PropertyList::Node n)
{
    return static_cast<plist_t>(n);
}

// Property-list dates count from 2001-01-01 UTC.
constexpr qint64 referenceDateOffsetSeconds = 978307200;

} // namespace

void PropertyList::Free::operator()(void* n) const
{
    plist_free(node(n));
}

std::optional<PropertyList> PropertyList::readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<uint32_t>::max())
        return std::nullopt;
    plist_t parsed = nullptr;
    plist_from_memory(bytes.constData(), static_cast<uint32_t>(bytes.size()), &parsed);
    if (!parsed)
        return std::nullopt;
    PropertyList list;
    list.m_root.reset(parsed);
    return list;
}

bool PropertyList::isDictionary(Node n)
{
    return n && plist_get_node_type(node(n)) == PLIST_DICT;
}

bool PropertyList::isArray(Node n)
{
    return n && plist_get_node_type(node(n)) == PLIST_ARRAY;
}

PropertyList::Node PropertyList::item(Node dictionary, const char* key)
{
    if (!dictionary || plist_get_node_type(node(dictionary)) != PLIST_DICT)
        return nullptr;
    return plist_dict_get_item(node(dictionary), key);
}

int PropertyList::arraySize(Node array)
{
    if (!array || plist_get_node_type(node(array)) != PLIST_ARRAY)
        return 0;
    return static_cast<int>(plist_array_get_size(node(array)));
}

PropertyList::Node PropertyList::arrayItem(Node array, int index)
{
    if (index < 0 || index >= arraySize(array))
        return nullptr;
    return plist_array_get_item(node(array), static_cast<uint32_t>(index));
}

std::optional<QString> PropertyList::stringValue(Node n)
{
    if (!n || plist_get_node_type(node(n)) != PLIST_STRING)
        return std::nullopt;
    char* value = nullptr;
    plist_get_string_val(node(n), &value);
    if (!value)
        return std::nullopt;
    QString text = QString::fromUtf8(value);
    free(value);
    return text;
}

std::optional<QDateTime> PropertyList::dateValue(Node n)
{
    if (!n || plist_get_node_type(node(n)) != PLIST_DATE)
        return std::nullopt;
    int32_t seconds = 0;
    int32_t microseconds = 0;
    plist_get_date_val(node(n), &seconds, &microseconds);
    const qint64 msecs = (referenceDateOffsetSeconds + seconds) * 1000 + microseconds / 1000;
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
}

} // namespace quillbay
