// quillbay-services: the reference catalog service (and, beside it, the update service).
//
//   quillbay-services import --sample <input dir> --output <data dir> [--snapshot-id <id>]
//   quillbay-services serve --data <data dir> --port <n> [--latest-version <v>] [--must-update <v,...>]
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHostAddress>
#include <QTextStream>

#include "CatalogImporter.h"
#include "CatalogServer.h"
#include "ServicesServer.h"
#include "foundation/BuildConfig.h"
#include "foundation/Secrets.h"
#include "update/UpdateEndpoint.h"

using namespace quillbay;
using namespace quillbay::services;

namespace {

int fail(const QString& message)
{
    QTextStream(stderr) << "quillbay-services: " << message << '\n';
    return 1;
}

int runImport(const QCommandLineParser& parser)
{
    if (!parser.isSet(QStringLiteral("sample")) || !parser.isSet(QStringLiteral("output")))
        return fail(QStringLiteral("import needs --sample <dir> and --output <dir>"));
    CatalogImporter::Options options;
    options.inputDir = parser.value(QStringLiteral("sample"));
    options.dataDir = parser.value(QStringLiteral("output"));
    options.snapshotID = parser.value(QStringLiteral("snapshot-id"));
    const CatalogImporter::Result result = CatalogImporter::run(options);
    QTextStream err(stderr);
    for (const QString& warning : result.warnings)
        err << "warning: " << warning << '\n';
    if (!result.ok)
        return fail(result.error);
    QTextStream(stdout) << "published snapshot " << result.snapshotID << ": " << result.formulaCount << " formulae, "
                        << result.caskCount << " casks\n";
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quillbay-services"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Quillbay reference services"));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("import or serve"));
    parser.addOption(
        {QStringLiteral("sample"), QStringLiteral("Folder of Homebrew API documents."), QStringLiteral("dir")});
    parser.addOption({QStringLiteral("output"), QStringLiteral("Data folder to publish into."), QStringLiteral("dir")});
    parser.addOption({QStringLiteral("snapshot-id"), QStringLiteral("Snapshot id to publish."), QStringLiteral("id")});
    parser.addOption({QStringLiteral("data"), QStringLiteral("Data folder to serve."), QStringLiteral("dir")});
    parser.addOption({QStringLiteral("port"), QStringLiteral("Port on 127.0.0.1."), QStringLiteral("n")});
    parser.addOption({QStringLiteral("latest-version"), QStringLiteral("Newest version the update check offers."),
                      QStringLiteral("version"), QStringLiteral(QUILLBAY_VERSION)});
    parser.addOption({QStringLiteral("must-update"),
                      QStringLiteral("Comma-separated versions that the update check forces to update."),
                      QStringLiteral("versions")});
    parser.process(app);

    const QStringList arguments = parser.positionalArguments();
    const QString command = arguments.value(0);
    if (command == u"import")
        return runImport(parser);
    if (command != u"serve")
        return fail(QStringLiteral("unknown command \u201c%1\u201d; use import or serve").arg(command));

    if (!parser.isSet(QStringLiteral("data")))
        return fail(QStringLiteral("serve needs --data <dir>"));
    bool portOk = false;
    const uint port = parser.value(QStringLiteral("port")).toUInt(&portOk);
    if (!portOk || port == 0 || port > 65535)
        return fail(QStringLiteral("serve needs --port <1-65535>"));

    CatalogServer catalog({parser.value(QStringLiteral("data")), secrets::catalogKey.unmask(), 300, {}});
    ServicesServer server;
    server.addService(&catalog);
    UpdateEndpointConfig update;
    update.signatureSecret = QString::fromUtf8(secrets::updateSecret.unmask());
    update.appID = QStringLiteral(QUILLBAY_APP_ID);
    update.latestVersion = parser.value(QStringLiteral("latest-version"));
    update.updateURL = QStringLiteral(QUILLBAY_SUPPORT_URL);
    update.versionsThatMustUpdate
        = parser.value(QStringLiteral("must-update")).split(QLatin1Char(','), Qt::SkipEmptyParts);
    registerUpdateEndpoint(server.httpServer(), std::move(update));
    const quint16 bound = server.listen(QHostAddress::LocalHost, static_cast<quint16>(port));
    if (bound == 0)
        return fail(QStringLiteral("could not listen on 127.0.0.1:%1").arg(port));
    QTextStream(stdout) << "serving " << parser.value(QStringLiteral("data")) << " on http://127.0.0.1:" << bound
                        << '\n';
    return QCoreApplication::exec();
}
