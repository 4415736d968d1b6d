#pragma once

#include <QDateTime>
#include <QString>
#include <memory>
#include <optional>

namespace quillbay {

// A property list read from a file, XML or binary. Owns the parsed tree; nodes handed
// out below it live as long as this object.
class PropertyList
{
public:
    using Node = void*;

    // Absent when the file cannot be read or holds no property list.
    static std::optional<PropertyList> readFile(const QString& path);

    Node root() const { return m_root.get(); }
    static bool isDictionary(Node node);
    static bool isArray(Node node);

    // The value under `key` of a dictionary node; null when absent or `node` is not a
    // dictionary.
    static Node item(Node dictionary, const char* key);
    static int arraySize(Node array);
    static Node arrayItem(Node array, int index);

    static std::optional<QString> stringValue(Node node);
    static std::optional<QDateTime> dateValue(Node node);

private:
    struct Free
    {
        void operator()(void* node) const;
    };
    std::unique_ptr<void, Free> m_root;
};

} // namespace quillbay
