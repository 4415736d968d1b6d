#include "assets_maker/views/AppIconTab.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "assets_maker/views/ImageDropArea.h"
#include "core/AppViewModel.h"
#include "core/views/KeyboardShortcuts.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

QComboBox* optionBox(const QString& objectName, bool offersSingleSize, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(objectName);
    for (const AppIconOption option : allAppIconOptions) {
        if (option == AppIconOption::singleSize && !offersSingleSize)
            continue;
        box->addItem(appIconOptionText(option), static_cast<int>(option));
    }
    return box;
}

void selectOption(QComboBox* box, AppIconOption option)
{
    const QSignalBlocker blocker(box);
    const int index = box->findData(static_cast<int>(option));
    box->setCurrentIndex(index >= 0 ? index : 0);
}

AppIconOption currentOption(const QComboBox* box)
{
    return static_cast<AppIconOption>(box->currentData().toInt());
}

} // namespace

AppIconTab::AppIconTab(AppViewModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_dropArea(new ImageDropArea(this))
    , m_macOS(optionBox(u"macOSComboBox"_s, false, this))
    , m_iOS(optionBox(u"iOSComboBox"_s, true, this))
    , m_watchOS(optionBox(u"watchOSComboBox"_s, true, this))
    , m_merge(new QCheckBox(u"iOS and watchOS icons merged in one asset"_s, this))
    , m_generate(new QPushButton(u"generate"_s, this))
    , m_disabledReason(new QLabel(u"No image or no target platform"_s, this))
{
    setObjectName(u"appIconTab"_s);

    auto* choose = new QPushButton(u"Choose Image…"_s, this);
    choose->setObjectName(u"chooseImagePushButton"_s);
    choose->setShortcut(QKeySequence::Open);
    connect(choose, &QPushButton::clicked, m_dropArea, &ImageDropArea::chooseFile);

    auto* note = new QLabel(
        u"macOS allows app icons to include transparency (alpha channel). However, transparency is not supported "
        u"on iOS and watchOS. For these platforms, it’s best to use square images with sharp corners, as the system "
        u"will automatically apply rounded corners and masks to the icon."_s,
        this);
    note->setObjectName(u"appIconNoteLabel"_s);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);

    m_merge->setObjectName(u"mergeCheckBox"_s);
    m_generate->setObjectName(u"generateAppIconPushButton"_s);
    addKeyToButton(this, m_generate, QKeySequence(Qt::CTRL | Qt::Key_Return));
    m_disabledReason->setObjectName(u"appIconDisabledLabel"_s);
    m_disabledReason->setForegroundRole(QPalette::PlaceholderText);

    auto* options = new QFormLayout;
    options->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    options->addRow(u"macOS"_s, m_macOS);
    options->addRow(u"iOS"_s, m_iOS);
    options->addRow(u"watchOS"_s, m_watchOS);

    auto* actions = new QHBoxLayout;
    actions->addWidget(m_disabledReason);
    actions->addStretch();
    actions->addWidget(m_generate);

    auto* side = new QVBoxLayout;
    side->addWidget(note);
    side->addSpacing(8);
    side->addLayout(options);
    side->addWidget(m_merge);
    side->addStretch();
    side->addLayout(actions);

    auto* imageColumn = new QVBoxLayout;
    imageColumn->addWidget(m_dropArea, 1);
    imageColumn->addWidget(choose, 0, Qt::AlignHCenter);

    auto* layout = new QHBoxLayout(this);
    layout->addLayout(imageColumn, 1);
    layout->addSpacing(12);
    layout->addLayout(side, 1);

    connect(m_dropArea, &ImageDropArea::imageDropped, &m_model, &AppViewModel::setAppIconImage);
    connect(m_dropArea, &ImageDropArea::dropFailed, &m_model, &AppViewModel::reportAssetDropFailure);
    connect(m_macOS, &QComboBox::currentIndexChanged, this,
            [this] { m_model.setMacOSSelection(currentOption(m_macOS)); });
    connect(m_iOS, &QComboBox::currentIndexChanged, this, [this] { m_model.setIOSSelection(currentOption(m_iOS)); });
    connect(m_watchOS, &QComboBox::currentIndexChanged, this,
            [this] { m_model.setWatchOSSelection(currentOption(m_watchOS)); });
    connect(m_merge, &QCheckBox::toggled, &m_model, &AppViewModel::setMergeIOSWatchOS);
    connect(m_generate, &QPushButton::clicked, this, &AppIconTab::generateRequested);
    connect(&m_model, &AppViewModel::assetInputsChanged, this, &AppIconTab::refresh);
    refresh();
}

void AppIconTab::refresh()
{
    m_dropArea->setImageData(m_model.appIconData().value_or(QByteArray()));
    selectOption(m_macOS, m_model.macOSSelection());
    selectOption(m_iOS, m_model.iOSSelection());
    selectOption(m_watchOS, m_model.watchOSSelection());
    {
        const QSignalBlocker blocker(m_merge);
        m_merge->setChecked(m_model.mergeIOSWatchOS());
    }
    m_merge->setEnabled(!m_model.isMergeDisabled());
    const bool disabled = m_model.isAppIconGenerationDisabled();
    m_generate->setEnabled(!disabled);
    m_disabledReason->setVisible(disabled);
}

} // namespace quillbay
