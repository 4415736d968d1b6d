#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "homebrew_catalog/HomebrewJSONValue.h"

namespace quillbay {

// A formula as the detail service delivers it: the fields of Homebrew's formula JSON
// that the program shows. Only the name is required.
struct HomebrewFormula
{
    struct Versions
    {
        std::optional<QString> stable;
        std::optional<QString> head;
        std::optional<bool> bottle;
        friend bool operator==(const Versions&, const Versions&) = default;
    };

    QString name;
    std::optional<QString> fullName;
    std::optional<QString> tap;
    std::optional<QStringList> oldNames;
    std::optional<QStringList> aliases;
    std::optional<QStringList> versionedFormulae;
    std::optional<QString> description;
    std::optional<QString> license;
    std::optional<QString> homepage;
    std::optional<Versions> versions;
    std::optional<qint64> revision;
    std::optional<bool> kegOnly;
    std::optional<HomebrewJSONValue> kegOnlyReason;
    std::optional<QStringList> buildDependencies;
    std::optional<QStringList> dependencies;
    std::optional<QStringList> testDependencies;
    std::optional<QStringList> recommendedDependencies;
    std::optional<QStringList> optionalDependencies;
    std::optional<QList<HomebrewJSONValue>> requirements;
    std::optional<QStringList> conflictsWith;
    std::optional<QList<std::optional<QString>>> conflictsWithReasons;
    std::optional<QString> caveats;
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
    std::optional<QStringList> executables;
    std::optional<QString> generatedDate;

    friend bool operator==(const HomebrewFormula&, const HomebrewFormula&) = default;
};

} // namespace quillbay
