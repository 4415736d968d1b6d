#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <optional>
#include <variant>

#include "homebrew_catalog/HomebrewCask.h"
#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_catalog/HomebrewDependencySection.h"
#include "homebrew_catalog/HomebrewError.h"
#include "homebrew_catalog/HomebrewFormula.h"
#include "homebrew_catalog/HomebrewPackageRoute.h"

namespace quillbay {

// The full record of one package and what the package page derives from it.
class HomebrewPackageDetail
{
public:
    HomebrewPackageDetail(HomebrewFormula formula)
        : m_value(std::move(formula))
    {
    }
    HomebrewPackageDetail(HomebrewCask cask)
        : m_value(std::move(cask))
    {
    }

    HomebrewCatalogKind kind() const
    {
        return std::holds_alternative<HomebrewFormula>(m_value) ? HomebrewCatalogKind::formula
                                                                : HomebrewCatalogKind::cask;
    }
    const HomebrewFormula* formula() const { return std::get_if<HomebrewFormula>(&m_value); }
    const HomebrewCask* cask() const { return std::get_if<HomebrewCask>(&m_value); }

    // "formula:wget", "cask:firefox".
    QString id() const;
    QString identifier() const;

    QList<HomebrewDependencySection> dependencySections() const;
    QStringList requirementLines() const;
    // The version, with "_<revision>" for a revised formula; "—" when unknown.
    QString currentVersionText() const;
    std::optional<HomebrewPackageRoute> replacementRoute() const;
    QString installCommand() const;

    friend bool operator==(const HomebrewPackageDetail&, const HomebrewPackageDetail&) = default;

private:
    std::variant<HomebrewFormula, HomebrewCask> m_value;
};

// Reads a detail document of the given kind; the validation step of a detail fetch.
HomebrewResult<HomebrewPackageDetail> decodeDetail(HomebrewCatalogKind kind, const QByteArray& bytes);

} // namespace quillbay
