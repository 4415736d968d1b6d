#include "xcode_cleanup/views/XcodeCleanupFooter.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "core/AppViewModel.h"
#include "core/views/StatusPanels.h"
#include "foundation/ByteCount.h"
#include "foundation/Defaults.h"

namespace quillbay {

XcodeCleanupFooter::XcodeCleanupFooter(AppViewModel& viewModel, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_total(new QLabel)
    , m_selected(new QLabel)
{
    setObjectName(QStringLiteral("xcodeCleanupFooter"));
    m_total->setObjectName(QStringLiteral("totalLabel"));
    m_selected->setObjectName(QStringLiteral("selectedLabel"));
    const CleanupFooterButtons buttons = makeCleanupFooterButtons(this);
    m_selectAll = buttons.selectAll;
    m_deselectAll = buttons.deselectAll;
    m_delete = buttons.deleteButton;

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 10);
    layout->addWidget(m_selectAll);
    layout->addWidget(m_deselectAll);
    layout->addStretch();
    layout->addWidget(m_total);
    layout->addSpacing(16);
    layout->addWidget(m_selected);
    layout->addSpacing(16);
    layout->addWidget(m_delete);

    connect(m_selectAll, &QPushButton::clicked, &m_viewModel, [this] { m_viewModel.selectAll(true); });
    connect(m_deselectAll, &QPushButton::clicked, &m_viewModel, [this] { m_viewModel.selectAll(false); });
    connect(m_delete, &QPushButton::clicked, this, &XcodeCleanupFooter::requestDelete);
    connect(&m_viewModel, &AppViewModel::cleanupStateChanged, this, &XcodeCleanupFooter::refresh);
    connect(&m_viewModel, &AppViewModel::selectionChanged, this, &XcodeCleanupFooter::refresh);
    refresh();
}

void XcodeCleanupFooter::refresh()
{
    m_total->setText(QStringLiteral("Total: ") + formatByteCount(m_viewModel.totalSize()));
    m_selected->setText(QStringLiteral("Selected: ") + formatByteCount(m_viewModel.selectedSize()));
    const bool idle = !m_viewModel.scanning() && !m_viewModel.cleaning();
    // The store refuses a clean while another runs; the button says so too.
    m_delete->setEnabled(!m_viewModel.disableClean() && !m_viewModel.cleaning());
    m_selectAll->setEnabled(idle);
    m_deselectAll->setEnabled(idle);
}

QMessageBox* XcodeCleanupFooter::makeDialog(const QString& objectName,
                                            const QString& title,
                                            const QString& text,
                                            const QString& suppressKey)
{
    auto* box = new QMessageBox(window());
    box->setObjectName(objectName);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIcon(QMessageBox::Warning);
    box->setText(title);
    box->setInformativeText(text);
    // The box is bound to its key: ticking it stores the choice at once, as the
    // platform's suppression toggle does.
    auto* suppress = new QCheckBox(QStringLiteral("Don't ask again"), box);
    suppress->setObjectName(QStringLiteral("dontAskAgainCheckBox"));
    suppress->setChecked(m_viewModel.defaults().boolValue(suppressKey, false));
    connect(suppress, &QCheckBox::toggled, box,
            [this, suppressKey](bool checked) { m_viewModel.defaults().setValue(suppressKey, checked); });
    box->setCheckBox(suppress);
    return box;
}

void XcodeCleanupFooter::requestDelete()
{
    if (m_viewModel.disableClean() || m_runningWarning || m_confirmation)
        return;
    const bool suppressRunning
        = m_viewModel.defaults().boolValue(QLatin1String(AppViewModel::suppressXcodeIsRunningAlertKey), false);
    if (m_viewModel.isXcodeRunning() && !suppressRunning) {
        QString name = QGuiApplication::applicationDisplayName();
        if (name.isEmpty())
            name = QStringLiteral("Quillbay");
        m_runningWarning
            = makeDialog(QStringLiteral("xcodeRunningWarningMessageBox"), QStringLiteral("Xcode is running"),
                         name
                             + QStringLiteral(" can run with Xcode open, but some cleaned files may "
                                              "affect its functionality or cause a crash."),
                         QLatin1String(AppViewModel::suppressXcodeIsRunningAlertKey));
        QPushButton* proceed = m_runningWarning->addButton(QStringLiteral("Continue"), QMessageBox::AcceptRole);
        m_runningWarning->addButton(QMessageBox::Cancel);
        m_runningWarning->setDefaultButton(proceed);
        connect(m_runningWarning, &QMessageBox::finished, this, [this, proceed] {
            const bool go = m_runningWarning && m_runningWarning->clickedButton() == proceed;
            m_runningWarning = nullptr;
            if (go)
                continueAfterRunningWarning();
        });
        m_runningWarning->open();
        return;
    }
    continueAfterRunningWarning();
}

void XcodeCleanupFooter::continueAfterRunningWarning()
{
    if (m_viewModel.defaults().boolValue(QLatin1String(AppViewModel::suppressDeleteWarningAlertKey), false)) {
        m_viewModel.clean();
        return;
    }
    m_confirmation = makeDialog(QStringLiteral("deletionConfirmationMessageBox"),
                                QStringLiteral("Are you sure you want to proceed? This action is irreversible."),
                                QString(), QLatin1String(AppViewModel::suppressDeleteWarningAlertKey));
    QPushButton* destroy = m_confirmation->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
    QPushButton* cancel = m_confirmation->addButton(QMessageBox::Cancel);
    // The irreversible choice is never the one Return picks.
    m_confirmation->setDefaultButton(cancel);
    connect(m_confirmation, &QMessageBox::finished, this, [this, destroy] {
        const bool go = m_confirmation && m_confirmation->clickedButton() == destroy;
        m_confirmation = nullptr;
        if (go)
            m_viewModel.clean();
    });
    m_confirmation->open();
}

} // namespace quillbay
