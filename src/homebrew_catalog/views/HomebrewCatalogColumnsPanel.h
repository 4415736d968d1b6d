#pragma once

#include <QFrame>
#include <QList>

class QCheckBox;

namespace quillbay {

class HomebrewCatalogStore;

// The five column switches, in column order, each bound to its stored flag: a change
// reaches the tables and the preferences at once.
class HomebrewCatalogColumnsPanel final : public QFrame
{
    Q_OBJECT

public:
    explicit HomebrewCatalogColumnsPanel(HomebrewCatalogStore& store, QWidget* parent = nullptr);

    const QList<QCheckBox*>& switches() const { return m_switches; }
    // Shows the panel under the widget, or hides it when it is showing.
    void toggleBelow(const QWidget* anchor);
    void syncFromStore();

private:
    HomebrewCatalogStore& m_store;
    QList<QCheckBox*> m_switches;
};

} // namespace quillbay
