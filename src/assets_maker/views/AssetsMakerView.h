#pragma once

#include <QWidget>
#include <memory>

class QTabWidget;

namespace quillbay {

class AppIconTab;
class AppViewModel;
class ImageSetTab;
class Pickers;

// The "Assets Maker" screen: the "AppIcon" and "Image Set" tabs over the store's asset
// inputs. "generate" asks for a folder through the save panel and, when one is given,
// starts the run of the open tab.
class AssetsMakerView : public QWidget
{
    Q_OBJECT

public:
    AssetsMakerView(AppViewModel& model, std::unique_ptr<Pickers> pickers, QWidget* parent = nullptr);
    ~AssetsMakerView() override;

    AppIconTab* appIconTab() const { return m_appIconTab; }
    ImageSetTab* imageSetTab() const { return m_imageSetTab; }

private:
    void generate();
    void refresh();

    AppViewModel& m_model;
    std::unique_ptr<Pickers> m_pickers;
    QTabWidget* m_tabs;
    AppIconTab* m_appIconTab;
    ImageSetTab* m_imageSetTab;
};

} // namespace quillbay
