#include "xcode_releases/views/DownloadInfoPopover.h"

#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "xcode_releases/views/ReleasesReminderPopover.h"

namespace quillbay {

DownloadInfoPopover::DownloadInfoPopover(QWidget* parent)
    : PopoverFrame(parent)
{
    setObjectName(QStringLiteral("downloadInfoPopoverFrame"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(4);
    for (const QString& line :
         {QStringLiteral("If the direct download link doesn't work,"), ReleasesReminderPopover::loginLine(),
          QStringLiteral("You can find most downloads at")}) {
        auto* label = new QLabel(line, this);
        label->setObjectName(QStringLiteral("downloadInfoLineLabel"));
        layout->addWidget(label);
    }
    auto* link = new QPushButton(ReleasesReminderPopover::developerHost(), this);
    link->setObjectName(QStringLiteral("allDownloadsPushButton"));
    link->setFlat(true);
    link->setCursor(Qt::PointingHandCursor);
    link->setStyleSheet(QStringLiteral("QPushButton { color: palette(link); text-align: left; padding: 0; }"));
    layout->addWidget(link);
    connect(link, &QPushButton::clicked, this, [this] {
        hide();
        emit allDownloadsRequested(ReleasesReminderPopover::allDownloadsUrl());
    });
}

} // namespace quillbay
