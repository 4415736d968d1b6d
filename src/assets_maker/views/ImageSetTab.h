#pragma once

#include <QWidget>
#include <array>

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace quillbay {

class AppViewModel;
class ImageSetListWidget;

// The "Image Set" tab: the list of dropped images, the three scale switches, "Set Size"
// with its width and height, and "generate".
class ImageSetTab : public QWidget
{
    Q_OBJECT

public:
    explicit ImageSetTab(AppViewModel& model, QWidget* parent = nullptr);

    ImageSetListWidget* list() const { return m_list; }

signals:
    void generateRequested();

private:
    void refresh();
    void addFiles();

    AppViewModel& m_model;
    ImageSetListWidget* m_list;
    std::array<QCheckBox*, 3> m_scales {};
    QCheckBox* m_setSize;
    QWidget* m_sizeFields;
    QSpinBox* m_width;
    QSpinBox* m_height;
    QPushButton* m_generate;
    QLabel* m_disabledReason;
};

} // namespace quillbay
