#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

class HomebrewCacheCleanupStore;

// "Total:" and "Selected:" with their sizes, "Select All", "Deselect All" and
// "Delete...", in one row. Pressing "Delete..." emits deleteRequested when a clean
// may run; the page decides whether to ask first.
class HomebrewCacheCleanupFooter : public QWidget
{
    Q_OBJECT

public:
    explicit HomebrewCacheCleanupFooter(HomebrewCacheCleanupStore& store, QWidget* parent = nullptr);

    QPushButton* deleteButton() const { return m_delete; }

signals:
    void deleteRequested();

private:
    void refresh();

    HomebrewCacheCleanupStore& m_store;
    QLabel* m_total;
    QLabel* m_selected;
    QPushButton* m_selectAll;
    QPushButton* m_deselectAll;
    QPushButton* m_delete;
};

} // namespace quillbay
