#include "engagement/FeedbackMail.h"

#include "platform/Workspace.h"

namespace quillbay {

QString FeedbackMail::subject() const
{
    return QStringLiteral("Feedback: %1 v%2").arg(appName, appVersion.isEmpty() ? QStringLiteral("--") : appVersion);
}

QString FeedbackMail::body() const
{
    const QString rule = QStringLiteral("-----------------------------------------");
    return QStringLiteral("Hi there,\n\n[Please type your feedback, bug report, or feature request here]\n\n\n") + rule
        + QStringLiteral("\nApp Name: ") + appName + QStringLiteral("\nApp Version: ")
        + (appVersion.isEmpty() ? QStringLiteral("--") : appVersion) + QStringLiteral("\nmacOS Version: ")
        + systemVersion + QLatin1Char('\n') + rule;
}

QUrl FeedbackMail::url() const
{
    // Every reserved character is escaped, so "&", "=" and "#" in a name cannot split the
    // query; line ends travel as %0A.
    const QString text = QStringLiteral("mailto:") + QString::fromLatin1(QUrl::toPercentEncoding(recipient, "@"))
        + QStringLiteral("?subject=") + QString::fromLatin1(QUrl::toPercentEncoding(subject()))
        + QStringLiteral("&body=") + QString::fromLatin1(QUrl::toPercentEncoding(body()));
    return QUrl(text, QUrl::StrictMode);
}

bool FeedbackMail::send(Workspace& workspace) const
{
    return workspace.openUrl(url());
}

} // namespace quillbay
