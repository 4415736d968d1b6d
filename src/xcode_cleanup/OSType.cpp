#include "xcode_cleanup/OSType.h"

namespace quillbay {

OSType osTypeFromText(const QString& text)
{
    for (const OSType type : {OSType::iOS, OSType::watchOS, OSType::tvOS, OSType::macOS, OSType::visionOS}) {
        if (text == osTypeName(type))
            return type;
    }
    return OSType::other;
}

QString osTypeName(OSType type)
{
    switch (type) {
    case OSType::iOS:
        return QStringLiteral("iOS");
    case OSType::watchOS:
        return QStringLiteral("watchOS");
    case OSType::tvOS:
        return QStringLiteral("tvOS");
    case OSType::macOS:
        return QStringLiteral("macOS");
    case OSType::visionOS:
        return QStringLiteral("visionOS");
    case OSType::other:
        break;
    }
    return {};
}

} // namespace quillbay
