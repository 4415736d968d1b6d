#pragma once

#include <QException>
#include <QString>
#include <string>

namespace quillbay {

// The failure of a generation or a drop. Each kind has one fixed user-facing text, which
// the store shows as a toast; the domain and code tell failures apart in tests and logs.
// A QException, so that it crosses from the service's thread to the store's continuation
// as itself rather than wrapped.
class AssetMakerError : public QException
{
public:
    enum class Kind {
        corruptFile, // bytes or a file that give no image
        noSuchFile, // a missing template or resource folder
        corruptData, // a template that doesn't decode, a bad size or scale
        missingValue, // a template entry without one of its required strings
        fileExists, // two image-set names that are equal once folded
        missingTargetSize, // "Set Size" with a size outside 1 ... 8192 pixels
        writeFailed, // a folder or file that could not be written
        saveImageFailed, // no PNG form of a drawn image
    };

    AssetMakerError(Kind kind, const QString& description);

    static AssetMakerError corruptFile();
    static AssetMakerError noSuchFile(const QString& fileName = {});
    static AssetMakerError corruptData();
    static AssetMakerError missingValue();
    static AssetMakerError fileExists();
    static AssetMakerError missingTargetSize();
    static AssetMakerError writeFailed(const QString& fileName, const QString& reason);
    static AssetMakerError saveImageFailed();

    Kind kind() const { return m_kind; }
    QString domain() const;
    int code() const;
    const QString& localizedDescription() const { return m_description; }
    const char* what() const noexcept override { return m_what.c_str(); }
    void raise() const override { throw *this; }
    AssetMakerError* clone() const override { return new AssetMakerError(*this); }

private:
    Kind m_kind;
    QString m_description;
    std::string m_what;
};

} // namespace quillbay
