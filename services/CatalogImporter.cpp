#include "CatalogImporter.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QHash>
#include <filesystem>

#include <nlohmann/json.hpp>

#include "CatalogLayout.h"
#include "foundation/AtomicFile.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"
#include "homebrew_catalog/HomebrewPackageDetail.h"

namespace quillbay::services {

namespace {

using Json = nlohmann::ordered_json;

struct Counts
{
    std::optional<qint64> thirty;
    std::optional<qint64> ninety;
    std::optional<qint64> year;
};

struct Package
{
    QString identifier;
    Json summary;
    QByteArray detail;
};

QString text(const Json& value)
{
    return value.is_string() ? QString::fromStdString(value.get<std::string>()) : QString();
}

QStringList textList(const Json& value)
{
    QStringList out;
    if (value.is_array())
        for (const Json& item : value)
            if (item.is_string())
                out.append(QString::fromStdString(item.get<std::string>()));
    return out;
}

std::optional<Json> readJson(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    Json parsed = Json::parse(bytes.constBegin(), bytes.constEnd(), nullptr, false);
    if (parsed.is_discarded()) {
        *error = QStringLiteral("%1: not valid JSON").arg(path);
        return std::nullopt;
    }
    return parsed;
}

// The documents of one kind: the array file first, then the single documents by name.
QList<Json> readDocuments(const QString& inputDir, const QString& kind, QStringList& warnings)
{
    QList<Json> documents;
    QString error;
    const QString arrayPath = inputDir + u'/' + kind + QStringLiteral(".json");
    if (QFile::exists(arrayPath)) {
        if (const auto array = readJson(arrayPath, &error); array && array->is_array())
            for (const Json& item : *array)
                documents.append(item);
        else
            warnings.append(error.isEmpty() ? arrayPath + QStringLiteral(": not an array") : error);
    }
    const QDir folder(inputDir + u'/' + kind);
    for (const QString& name : folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
        error.clear();
        if (const auto document = readJson(folder.filePath(name), &error); document && document->is_object())
            documents.append(*document);
        else
            warnings.append(error.isEmpty() ? folder.filePath(name) + QStringLiteral(": not an object") : error);
    }
    return documents;
}

// Install counts by package from the three analytics documents of one kind.
QHash<QString, Counts>
readAnalytics(const QString& inputDir, const QString& prefix, const QString& key, QStringList& warnings)
{
    QHash<QString, Counts> counts;
    const QDir folder(inputDir + QStringLiteral("/analytics"));
    const std::array<std::pair<QString, std::optional<qint64> Counts::*>, 3> periods {
        std::pair {QStringLiteral("30d"), &Counts::thirty}, std::pair {QStringLiteral("90d"), &Counts::ninety},
        std::pair {QStringLiteral("365d"), &Counts::year}};
    for (const auto& [period, member] : periods) {
        const QStringList files
            = folder.entryList({prefix + u'-' + period + QStringLiteral("*.json")}, QDir::Files, QDir::Name);
        if (files.isEmpty())
            continue;
        QString error;
        const auto document = readJson(folder.filePath(files.first()), &error);
        if (!document || !document->contains("items") || !(*document)["items"].is_array()) {
            warnings.append(error.isEmpty() ? folder.filePath(files.first()) + QStringLiteral(": no items") : error);
            continue;
        }
        for (const Json& item : (*document)["items"]) {
            const QString name = item.contains(key.toStdString()) ? text(item[key.toStdString()]) : QString();
            const Json& countValue = item.contains("count") ? item["count"] : Json();
            const qint64 count = countValue.is_number_integer() ? countValue.get<qint64>()
                                                                : CatalogImporter::parseCount(text(countValue));
            if (name.isEmpty() || count < 0)
                continue;
            // Older documents list a package once per option set; the installs add up.
            std::optional<qint64>& slot = counts[name].*member;
            slot = slot.value_or(0) + count;
        }
    }
    return counts;
}

Json analyticsJson(const Counts& counts)
{
    Json analytics = Json::object();
    if (counts.thirty)
        analytics["thirtyDays"] = *counts.thirty;
    if (counts.ninety)
        analytics["ninetyDays"] = *counts.ninety;
    if (counts.year)
        analytics["threeHundredSixtyFiveDays"] = *counts.year;
    return analytics;
}

Json stringArray(const QStringList& list)
{
    Json out = Json::array();
    for (const QString& item : list)
        out.push_back(item.toStdString());
    return out;
}

std::optional<Package> formulaPackage(const Json& document, const QHash<QString, Counts>& analytics)
{
    const QString name = document.contains("name") ? text(document["name"]) : QString();
    if (name.isEmpty())
        return std::nullopt;
    QStringList aliases = textList(document.value("aliases", Json()));
    aliases += textList(document.value("oldnames", Json()));
    if (const QString oldName = text(document.value("oldname", Json())); !oldName.isEmpty())
        aliases.append(oldName);
    aliases.removeDuplicates();
    // The version as Homebrew names the installed folder: stable, plus "_" and the
    // revision once a formula has been revised.
    const Json versions = document.value("versions", Json::object());
    QString version = versions.is_object() ? text(versions.value("stable", Json())) : QString();
    const Json revision = document.value("revision", Json());
    if (!version.isEmpty() && revision.is_number_integer() && revision.get<qint64>() >= 1)
        version += u'_' + QString::number(revision.get<qint64>());

    Json summary = Json::object();
    summary["identifier"] = name.toStdString();
    summary["displayName"] = name.toStdString();
    summary["aliases"] = stringArray(aliases);
    summary["summary"] = text(document.value("desc", Json())).toStdString();
    summary["version"] = version.toStdString();
    summary["analytics"] = analyticsJson(analytics.value(name));
    summary["isDeprecated"] = document.value("deprecated", Json()).is_boolean() && document["deprecated"].get<bool>();
    summary["isDisabled"] = document.value("disabled", Json()).is_boolean() && document["disabled"].get<bool>();
    return Package {name, summary, QByteArray::fromStdString(document.dump())};
}

std::optional<Package> caskPackage(const Json& document, const QHash<QString, Counts>& analytics)
{
    const QString token = document.contains("token") ? text(document["token"]) : QString();
    if (token.isEmpty())
        return std::nullopt;
    const QStringList names = textList(document.value("name", Json()));
    QStringList aliases = names.mid(1);
    aliases += textList(document.value("old_tokens", Json()));
    aliases.removeDuplicates();
    Json summary = Json::object();
    summary["identifier"] = token.toStdString();
    summary["displayName"] = (names.isEmpty() ? token : names.first()).toStdString();
    summary["aliases"] = stringArray(aliases);
    summary["summary"] = text(document.value("desc", Json())).toStdString();
    summary["version"] = text(document.value("version", Json())).toStdString();
    summary["analytics"] = analyticsJson(analytics.value(token));
    summary["isDeprecated"] = document.value("deprecated", Json()).is_boolean() && document["deprecated"].get<bool>();
    summary["isDisabled"] = document.value("disabled", Json()).is_boolean() && document["disabled"].get<bool>();
    return Package {token, summary, QByteArray::fromStdString(document.dump())};
}

QList<Package> packagesOf(HomebrewCatalogKind kind, const QString& inputDir, QStringList& warnings)
{
    const bool formula = kind == HomebrewCatalogKind::formula;
    const auto analytics = readAnalytics(inputDir, formula ? QStringLiteral("install") : QStringLiteral("cask-install"),
                                         formula ? QStringLiteral("formula") : QStringLiteral("cask"), warnings);
    QList<Package> packages;
    QSet<QString> seen;
    for (const Json& document : readDocuments(inputDir, rawValue(kind), warnings)) {
        auto package = formula ? formulaPackage(document, analytics) : caskPackage(document, analytics);
        if (!package) {
            warnings.append(QStringLiteral("a %1 document without a name was left out").arg(rawValue(kind)));
            continue;
        }
        // Identifiers are unique per kind; the client relies on it.
        if (seen.contains(package->identifier)) {
            warnings.append(QStringLiteral("duplicate %1 %2 was left out").arg(rawValue(kind), package->identifier));
            continue;
        }
        if (!decodeDetail(kind, package->detail)) {
            warnings.append(QStringLiteral("%1 %2 does not decode as a detail document and was left out")
                                .arg(rawValue(kind), package->identifier));
            continue;
        }
        seen.insert(package->identifier);
        packages.append(std::move(*package));
    }
    return packages;
}

QByteArray snapshotBytes(HomebrewCatalogKind kind, const QList<Package>& packages)
{
    Json snapshot = Json::object();
    snapshot["schemaVersion"] = 1;
    snapshot["kind"] = rawValue(kind).toStdString();
    Json rows = Json::array();
    for (const Package& package : packages)
        rows.push_back(package.summary);
    snapshot["packages"] = std::move(rows);
    return QByteArray::fromStdString(snapshot.dump());
}

Json artifact(const QString& snapshotID, HomebrewCatalogKind kind, const QByteArray& bytes, qsizetype count)
{
    Json out = Json::object();
    out["path"]
        = (QStringLiteral("/v1/catalog/snapshots/") + snapshotID + u'/' + rawValue(kind) + QStringLiteral(".json"))
              .toStdString();
    out["sha256"] = HomebrewCatalogProcessor::sha256Hex(bytes).toStdString();
    out["byteCount"] = bytes.size();
    out["packageCount"] = count;
    return out;
}

bool writeAll(const QString& path, const QByteArray& bytes, QString* error)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        *error = QStringLiteral("%1: the folder could not be created").arg(path);
        return false;
    }
    return writeFileAtomically(path, bytes, error);
}

