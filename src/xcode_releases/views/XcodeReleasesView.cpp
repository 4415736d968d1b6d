#include "xcode_releases/views/XcodeReleasesView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "platform/Workspace.h"
#include "xcode_releases/XcodeReleaseText.h"
#include "xcode_releases/views/DownloadInfoPopover.h"
#include "xcode_releases/views/ReleaseColumnsPopover.h"
#include "xcode_releases/views/ReleasesReminderPopover.h"
#include "xcode_releases/views/XcodeReleasesTable.h"

namespace quillbay {

namespace {

constexpr int kTablePage = 0;
constexpr int kFailurePage = 1;

} // namespace

XcodeReleasesView::XcodeReleasesView(AppViewModel& viewModel, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_subtitle(new QLabel(this))
    , m_stack(new QStackedWidget(this))
    , m_table(new XcodeReleasesTable(this))
    , m_reminderPopover(new ReleasesReminderPopover(this))
    , m_columnsPopover(new ReleaseColumnsPopover(viewModel, this))
    , m_downloadInfoPopover(new DownloadInfoPopover(this))
{
    setObjectName(QStringLiteral("xcodeReleasesView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    // Title and subtitle on the left, the controls on the right, as a window toolbar.
    auto* bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("releasesToolbarWidget"));
    auto* barLayout = new QHBoxLayout(bar);
    barLayout->setContentsMargins(12, 8, 12, 8);
    auto* titles = new QVBoxLayout;
    titles->setSpacing(0);
    auto* title = new QLabel(QStringLiteral("Releases"), bar);
    title->setObjectName(QStringLiteral("titleLabel"));
    setTitleFont(title, TitleSize::screen);
    m_subtitle->setObjectName(QStringLiteral("subtitleLabel"));
    m_subtitle->setForegroundRole(QPalette::PlaceholderText);
    titles->addWidget(title);
    titles->addWidget(m_subtitle);
    barLayout->addLayout(titles);
    barLayout->addStretch();

    QToolButton* reminder = makeToolButton(QStringLiteral("reminderToolButton"), QStringLiteral("Reminder"),
                                           QStringLiteral("info.circle"), QStringLiteral("Reminder"));
    QToolButton* moreInformation
        = makeToolButton(QStringLiteral("moreInformationToolButton"), QStringLiteral("More Information"),
                         QStringLiteral("arrow.left.and.right"), QStringLiteral("More information"));
    m_onlyReleaseButton = makeToolButton(QStringLiteral("onlyReleaseToolButton"), QStringLiteral("Only Release"),
                                         QStringLiteral("line.3.horizontal.decrease"), QStringLiteral("Only releases"));
    QToolButton* columns = makeToolButton(QStringLiteral("columnsToolButton"), QStringLiteral("Table columns config"),
                                          QStringLiteral("tablecells"), QStringLiteral("Table columns config"));
    moreInformation->setCheckable(true);
    m_onlyReleaseButton->setCheckable(true);
    m_onlyReleaseButton->setChecked(m_viewModel.onlyRelease());
    for (QToolButton* button : {reminder, moreInformation, m_onlyReleaseButton, columns})
        barLayout->addWidget(button);
    layout->addWidget(bar);

    m_stack->setObjectName(QStringLiteral("releasesStackedWidget"));
    m_stack->addWidget(m_table);
    auto* failure = new QWidget(m_stack);
    failure->setObjectName(QStringLiteral("failureWidget"));
    auto* failureLayout = new QVBoxLayout(failure);
    failureLayout->addStretch();
    auto* message = new QLabel(QStringLiteral("Failed to load data"), failure);
    message->setObjectName(QStringLiteral("failureLabel"));
    message->setAlignment(Qt::AlignCenter);
    auto* retry = new QPushButton(QStringLiteral("Retry"), failure);
    retry->setObjectName(QStringLiteral("retryPushButton"));
    retry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    failureLayout->addWidget(message);
    failureLayout->addWidget(retry, 0, Qt::AlignHCenter);
    failureLayout->addStretch();
    m_stack->addWidget(failure);
    layout->addWidget(m_stack, 1);

    connect(reminder, &QToolButton::clicked, this,
            [this, reminder] { m_reminderPopover->toggleBelow(PopoverFrame::globalRectOf(reminder)); });
    connect(columns, &QToolButton::clicked, this,
            [this, columns] { m_columnsPopover->toggleBelow(PopoverFrame::globalRectOf(columns)); });
    connect(moreInformation, &QToolButton::toggled, this, [this](bool on) {
        m_isExpand = on;
        refresh();
    });
    connect(m_onlyReleaseButton, &QToolButton::toggled, this, [this](bool on) { m_viewModel.setOnlyRelease(on); });
    connect(retry, &QPushButton::clicked, this, [this] { m_viewModel.refreshReleases(); });
    connect(m_table, &XcodeReleasesTable::linkActivated, this, &XcodeReleasesView::openLink);
    connect(m_table, &XcodeReleasesTable::downloadInformationRequested, this,
            [this](const QRect& cell) { m_downloadInfoPopover->showBelow(cell); });
    connect(m_downloadInfoPopover, &DownloadInfoPopover::allDownloadsRequested, this,
            [this](const QUrl& url) { m_viewModel.workspace().openUrl(url); });

    connect(&m_viewModel, &AppViewModel::releasesChanged, this, &XcodeReleasesView::refresh);
    connect(&m_viewModel, &AppViewModel::hasErrorChanged, this, &XcodeReleasesView::refresh);
    connect(&m_viewModel, &AppViewModel::releaseColumnsChanged, this, &XcodeReleasesView::refresh);
    connect(&m_viewModel, &AppViewModel::onlyReleaseChanged, this, [this](bool on) {
        const QSignalBlocker blocker(m_onlyReleaseButton);
        m_onlyReleaseButton->setChecked(on);
        refresh();
    });
    connect(&m_viewModel, &AppViewModel::xcodeVersionChanged, this, &XcodeReleasesView::updateSubtitle);
    updateSubtitle();
    refresh();
}

QToolButton* XcodeReleasesView::makeToolButton(const QString& objectName,
                                               const QString& label,
                                               const QString& symbol,
                                               const QString& tooltip)
{
    auto* button = new QToolButton(this);
    button->setObjectName(objectName);
    button->setText(label);
    button->setIcon(symbolIcon(symbol));
    button->setToolTip(tooltip);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    return button;
}

QList<XcodeRelease> XcodeReleasesView::filteredReleases() const
{
    if (!m_viewModel.onlyRelease())
        return m_viewModel.releases();
    QList<XcodeRelease> finals;
    for (const XcodeRelease& release : m_viewModel.releases()) {
        if (isFinalRelease(release))
            finals << release;
    }
    return finals;
}

bool XcodeReleasesView::isShowingFailure() const
{
    return m_stack->currentIndex() == kFailurePage;
}

void XcodeReleasesView::refresh()
{
    // The failure shows only when there is nothing else to show; a cached list stays
    // on screen through a failed refresh.
    if (m_viewModel.hasError() && m_viewModel.releases().isEmpty()) {
        m_stack->setCurrentIndex(kFailurePage);
        return;
    }
    m_table->setContents(filteredReleases(), m_viewModel.columns(), m_isExpand);
    m_stack->setCurrentIndex(kTablePage);
}

void XcodeReleasesView::updateSubtitle()
{
    const QString& version = m_viewModel.xcodeVersion();
    m_subtitle->setText(version.isEmpty() ? QString() : QStringLiteral("Current ") + version);
    m_subtitle->setVisible(!version.isEmpty());
}

void XcodeReleasesView::openLink(const QString& text)
{
    // A text that is no address (the empty text included) does nothing, silently.
    const QUrl url(text, QUrl::StrictMode);
    if (text.isEmpty() || !url.isValid())
        return;
    m_viewModel.workspace().openUrl(url);
}

} // namespace quillbay
