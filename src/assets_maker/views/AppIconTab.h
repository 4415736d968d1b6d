#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace quillbay {

class AppViewModel;
class ImageDropArea;

// The "AppIcon" tab: the drop area, the note on transparency, the three platform
// selectors, the merge switch and "generate". Reads and writes the store's fields only.
class AppIconTab : public QWidget
{
    Q_OBJECT

public:
    explicit AppIconTab(AppViewModel& model, QWidget* parent = nullptr);

    ImageDropArea* dropArea() const { return m_dropArea; }

signals:
    void generateRequested();

private:
    void refresh();

    AppViewModel& m_model;
    ImageDropArea* m_dropArea;
    QComboBox* m_macOS;
    QComboBox* m_iOS;
    QComboBox* m_watchOS;
    QCheckBox* m_merge;
    QPushButton* m_generate;
    QLabel* m_disabledReason;
};

} // namespace quillbay
