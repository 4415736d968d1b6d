#include "assets_maker/views/AssetsMakerView.h"

#include <QPointer>
#include <QTabWidget>
#include <QVBoxLayout>

#include "assets_maker/AssetFolderTools.h"
#include "assets_maker/views/AppIconTab.h"
#include "assets_maker/views/ImageSetTab.h"
#include "core/AppViewModel.h"
#include "core/views/SymbolIcons.h"
#include "platform/Pickers.h"

using namespace Qt::StringLiterals;

namespace quillbay {

AssetsMakerView::AssetsMakerView(AppViewModel& model, std::unique_ptr<Pickers> pickers, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_pickers(std::move(pickers))
    , m_tabs(new QTabWidget(this))
    , m_appIconTab(new AppIconTab(model, m_tabs))
    , m_imageSetTab(new ImageSetTab(model, m_tabs))
{
    setObjectName(u"assetsMakerView"_s);
    m_tabs->setObjectName(u"assetsMakerTabWidget"_s);
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(m_appIconTab, symbolIcon(u"app"_s), u"AppIcon"_s);
    m_tabs->addTab(m_imageSetTab, symbolIcon(u"photo"_s), u"Image Set"_s);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);

    connect(m_tabs, &QTabWidget::currentChanged, this,
            [this](int index) { m_model.setTabViewSelection(static_cast<AssetsMakerTab>(index)); });
    connect(m_appIconTab, &AppIconTab::generateRequested, this, &AssetsMakerView::generate);
    connect(m_imageSetTab, &ImageSetTab::generateRequested, this, &AssetsMakerView::generate);
    connect(&m_model, &AppViewModel::assetInputsChanged, this, &AssetsMakerView::refresh);
    refresh();
}

AssetsMakerView::~AssetsMakerView() = default;

void AssetsMakerView::refresh()
{
    const int index = static_cast<int>(m_model.tabViewSelection());
    if (m_tabs->currentIndex() != index)
        m_tabs->setCurrentIndex(index);
}

void AssetsMakerView::generate()
{
    const AssetsMakerTab tab = m_model.tabViewSelection();
    const bool disabled = tab == AssetsMakerTab::appIcon ? m_model.isAppIconGenerationDisabled()
                                                         : m_model.isImageSetGenerationDisabled();
    if (disabled || !m_pickers)
        return;
    // The panel answers later; the screen may be gone by then.
    Tools::chooseAssetFolder(*m_pickers, [view = QPointer(this), tab](std::optional<QString> folder) {
        if (!view || !folder)
            return;
        if (tab == AssetsMakerTab::appIcon)
            view->m_model.generateAppIcons(*folder);
        else
            view->m_model.generateImageSet(*folder);
    });
}

} // namespace quillbay
