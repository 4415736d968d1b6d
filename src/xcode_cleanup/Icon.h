#pragma once

#include <QHashFunctions>
#include <QString>

namespace quillbay {

// What a cleanup row shows as its icon. The name's meaning depends on the kind: a file
// extension, an image of the program's own, a symbol name, or a named system image.
struct Icon
{
    enum class Kind { fileType, image, system, systemNsImage };

    Kind kind = Kind::system;
    QString name;

    static Icon fileType(const QString& extension) { return {Kind::fileType, extension}; }
    static Icon image(const QString& name) { return {Kind::image, name}; }
    static Icon system(const QString& symbol) { return {Kind::system, symbol}; }
    static Icon systemNsImage(const QString& name) { return {Kind::systemNsImage, name}; }

    friend bool operator==(const Icon& a, const Icon& b) = default;
    friend size_t qHash(const Icon& icon, size_t seed = 0) noexcept
    {
        return qHashMulti(seed, static_cast<int>(icon.kind), icon.name);
    }
};

// Names of the system images the scan uses.
inline QString folderImageName()
{
    return QStringLiteral("NSFolder");
}
inline QString multipleDocumentsImageName()
{
    return QStringLiteral("NSMultipleDocuments");
}

} // namespace quillbay
