#pragma once

#include "xcode_releases/views/PopoverFrame.h"

namespace quillbay {

// The download cell's information panel: what to try when a direct link fails, with a
// link to Apple's page of all downloads.
class DownloadInfoPopover final : public PopoverFrame
{
    Q_OBJECT

public:
    explicit DownloadInfoPopover(QWidget* parent = nullptr);

signals:
    void allDownloadsRequested(const QUrl& url);
};

} // namespace quillbay
