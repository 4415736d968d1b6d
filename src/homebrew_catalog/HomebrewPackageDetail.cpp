#include "homebrew_catalog/HomebrewPackageDetail.h"

#include "homebrew_catalog/JsonFields.h"

namespace quillbay {

namespace {

const QString emDash = QStringLiteral("\u2014");

void optionalJSONValue(json::ObjectReader& reader, std::string_view key, std::optional<HomebrewJSONValue>& out)
{
    const auto element = reader.optionalElement(key);
    if (!element)
        return;
    auto value = HomebrewJSONValue::decode(*element);
    if (!value)
        return reader.fail(value.error().localizedDescription());
    out = std::move(value).value();
}

void optionalJSONValueList(json::ObjectReader& reader,
                           std::string_view key,
                           std::optional<QList<HomebrewJSONValue>>& out)
{
    const auto element = reader.optionalElement(key);
    if (!element)
        return;
    simdjson::dom::array array;
    if (element->get_array().get(array))
        return reader.fail(QStringLiteral("expected an array at %1").arg(reader.where(json::toQString(key))));
    QList<HomebrewJSONValue> list;
    for (const simdjson::dom::element item : array) {
        auto value = HomebrewJSONValue::decode(item);
        if (!value)
            return reader.fail(value.error().localizedDescription());
        list.append(std::move(value).value());
    }
    out = std::move(list);
}

// Reads the fields that formulae and casks share under the same keys.
template <typename Record> void readLifecycle(json::ObjectReader& reader, Record& record)
{
    reader.optionalString("caveats", record.caveats);
    reader.optionalBool("deprecated", record.deprecated);
    reader.optionalString("deprecation_date", record.deprecationDate);
    reader.optionalString("deprecation_reason", record.deprecationReason);
    reader.optionalString("deprecation_replacement_formula", record.deprecationReplacementFormula);
    reader.optionalString("deprecation_replacement_cask", record.deprecationReplacementCask);
    reader.optionalBool("disabled", record.disabled);
    reader.optionalString("disable_date", record.disableDate);
    reader.optionalString("disable_reason", record.disableReason);
    reader.optionalString("disable_replacement_formula", record.disableReplacementFormula);
    reader.optionalString("disable_replacement_cask", record.disableReplacementCask);
}

HomebrewResult<HomebrewPackageDetail> decodeFormula(simdjson::dom::element element)
{
    json::ObjectReader reader(element);
    HomebrewFormula formula;
    reader.requiredString("name", formula.name);
    reader.optionalString("full_name", formula.fullName);
    reader.optionalString("tap", formula.tap);
    reader.optionalStringList("oldnames", formula.oldNames);
    reader.optionalStringList("aliases", formula.aliases);
    reader.optionalStringList("versioned_formulae", formula.versionedFormulae);
    reader.optionalString("desc", formula.description);
    reader.optionalString("license", formula.license);
    reader.optionalString("homepage", formula.homepage);
    if (const auto versions = reader.optionalElement("versions")) {
        json::ObjectReader versionsReader(*versions, QStringLiteral("versions"));
        HomebrewFormula::Versions parsed;
        versionsReader.optionalString("stable", parsed.stable);
        versionsReader.optionalString("head", parsed.head);
        versionsReader.optionalBool("bottle", parsed.bottle);
        if (!versionsReader.ok())
            return versionsReader.error();
        formula.versions = parsed;
    }
    reader.optionalInteger("revision", formula.revision);
    reader.optionalBool("keg_only", formula.kegOnly);
    optionalJSONValue(reader, "keg_only_reason", formula.kegOnlyReason);
    reader.optionalStringList("build_dependencies", formula.buildDependencies);
    reader.optionalStringList("dependencies", formula.dependencies);
    reader.optionalStringList("test_dependencies", formula.testDependencies);
    reader.optionalStringList("recommended_dependencies", formula.recommendedDependencies);
    reader.optionalStringList("optional_dependencies", formula.optionalDependencies);
    optionalJSONValueList(reader, "requirements", formula.requirements);
    reader.optionalStringList("conflicts_with", formula.conflictsWith);
    reader.optionalNullableStringList("conflicts_with_reasons", formula.conflictsWithReasons);
    readLifecycle(reader, formula);
    reader.optionalStringList("executables", formula.executables);
    reader.optionalString("generated_date", formula.generatedDate);
    if (!reader.ok())
        return reader.error();
    return HomebrewPackageDetail(std::move(formula));
}

HomebrewResult<HomebrewPackageDetail> decodeCask(simdjson::dom::element element)
{
    json::ObjectReader reader(element);
    HomebrewCask cask;
    reader.requiredString("token", cask.token);
    reader.optionalString("full_token", cask.fullToken);
    reader.optionalStringList("old_tokens", cask.oldTokens);
    reader.optionalString("tap", cask.tap);
    reader.optionalStringList("name", cask.names);
    reader.optionalString("desc", cask.description);
    reader.optionalString("homepage", cask.homepage);
    reader.optionalString("version", cask.version);
    reader.optionalBool("auto_updates", cask.autoUpdates);
    reader.optionalBool("caveats_rosetta", cask.caveatsRosetta);
    if (const auto dependsOn = reader.optionalElement("depends_on")) {
        if (!dependsOn->is_object())
            return HomebrewError::decoding(QStringLiteral("expected an object at depends_on"));
        optionalJSONValue(reader, "depends_on", cask.dependsOn);
    }
    readLifecycle(reader, cask);
    reader.optionalString("generated_date", cask.generatedDate);
    if (!reader.ok())
        return reader.error();
    return HomebrewPackageDetail(std::move(cask));
}

QList<HomebrewPackageRoute> routesOf(const QStringList& names, HomebrewCatalogKind kind)
{
    QList<HomebrewPackageRoute> routes;
    routes.reserve(names.size());
    for (const QString& name : names)
        routes.append({kind, name});
    return routes;
}

} // namespace

HomebrewResult<HomebrewPackageDetail> decodeDetail(HomebrewCatalogKind kind, const QByteArray& bytes)
{
    auto parsed = json::parse(bytes);
    if (!parsed)
        return parsed.error();
    return kind == HomebrewCatalogKind::formula ? decodeFormula(parsed.value()) : decodeCask(parsed.value());
}

QString HomebrewPackageDetail::identifier() const
{
    if (const auto* f = formula())
        return f->name;
    return cask()->token;
}

QString HomebrewPackageDetail::id() const
{
    return rawValue(kind()) + u':' + identifier();
}

QList<HomebrewDependencySection> HomebrewPackageDetail::dependencySections() const
{
    QList<HomebrewDependencySection> sections;
    const auto add = [&](const QString& title, const QStringList& names, HomebrewCatalogKind routeKind) {
        if (!names.isEmpty())
            sections.append({title, routesOf(names, routeKind)});
    };
    if (const auto* f = formula()) {
        const auto formulaKind = HomebrewCatalogKind::formula;
        add(QStringLiteral("Dependencies"), f->dependencies.value_or(QStringList()), formulaKind);
        add(QStringLiteral("Build Dependencies"), f->buildDependencies.value_or(QStringList()), formulaKind);
        add(QStringLiteral("Recommended Dependencies"), f->recommendedDependencies.value_or(QStringList()),
            formulaKind);
        add(QStringLiteral("Optional Dependencies"), f->optionalDependencies.value_or(QStringList()), formulaKind);
        add(QStringLiteral("Test Dependencies"), f->testDependencies.value_or(QStringList()), formulaKind);
        return sections;
    }
    const HomebrewCask& c = *cask();
    if (!c.dependsOn)
        return sections;
    const auto tokens = [&](const QString& key) {
        const HomebrewJSONValue* value = c.dependsOn->member(key);
        return value ? value->dependencyTokens() : QStringList();
    };
    add(QStringLiteral("Formula Dependencies"), tokens(QStringLiteral("formula")), HomebrewCatalogKind::formula);
    add(QStringLiteral("Cask Dependencies"), tokens(QStringLiteral("cask")), HomebrewCatalogKind::cask);
    return sections;
}

QStringList HomebrewPackageDetail::requirementLines() const
{
    QStringList lines;
    if (const auto* f = formula()) {
        for (const HomebrewJSONValue& requirement : f->requirements.value_or(QList<HomebrewJSONValue>()))
            lines += requirement.displayStrings();
        return lines;
    }
    const HomebrewCask& c = *cask();
    if (!c.dependsOn)
        return lines;
    for (const auto& [key, value] : c.dependsOn->objectValue()) {
        if (key == u"formula" || key == u"cask")
            continue;
        for (const QString& text : value.displayStrings())
            lines.append(key + QStringLiteral(": ") + text);
    }
    return lines;
}

QString HomebrewPackageDetail::currentVersionText() const
{
    if (const auto* c = cask())
        return c->version.value_or(emDash);
    const HomebrewFormula& f = *formula();
    if (!f.versions || !f.versions->stable)
        return emDash;
    if (f.revision && *f.revision >= 1)
        return *f.versions->stable + u'_' + QString::number(*f.revision);
    return *f.versions->stable;
}

std::optional<HomebrewPackageRoute> HomebrewPackageDetail::replacementRoute() const
{
    const auto pick = [](const auto& record) -> std::optional<HomebrewPackageRoute> {
        if (record.disableReplacementFormula)
            return HomebrewPackageRoute {HomebrewCatalogKind::formula, *record.disableReplacementFormula};
        if (record.deprecationReplacementFormula)
            return HomebrewPackageRoute {HomebrewCatalogKind::formula, *record.deprecationReplacementFormula};
        if (record.disableReplacementCask)
            return HomebrewPackageRoute {HomebrewCatalogKind::cask, *record.disableReplacementCask};
        if (record.deprecationReplacementCask)
            return HomebrewPackageRoute {HomebrewCatalogKind::cask, *record.deprecationReplacementCask};
        return std::nullopt;
    };
    if (const auto* f = formula())
        return pick(*f);
    return pick(*cask());
}

QString HomebrewPackageDetail::installCommand() const
{
    if (const auto* f = formula())
        return QStringLiteral("brew install ") + f->name;
    return QStringLiteral("brew install --cask ") + cask()->token;
}

} // namespace quillbay
