#include "homebrew_cache/views/HomebrewCacheCleanupView.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "core/views/FolderAuthorizationRequiredView.h"
#include "core/views/StatusPanels.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "core/views/ToastOverlay.h"
#include "core/views/UnavailablePanel.h"
#include "foundation/ByteCount.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "homebrew_cache/views/HomebrewCacheCleanupFooter.h"
#include "homebrew_cache/views/HomebrewCacheOutlineModel.h"

namespace quillbay {

HomebrewCacheCleanupView::HomebrewCacheCleanupView(HomebrewCacheCleanupStore& store, QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_rescan(new QToolButton(this))
    , m_errorLine(new QWidget(this))
    , m_errorLabel(new QLabel(m_errorLine))
    , m_pages(new QStackedWidget(this))
    , m_authorization(new FolderAuthorizationRequiredView(
          tr("Calculate and clean Homebrew caches."), QStringLiteral("externaldrive.badge.questionmark"), m_pages))
    , m_chooseFolder(m_authorization->addAction(tr("Choose Folder"), QStringLiteral("chooseFolderPushButton")))
    , m_scanning(makeProgressPanel(tr("Scanning Homebrew Cache"), QStringLiteral("scanningPanel"), m_pages))
    , m_failed(new UnavailablePanel(tr("Retry"), m_pages))
    , m_empty(new UnavailablePanel(tr("Rescan"), m_pages))
    , m_outline(new QTreeView(m_pages))
    , m_model(new HomebrewCacheOutlineModel(store, this))
    , m_footer(new HomebrewCacheCleanupFooter(store, this))
    , m_cleaningOverlay(makeProgressPanel(tr("Cleaning Homebrew Cache"), QStringLiteral("cleaningOverlay"), this))
    , m_toast(nullptr)
{
    setObjectName(QStringLiteral("homebrewCacheCleanupView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* titleBar = new QHBoxLayout;
    titleBar->setContentsMargins(16, 10, 12, 6);
    auto* title = new QLabel(tr("Cleanup"), this);
    title->setObjectName(QStringLiteral("pageTitleLabel"));
    setTitleFont(title, TitleSize::screen);
    m_rescan->setObjectName(QStringLiteral("rescanToolButton"));
    m_rescan->setIcon(symbolIcon(QStringLiteral("arrow.clockwise")));
    m_rescan->setText(tr("Rescan"));
    m_rescan->setToolTip(tr("Rescan"));
    m_rescan->setAccessibleName(tr("Rescan"));
    m_rescan->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    m_rescan->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_rescan->setAutoRaise(true);
    titleBar->addWidget(title);
    titleBar->addStretch();
    titleBar->addWidget(m_rescan);
    layout->addLayout(titleBar);

    layOutErrorLine(m_errorLine, m_errorLabel);
    layout->addWidget(m_errorLine);

    m_failed->setObjectName(QStringLiteral("failedPanel"));
    m_failed->setContent(QStringLiteral("exclamationmark.triangle"), tr("Failed to load data"), QString());
    m_failed->button()->setObjectName(QStringLiteral("retryPushButton"));
    m_empty->setObjectName(QStringLiteral("emptyPanel"));
    m_empty->setContent(QStringLiteral("checkmark.circle"), tr("Homebrew Cache Is Empty"),
                        tr("No cache contents were found in the authorized folder."));
    m_empty->button()->setObjectName(QStringLiteral("emptyRescanPushButton"));

    m_outline->setObjectName(QStringLiteral("outlineTreeView"));
    m_outline->setAccessibleName(tr("Homebrew Caches"));
    m_outline->setModel(m_model);
    m_outline->setUniformRowHeights(true);
    m_outline->setAlternatingRowColors(true);
    m_outline->setSelectionMode(QAbstractItemView::NoSelection);
    m_outline->setFrameShape(QFrame::NoFrame);
    m_outline->header()->setStretchLastSection(false);
    m_outline->header()->setSectionResizeMode(HomebrewCacheOutlineModel::titleColumn, QHeaderView::Stretch);
    m_outline->header()->setSectionResizeMode(HomebrewCacheOutlineModel::sizeColumn, QHeaderView::ResizeToContents);
    m_outline->header()->hide();

    for (QWidget* page : {static_cast<QWidget*>(m_authorization), m_scanning, static_cast<QWidget*>(m_failed),
                          static_cast<QWidget*>(m_empty), static_cast<QWidget*>(m_outline)})
        m_pages->addWidget(page);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_footer);

    m_cleaningOverlay->setAutoFillBackground(true);
    QPalette veil = m_cleaningOverlay->palette();
    QColor shade = veil.color(QPalette::Window);
    shade.setAlpha(215);
    veil.setColor(QPalette::Window, shade);
    m_cleaningOverlay->setPalette(veil);
    m_cleaningOverlay->hide();
    installEventFilter(this);

    m_toast = new ToastOverlay(this);

    connect(m_rescan, &QToolButton::clicked, &m_store, &HomebrewCacheCleanupStore::rescan);
    connect(m_chooseFolder, &QPushButton::clicked, &m_store, &HomebrewCacheCleanupStore::chooseRoot);
    connect(m_failed->button(), &QPushButton::clicked, &m_store, &HomebrewCacheCleanupStore::rescan);
    connect(m_empty->button(), &QPushButton::clicked, &m_store, &HomebrewCacheCleanupStore::rescan);
    connect(m_footer, &HomebrewCacheCleanupFooter::deleteRequested, this, &HomebrewCacheCleanupView::requestDelete);
    auto* returnKey = new QShortcut(QKeySequence(Qt::Key_Return), this);
    returnKey->setContext(Qt::WidgetWithChildrenShortcut);
    connect(returnKey, &QShortcut::activated, m_footer->deleteButton(), &QPushButton::click);
    connect(&m_store, &HomebrewCacheCleanupStore::stateChanged, this, &HomebrewCacheCleanupView::refresh);
    connect(&m_store, &HomebrewCacheCleanupStore::toastMessageChanged, this, &HomebrewCacheCleanupView::showToast);
    connect(m_toast, &ToastOverlay::dismissed, &m_store, &HomebrewCacheCleanupStore::clearToast);
    refresh();
}

QWidget* HomebrewCacheCleanupView::currentPage() const
{
    return m_pages->currentWidget();
}

void HomebrewCacheCleanupView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_store.loadAuthorizationAndScanIfNeeded();
}

bool HomebrewCacheCleanupView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::Resize)
        m_cleaningOverlay->setGeometry(rect());
    return QWidget::eventFilter(watched, event);
}

