#pragma once

#include <QHashFunctions>
#include <QString>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay {

// One document of the catalog service: what is requested and under which file name its
// answer is cached.
class HomebrewEndpoint
{
public:
    enum class Case { catalogManifest, catalogSnapshot, formulaDetail, caskDetail };

    static HomebrewEndpoint catalogManifest() { return HomebrewEndpoint(Case::catalogManifest, {}, {}); }
    // The path comes from a validated manifest and is requested as it stands.
    static HomebrewEndpoint catalogSnapshot(HomebrewCatalogKind kind, const QString& path)
    {
        return HomebrewEndpoint(Case::catalogSnapshot, kind, path);
    }
    static HomebrewEndpoint formulaDetail(const QString& name)
    {
        return HomebrewEndpoint(Case::formulaDetail, HomebrewCatalogKind::formula, name);
    }
    static HomebrewEndpoint caskDetail(const QString& token)
    {
        return HomebrewEndpoint(Case::caskDetail, HomebrewCatalogKind::cask, token);
    }
    static HomebrewEndpoint detail(HomebrewCatalogKind kind, const QString& identifier)
    {
        return kind == HomebrewCatalogKind::formula ? formulaDetail(identifier) : caskDetail(identifier);
    }

    Case kind() const { return m_case; }
    HomebrewCatalogKind catalogKind() const { return m_catalogKind; }
    // The snapshot path, formula name or cask token.
    const QString& payload() const { return m_payload; }

    // The request path, percent-encoded where names are involved.
    QString path() const;
    // The file name of the cached body without its extension.
    QString cacheStem() const;

    friend bool operator==(const HomebrewEndpoint&, const HomebrewEndpoint&) = default;

private:
    HomebrewEndpoint(Case kind, HomebrewCatalogKind catalogKind, QString payload)
        : m_case(kind)
        , m_catalogKind(catalogKind)
        , m_payload(std::move(payload))
    {
    }

    Case m_case;
    HomebrewCatalogKind m_catalogKind;
    QString m_payload;
};

inline size_t qHash(const HomebrewEndpoint& endpoint, size_t seed = 0)
{
    return qHashMulti(seed, static_cast<int>(endpoint.kind()), static_cast<int>(endpoint.catalogKind()),
                      endpoint.payload());
}

// Letters, marks and numbers of any script pass, as do "-", ".", "_" and "~"; every other
// character becomes %XX per UTF-8 byte. Text that is not valid UTF-16 gives "".
QString percentEncodedName(const QString& name);

// "/" and then ":" replaced by "-", nothing else: cache names stay readable.
QString sanitizedCacheName(const QString& text);

} // namespace quillbay