void pruneOldSets(const QString& dataDir, const QString& current, const QString& previous)
{
    const QDir sets(catalogLayout::setsFolder(dataDir));
    for (const QString& name : sets.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        if (name != current && name != previous)
            QDir(sets.filePath(name)).removeRecursively();
}

} // namespace

qint64 CatalogImporter::parseCount(const QString& text)
{
    QString digits;
    for (const QChar c : text) {
        if (c.isDigit() && c.unicode() < 0x80)
            digits.append(c);
        else if (c != u',' && c != u'.' && c != u'\u00A0' && c != u' ' && c != u'\u202F')
            return -1;
    }
    bool ok = false;
    const qint64 value = digits.toLongLong(&ok);
    return ok ? value : -1;
}

CatalogImporter::Result CatalogImporter::run(const Options& options)
{
    Result result;
    const QList<Package> formulae = packagesOf(HomebrewCatalogKind::formula, options.inputDir, result.warnings);
    const QList<Package> casks = packagesOf(HomebrewCatalogKind::cask, options.inputDir, result.warnings);
    // A manifest promises at least one package of each kind.
    if (formulae.isEmpty() || casks.isEmpty()) {
        result.error
            = QStringLiteral("%1 holds no usable %2 documents")
                  .arg(options.inputDir, formulae.isEmpty() ? QStringLiteral("formula") : QStringLiteral("cask"));
        return result;
    }

    QString id = options.snapshotID;
    if (id.isEmpty()) {
        id = options.generatedAt.toUTC().toString(QStringLiteral("yyyy-MM-dd_HH.mm.ss"));
        for (int n = 2; QFileInfo::exists(catalogLayout::setFolder(options.dataDir, id)); ++n)
            id = options.generatedAt.toUTC().toString(QStringLiteral("yyyy-MM-dd_HH.mm.ss")) + u'-'
                + QString::number(n);
    }
    if (!catalogLayout::isSnapshotID(id)) {
        result.error = QStringLiteral("\u201c%1\u201d is not a valid snapshot id").arg(id);
        return result;
    }
    if (QFileInfo::exists(catalogLayout::setFolder(options.dataDir, id))) {
        result.error = QStringLiteral("a snapshot set \u201c%1\u201d already exists").arg(id);
        return result;
    }

    const QByteArray formulaBytes = snapshotBytes(HomebrewCatalogKind::formula, formulae);
    const QByteArray caskBytes = snapshotBytes(HomebrewCatalogKind::cask, casks);
    Json manifest = Json::object();
    manifest["schemaVersion"] = 1;
    manifest["snapshotID"] = id.toStdString();
    manifest["generatedAt"] = options.generatedAt.toUTC().toString(Qt::ISODate).toStdString();
    manifest["source"] = Json {{"name", "Homebrew formulae.brew.sh API"}, {"url", "https://formulae.brew.sh/api/"}};
    manifest["formula"] = artifact(id, HomebrewCatalogKind::formula, formulaBytes, formulae.size());
    manifest["cask"] = artifact(id, HomebrewCatalogKind::cask, caskBytes, casks.size());
    const QByteArray manifestBytes = QByteArray::fromStdString(manifest.dump());

    const QString staging = options.dataDir + QStringLiteral("/.staging-") + id;
    QDir(staging).removeRecursively();
    QString error;
    bool written = writeAll(catalogLayout::manifestPath(staging), manifestBytes, &error)
        && writeAll(catalogLayout::snapshotPath(staging, HomebrewCatalogKind::formula), formulaBytes, &error)
        && writeAll(catalogLayout::snapshotPath(staging, HomebrewCatalogKind::cask), caskBytes, &error);
    for (const Package& package : formulae)
        written = written
            && writeAll(catalogLayout::detailPath(staging, HomebrewCatalogKind::formula, package.identifier),
                        package.detail, &error);
    for (const Package& package : casks)
        written = written
            && writeAll(catalogLayout::detailPath(staging, HomebrewCatalogKind::cask, package.identifier),
                        package.detail, &error);
    if (!written) {
        QDir(staging).removeRecursively();
        result.error = error;
        return result;
    }

    namespace fs = std::filesystem;
    std::error_code code;
    const QString previous = QFileInfo(catalogLayout::currentSetFolder(options.dataDir)).fileName();
    QDir().mkpath(catalogLayout::setsFolder(options.dataDir));
    fs::rename(staging.toStdString(), catalogLayout::setFolder(options.dataDir, id).toStdString(), code);
    if (code) {
        QDir(staging).removeRecursively();
        result.error = QStringLiteral("publishing failed: %1").arg(QString::fromStdString(code.message()));
        return result;
    }
    const std::string link = catalogLayout::currentLink(options.dataDir).toStdString();
    const std::string temporaryLink = link + ".new";
    fs::remove(temporaryLink, code);
    if (!code)
        fs::create_directory_symlink((QStringLiteral("sets/") + id).toStdString(), temporaryLink, code);
    if (!code)
        fs::rename(temporaryLink, link, code); // replaces the old link in one step
    if (code) {
        result.error = QStringLiteral("publishing failed: %1").arg(QString::fromStdString(code.message()));
        return result;
    }
    pruneOldSets(options.dataDir, id, previous);

    result.ok = true;
    result.snapshotID = id;
    result.formulaCount = static_cast<int>(formulae.size());
    result.caskCount = static_cast<int>(casks.size());
    return result;
}

} // namespace quillbay::services
