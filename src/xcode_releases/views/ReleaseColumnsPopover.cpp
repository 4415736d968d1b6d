#include "xcode_releases/views/ReleaseColumnsPopover.h"

#include <QCheckBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/AppViewModel.h"

namespace quillbay {

ReleaseColumnsPopover::ReleaseColumnsPopover(AppViewModel& viewModel, QWidget* parent)
    : PopoverFrame(parent)
    , m_viewModel(viewModel)
{
    setObjectName(QStringLiteral("columnsPopoverFrame"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(6);
    for (int i = 0; i < AppViewModel::releaseColumnCount; ++i) {
        const auto flag = static_cast<AppViewModel::ReleaseColumn>(i);
        auto* box = new QCheckBox(columnTitle(AppViewModel::tableColumn(flag)), this);
        box->setObjectName(QStringLiteral("columnCheckBox"));
        layout->addWidget(box);
        m_switches << box;
        connect(box, &QCheckBox::toggled, this,
                [this, flag](bool on) { m_viewModel.setReleaseColumnVisible(flag, on); });
    }
    syncFromModel();
    connect(&m_viewModel, &AppViewModel::releaseColumnsChanged, this, &ReleaseColumnsPopover::syncFromModel);
}

void ReleaseColumnsPopover::syncFromModel()
{
    for (int i = 0; i < m_switches.size(); ++i) {
        const QSignalBlocker blocker(m_switches[i]);
        m_switches[i]->setChecked(m_viewModel.isReleaseColumnVisible(static_cast<AppViewModel::ReleaseColumn>(i)));
    }
}

} // namespace quillbay
