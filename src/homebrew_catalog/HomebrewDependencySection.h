#pragma once

#include <QList>
#include <QString>

#include "homebrew_catalog/HomebrewPackageRoute.h"

namespace quillbay {

// One titled list of dependencies on the package page.
struct HomebrewDependencySection
{
    QString title;
    QList<HomebrewPackageRoute> routes;

    QString id() const { return title; }
    friend bool operator==(const HomebrewDependencySection&, const HomebrewDependencySection&) = default;
};

} // namespace quillbay
