#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

#include "homebrew_catalog/HomebrewJSONValue.h"

namespace quillbay {

// A cask as the detail service delivers it. Only the token is required.
struct HomebrewCask
{
    QString token;
    std::optional<QString> fullToken;
    std::optional<QStringList> oldTokens;
    std::optional<QString> tap;
    std::optional<QStringList> names;
    std::optional<QString> description;
    std::optional<QString> homepage;
    std::optional<QString> version;
    std::optional<bool> autoUpdates;
    std::optional<QString> caveats;
    std::optional<bool> caveatsRosetta;
    // An object value: members sorted by key.
    std::optional<HomebrewJSONValue> dependsOn;
    std::optional<bool> deprecated;
    std::optional<QString> deprecationDate;
    std::optional<QString> deprecationReason;
    std::optional<QString> deprecationReplacementFormula;
    std::optional<QString> deprecationReplacementCask;
    std::optional<bool> disabled;
    std::optional<QString> disableDate;
    std::optional<QString> disableReason;
    std::optional<QString> disableReplacementFormula;
    std::optional<QString> disableReplacementCask;
    std::optional<QString> generatedDate;

    friend bool operator==(const HomebrewCask&, const HomebrewCask&) = default;
};

} // namespace quillbay
