#include "assets_maker/AssetMakerError.h"

using namespace Qt::StringLiterals;

namespace quillbay {

AssetMakerError::AssetMakerError(Kind kind, const QString& description)
    : m_kind(kind)
    , m_description(description)
    , m_what(description.toStdString())
{
}

AssetMakerError AssetMakerError::corruptFile()
{
    return {Kind::corruptFile, u"The file couldn’t be opened because it isn’t in the correct format."_s};
}

AssetMakerError AssetMakerError::noSuchFile(const QString& fileName)
{
    if (fileName.isEmpty())
        return {Kind::noSuchFile, u"The file couldn’t be opened because there is no such file."_s};
    return {Kind::noSuchFile, u"The file “%1” couldn’t be opened because there is no such file."_s.arg(fileName)};
}

AssetMakerError AssetMakerError::corruptData()
{
    return {Kind::corruptData, u"The data couldn’t be read because it isn’t in the correct format."_s};
}

AssetMakerError AssetMakerError::missingValue()
{
    return {Kind::missingValue, u"The data couldn’t be read because it is missing."_s};
}

AssetMakerError AssetMakerError::fileExists()
{
    return {Kind::fileExists, u"The file couldn’t be saved because a file with the same name already exists."_s};
}

AssetMakerError AssetMakerError::missingTargetSize()
{
    return {Kind::missingTargetSize,
            u"The operation couldn’t be completed because a required value is missing or out of range."_s};
}

AssetMakerError AssetMakerError::writeFailed(const QString& fileName, const QString& reason)
{
    QString text
        = fileName.isEmpty() ? u"The file couldn’t be saved."_s : u"The file “%1” couldn’t be saved."_s.arg(fileName);
    if (!reason.isEmpty())
        text += u" "_s + reason;
    return {Kind::writeFailed, text};
}

AssetMakerError AssetMakerError::saveImageFailed()
{
    return {Kind::saveImageFailed, u"Getting the png from the current image failed"_s};
}

QString AssetMakerError::domain() const
{
    return m_kind == Kind::saveImageFailed ? u"Save image fail"_s : u"NSCocoaErrorDomain"_s;
}

int AssetMakerError::code() const
{
    // The codes of the corresponding Cocoa errors, so a log line reads the same on both
    // platforms.
    switch (m_kind) {
    case Kind::corruptFile:
        return 259;
    case Kind::noSuchFile:
        return 260;
    case Kind::corruptData:
        return 4864;
    case Kind::missingValue:
        return 4865;
    case Kind::fileExists:
        return 516;
    case Kind::missingTargetSize:
        return 1570;
    case Kind::writeFailed:
        return 512;
    case Kind::saveImageFailed:
        return -1;
    }
    Q_UNREACHABLE();
}

} // namespace quillbay
