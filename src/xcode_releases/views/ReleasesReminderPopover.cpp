#include "xcode_releases/views/ReleasesReminderPopover.h"

#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace quillbay {

ReleasesReminderPopover::ReleasesReminderPopover(QWidget* parent)
    : PopoverFrame(parent)
{
    setObjectName(QStringLiteral("reminderPopoverFrame"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(4);
    for (const QString& line : {QStringLiteral("All downloads are hosted by Apple."),
                                QStringLiteral("Links on this site take you directly to Apple\u2019s download pages."),
                                QStringLiteral("If the direct download link doesn't work,"), loginLine()}) {
        auto* label = new QLabel(line, this);
        label->setObjectName(QStringLiteral("reminderLineLabel"));
        layout->addWidget(label);
    }
}

QString ReleasesReminderPopover::developerHost()
{
    return QStringLiteral("developer.apple.com");
}

QUrl ReleasesReminderPopover::allDownloadsUrl()
{
    return QUrl(QStringLiteral("https://") + developerHost() + QStringLiteral("/download/all/?q=Xcode/"));
}

QString ReleasesReminderPopover::loginLine()
{
    return QStringLiteral("make sure you're logged in to ") + developerHost() + u'.';
}

} // namespace quillbay
