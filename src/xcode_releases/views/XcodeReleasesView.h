#pragma once

#include <QList>
#include <QWidget>

#include "xcode_releases/XcodeRelease.h"

class QLabel;
class QStackedWidget;
class QToolButton;

namespace quillbay {

class AppViewModel;
class DownloadInfoPopover;
class ReleaseColumnsPopover;
class ReleasesReminderPopover;
class XcodeReleasesTable;

// The "Releases" screen: a toolbar, then either the releases table or, when nothing
// could be loaded at all, the failure message with "Retry". Everything shown is redrawn
// from the view model's state whenever it changes.
class XcodeReleasesView final : public QWidget
{
    Q_OBJECT

public:
    explicit XcodeReleasesView(AppViewModel& viewModel, QWidget* parent = nullptr);

    // The releases the table shows: final releases only while the filter is on.
    QList<XcodeRelease> filteredReleases() const;
    bool isExpand() const { return m_isExpand; }
    bool isShowingFailure() const;

    XcodeReleasesTable* table() const { return m_table; }
    ReleasesReminderPopover* reminderPopover() const { return m_reminderPopover; }
    ReleaseColumnsPopover* columnsPopover() const { return m_columnsPopover; }
    DownloadInfoPopover* downloadInfoPopover() const { return m_downloadInfoPopover; }

private:
    QToolButton*
    makeToolButton(const QString& objectName, const QString& label, const QString& symbol, const QString& tooltip);
    void refresh();
    void updateSubtitle();
    void openLink(const QString& text);

    AppViewModel& m_viewModel;
    bool m_isExpand = false;
    QLabel* m_subtitle;
    QStackedWidget* m_stack;
    XcodeReleasesTable* m_table;
    QToolButton* m_onlyReleaseButton = nullptr;
    ReleasesReminderPopover* m_reminderPopover;
    ReleaseColumnsPopover* m_columnsPopover;
    DownloadInfoPopover* m_downloadInfoPopover;
};

} // namespace quillbay
