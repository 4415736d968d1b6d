#include "assets_maker/views/ImageSetTab.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include "assets_maker/views/ImageSetListWidget.h"
#include "core/AppViewModel.h"
#include "core/views/KeyboardShortcuts.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

// Wide enough to type any size that could pass the check and some that don't, so the
// label and the button can say why.
constexpr int kLargestTypedSide = 99999;

QSpinBox* sideBox(const QString& objectName, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(0, kLargestTypedSide);
    box->setKeyboardTracking(true);
    box->setMinimumWidth(90);
    return box;
}

} // namespace

ImageSetTab::ImageSetTab(AppViewModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_list(new ImageSetListWidget(this))
    , m_setSize(new QCheckBox(u"Set Size"_s, this))
    , m_sizeFields(new QWidget(this))
    , m_width(sideBox(u"widthSpinBox"_s, m_sizeFields))
    , m_height(sideBox(u"heightSpinBox"_s, m_sizeFields))
    , m_generate(new QPushButton(u"generate"_s, this))
    , m_disabledReason(new QLabel(u"No image or no target size"_s, this))
{
    setObjectName(u"imageSetTab"_s);

    auto* add = new QPushButton(u"Add Images…"_s, this);
    add->setObjectName(u"addImagesPushButton"_s);
    add->setShortcut(QKeySequence::Open);
    connect(add, &QPushButton::clicked, this, &ImageSetTab::addFiles);

    auto* scales = new QHBoxLayout;
    for (const AssetScale scale : allAssetScales) {
        auto* box = new QCheckBox(this);
        box->setObjectName(u"x%1CheckBox"_s.arg(assetScaleMultiplier(scale)));
        connect(box, &QCheckBox::toggled, this, [this, scale](bool on) { m_model.setScaleSelected(scale, on); });
        m_scales[static_cast<std::size_t>(scale)] = box;
        scales->addWidget(box);
    }
    scales->addStretch();

    m_setSize->setObjectName(u"setSizeCheckBox"_s);
    auto* fields = new QHBoxLayout(m_sizeFields);
    fields->setContentsMargins(0, 0, 0, 0);
    fields->addWidget(new QLabel(u"Width"_s, m_sizeFields));
    fields->addWidget(m_width);
    fields->addSpacing(12);
    fields->addWidget(new QLabel(u"Height"_s, m_sizeFields));
    fields->addWidget(m_height);
    fields->addStretch();
    auto* size = new QHBoxLayout;
    size->addWidget(m_setSize);
    size->addWidget(m_sizeFields, 1);

    m_generate->setObjectName(u"generateImageSetPushButton"_s);
    addKeyToButton(this, m_generate, QKeySequence(Qt::CTRL | Qt::Key_Return));
    m_disabledReason->setObjectName(u"imageSetDisabledLabel"_s);
    m_disabledReason->setForegroundRole(QPalette::PlaceholderText);
    auto* actions = new QHBoxLayout;
    actions->addWidget(add);
    actions->addStretch();
    actions->addWidget(m_disabledReason);
    actions->addWidget(m_generate);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(scales);
    layout->addLayout(size);
    layout->addLayout(actions);

    connect(m_list, &ImageSetListWidget::filesDropped, this, [this](const QList<QUrl>& urls) {
        for (const QUrl& url : urls)
            m_model.addImageSetFile(url);
    });
    connect(m_list, &ImageSetListWidget::removeRequested, &m_model, &AppViewModel::removeImageSetItem);
    connect(m_setSize, &QCheckBox::toggled, &m_model, &AppViewModel::setSetSize);
    connect(m_width, &QSpinBox::valueChanged, this, [this](int value) { m_model.setWidth(value); });
    connect(m_height, &QSpinBox::valueChanged, this, [this](int value) { m_model.setHeight(value); });
    connect(m_generate, &QPushButton::clicked, this, &ImageSetTab::generateRequested);
    connect(&m_model, &AppViewModel::assetInputsChanged, this, &ImageSetTab::refresh);
    refresh();
}

void ImageSetTab::addFiles()
{
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        patterns << u"*."_s + QString::fromLatin1(format);
    auto* dialog = new QFileDialog(window(), u"Add Images"_s, QString(), u"Images ("_s + patterns.join(u' ') + u")"_s);
    dialog->setObjectName(u"addImagesFileDialog"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        for (const QString& file : files)
            m_model.addImageSetFile(QUrl::fromLocalFile(file));
    });
    dialog->open();
}

void ImageSetTab::refresh()
{
    m_list->setItems(m_model.imageSet());
    for (const AssetScale scale : allAssetScales) {
        QCheckBox* box = m_scales[static_cast<std::size_t>(scale)];
        const QSignalBlocker blocker(box);
        box->setChecked(m_model.isScaleSelected(scale));
        box->setText(m_model.scaleLabel(scale));
    }
    {
        const QSignalBlocker blocker(m_setSize);
        m_setSize->setChecked(m_model.setSize());
    }
    m_sizeFields->setVisible(m_model.setSize());
    for (auto [box, value] : {std::pair {m_width, m_model.width()}, std::pair {m_height, m_model.height()}}) {
        if (box->value() == value)
            continue;
        const QSignalBlocker blocker(box);
        box->setValue(static_cast<int>(std::clamp<qint64>(value, 0, kLargestTypedSide)));
    }
    const bool disabled = m_model.isImageSetGenerationDisabled();
    m_generate->setEnabled(!disabled);
    m_disabledReason->setVisible(disabled);
}

} // namespace quillbay
