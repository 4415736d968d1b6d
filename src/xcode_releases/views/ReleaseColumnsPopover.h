#pragma once

#include <QList>

#include "xcode_releases/views/PopoverFrame.h"

class QCheckBox;

namespace quillbay {

class AppViewModel;

// Eleven switches, one per hideable column in table order, each bound to its stored
// flag: a change reaches the table and the settings at once.
class ReleaseColumnsPopover final : public PopoverFrame
{
    Q_OBJECT

public:
    explicit ReleaseColumnsPopover(AppViewModel& viewModel, QWidget* parent = nullptr);

    const QList<QCheckBox*>& switches() const { return m_switches; }

private:
    void syncFromModel();

    AppViewModel& m_viewModel;
    QList<QCheckBox*> m_switches;
};

} // namespace quillbay
