#pragma once

#include <QGroupBox>
#include <QList>
#include <QSet>
#include <QUuid>

#include "core/state/URLBookmark.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace quillbay {

// One list of scan locations in the Xcode settings: the fixed default path, which can't be
// selected or removed, then the folders the user added. The section only shows and
// selects; adding and removing are the owner's, told through the two signals.
class XcodeScanLocationsSettingsSection : public QGroupBox
{
    Q_OBJECT

public:
    XcodeScanLocationsSettingsSection(const QString& title,
                                      const QString& defaultPath,
                                      const QString& footer,
                                      QWidget* parent = nullptr);

    // Replaces the custom rows; the selection keeps the ids that are still listed.
    void setCustomFolders(const QList<URLBookmark>& folders);
    // A scan or clean is running: the list can't change meanwhile.
    void setBusy(bool busy);
    QSet<QUuid> selection() const { return m_selection; }

signals:
    void addLocationRequested();
    void removeLocationsRequested(const QSet<QUuid>& ids);

private:
    void readSelection();
    void updateButtons();

    QListWidget* m_list;
    QPushButton* m_add;
    QPushButton* m_remove;
    QSet<QUuid> m_selection;
    bool m_isBusy = false;
    bool m_isRebuilding = false;
};

} // namespace quillbay
