#pragma once

#include <QUrl>

#include "xcode_releases/views/PopoverFrame.h"

namespace quillbay {

// Where the downloads come from and what to do when a direct link fails.
class ReleasesReminderPopover final : public PopoverFrame
{
    Q_OBJECT

public:
    explicit ReleasesReminderPopover(QWidget* parent = nullptr);

    // The host of Apple's developer site and its page of all Xcode downloads.
    static QString developerHost();
    static QUrl allDownloadsUrl();
    // "make sure you're logged in to <host>."
    static QString loginLine();
};

} // namespace quillbay