void HomebrewCacheCleanupView::refresh()
{
    const bool busy = m_store.isScanning() || m_store.isCleaning();
    m_rescan->setEnabled(m_store.isAuthorized() && !busy);

    switch (m_store.page()) {
    case HomebrewCacheCleanupPage::authorizationRequired:
        m_authorization->setErrorMessage(m_store.errorMessage());
        m_chooseFolder->setEnabled(!m_store.isChoosingRoot() && !busy);
        m_pages->setCurrentWidget(m_authorization);
        break;
    case HomebrewCacheCleanupPage::scanning:
        m_pages->setCurrentWidget(m_scanning);
        break;
    case HomebrewCacheCleanupPage::failed:
        m_failed->setDescription(m_store.errorMessage().value_or(QString()));
        m_failed->button()->setEnabled(!m_store.isScanning());
        m_pages->setCurrentWidget(m_failed);
        break;
    case HomebrewCacheCleanupPage::empty:
        m_empty->button()->setEnabled(!m_store.isScanning());
        m_pages->setCurrentWidget(m_empty);
        break;
    case HomebrewCacheCleanupPage::outline:
        m_outline->setEnabled(!busy);
        m_pages->setCurrentWidget(m_outline);
        break;
    }
    m_errorLine->setVisible(m_store.showsErrorLine());
    m_errorLabel->setText(m_store.errorMessage().value_or(QString()));
    m_footer->setVisible(m_store.showsFooter());
    if (m_store.isCleaning()) {
        m_cleaningOverlay->setGeometry(rect());
        m_cleaningOverlay->show();
        m_cleaningOverlay->raise();
    } else {
        m_cleaningOverlay->hide();
    }
    m_toast->raise();
}

void HomebrewCacheCleanupView::showToast()
{
    if (const auto& message = m_store.toastMessage())
        m_toast->showMessage(*message);
    else
        m_toast->dismiss();
}

void HomebrewCacheCleanupView::requestDelete()
{
    if (m_store.requestDelete() == HomebrewCacheCleanupStore::DeleteRequest::confirmation)
        confirmDeletion();
}

void HomebrewCacheCleanupView::confirmDeletion()
{
    if (m_confirmation)
        return;
    auto* box = new QMessageBox(QMessageBox::Warning, tr("Permanently Delete Selected Homebrew Caches?"),
                                tr("Permanently Delete Selected Homebrew Caches?"), QMessageBox::NoButton, this);
    box->setObjectName(QStringLiteral("deleteConfirmationMessageBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(tr("Approximate size: %1. This permanently deletes the selected Homebrew caches and cannot "
                               "be undone. Do not install or upgrade Homebrew packages at the same time.")
                                .arg(formatByteCount(m_store.selectedAllocatedSize())));
    QPushButton* destroy = box->addButton(tr("Delete Permanently"), QMessageBox::DestructiveRole);
    destroy->setObjectName(QStringLiteral("deletePermanentlyPushButton"));
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Cancel);
    auto* dontAsk = new QCheckBox(tr("Don't ask again"), box);
    dontAsk->setObjectName(QStringLiteral("dontAskAgainCheckBox"));
    box->setCheckBox(dontAsk);
    connect(box, &QMessageBox::finished, this, [this, box, destroy, dontAsk] {
        // The box binds to the stored choice whichever button ends it.
        if (dontAsk->isChecked())
            m_store.setSuppressDeleteWarningAlert(true);
        if (box->clickedButton() == destroy)
            m_store.clean();
    });
    m_confirmation = box;
    box->open();
}

} // namespace quillbay
