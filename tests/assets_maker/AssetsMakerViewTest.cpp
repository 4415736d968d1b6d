#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/views/AppIconTab.h"
#include "assets_maker/views/AssetsMakerView.h"
#include "assets_maker/views/ImageDropArea.h"
#include "assets_maker/views/ImageSetListWidget.h"
#include "assets_maker/views/ImageSetTab.h"
#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "testsupport/WidgetAudit.h"

using namespace quillbay;

namespace {

struct Screen
{
    test::TempTree tree;
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    AppViewModel model {defaults, saved};
    test::ScriptedPickers* pickers = new test::ScriptedPickers;
    AssetsMakerView view {model, std::unique_ptr<Pickers>(pickers)};

    Screen()
    {
        view.resize(900, 600);
        view.show();
    }

    template <typename T> T* find(const char* name) const
    {
        T* widget = view.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QUrl file(const QString& name, const QByteArray& bytes) { return QUrl::fromLocalFile(tree.writeFile(name, bytes)); }
};

// Delivers a drop as the window system would: the drag enters the widget, which must
// accept it to become the target, and then the data is dropped there.
void drop(QWidget* target, const QList<QUrl>& urls)
{
    QMimeData mime;
    mime.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
    EXPECT_TRUE(event.isAccepted());
}

const QByteArray kImage = test::cornerMarkedPng(120, 80, QColor(250, 250, 0), QColor(0, 120, 200));

} // namespace

TEST(AssetsMakerViewTest, AppIconTabTakesADroppedImageAndGeneratesIntoTheChosenFolder)
{
    Screen s;
    auto* placeholder = s.find<QLabel>("dropPlaceholderLabel");
    auto* generate = s.find<QPushButton>("generateAppIconPushButton");
    auto* merge = s.find<QCheckBox>("mergeCheckBox");
    EXPECT_TRUE(placeholder->isVisible());
    EXPECT_FALSE(generate->isEnabled());

    drop(s.find<ImageDropArea>("appIconDropArea"), {s.file(QStringLiteral("icon.png"), kImage)});
    EXPECT_EQ(s.model.appIconData(), kImage);
    EXPECT_FALSE(placeholder->isVisible());
    EXPECT_FALSE(generate->isEnabled()) << "no platform yet";
    drop(s.find<ImageDropArea>("appIconDropArea"), {s.file(QStringLiteral("notes.png"), "not an image")});
    EXPECT_EQ(s.model.toastMessage(), AssetMakerError::corruptFile().localizedDescription());
    EXPECT_EQ(s.model.appIconData(), kImage);

    EXPECT_EQ(s.find<QComboBox>("macOSComboBox")->count(), 2) << "macOS offers None and All Size";
    s.find<QComboBox>("iOSComboBox")->setCurrentIndex(1);
    EXPECT_EQ(s.model.iOSSelection(), AppIconOption::singleSize);
    EXPECT_TRUE(generate->isEnabled());
    EXPECT_FALSE(merge->isEnabled());
    s.find<QComboBox>("watchOSComboBox")->setCurrentIndex(1);
    ASSERT_TRUE(merge->isEnabled());
    merge->click();
    EXPECT_TRUE(s.model.mergeIOSWatchOS());

    EXPECT_EQ(test::controlsWithoutAccessibleName(&s.view), "");
    // Ctrl+Return presses "Generate"; the user cancels the save panel.
    ASSERT_TRUE(test::pressKey(generate, QKeySequence(Qt::CTRL | Qt::Key_Return)));
    ASSERT_EQ(s.pickers->saveRequests.size(), 1);
    const Pickers::SaveRequest& request = s.pickers->saveRequests[0];
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^\\d{8}_\\d{2}_\\d{2}_\\d{2}$")).match(request.suggestedName).hasMatch())
        << request.suggestedName.toStdString();
    EXPECT_EQ(request.title, QStringLiteral("Save your Asset Folder"));
    ASSERT_TRUE(test::waitUntil([&] { return s.pickers->saveAnswered == 1; }));
    EXPECT_FALSE(s.model.generatingAssets());

    const QString out = s.tree.path(QStringLiteral("Chosen"));
    s.pickers->saveAnswers.push_back(out);
    // The panel answers from the event loop and a small run may end within the same pass,
    // so the screen is read the moment the run starts rather than after the wait.
    std::optional<bool> enabledDuringRun;
    std::optional<bool> noticeDuringRun;
    QObject::connect(&s.model, &AppViewModel::assetInputsChanged, &s.view, [&] {
        if (s.model.generatingAssets() && !enabledDuringRun) {
            enabledDuringRun = generate->isEnabled();
            noticeDuringRun = s.find<QLabel>("appIconDisabledLabel")->isVisible();
        }
    });
    generate->click();
    ASSERT_TRUE(test::waitUntil([&] { return s.pickers->saveAnswered == 2 && !s.model.generatingAssets(); }));
    ASSERT_TRUE(enabledDuringRun.has_value()) << "the chosen folder starts a run";
    EXPECT_FALSE(*enabledDuringRun) << "unavailable during the run";
    EXPECT_TRUE(*noticeDuringRun);
    EXPECT_TRUE(generate->isEnabled());
    EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/iOS&watchOS/AppIcon.appiconset/watchos-1024.png")));
}

TEST(AssetsMakerViewTest, ImageSetTabListsDroppedFilesWithScalesAndSize)
{
    Screen s;
    s.find<QTabWidget>("assetsMakerTabWidget")->setCurrentIndex(1);
    EXPECT_EQ(s.model.tabViewSelection(), AssetsMakerTab::imageSet);
    auto* list = s.find<ImageSetListWidget>("imageSetListWidget");
    auto* placeholder = s.find<QLabel>("imageSetPlaceholderLabel");
    auto* generate = s.find<QPushButton>("generateImageSetPushButton");
    EXPECT_TRUE(placeholder->isVisible());
    EXPECT_FALSE(generate->isEnabled());

    drop(list->viewport(),
         {s.file(QStringLiteral("b.png"), kImage), s.file(QStringLiteral("A.png"), kImage),
          s.file(QStringLiteral("a.PNG"), kImage)});
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(s.model.toastMessage(), AssetMakerError::fileExists().localizedDescription());
    EXPECT_FALSE(placeholder->isVisible());
    EXPECT_TRUE(generate->isEnabled());

    list->itemWidget(list->item(0))->findChild<QToolButton*>(QStringLiteral("removeImageSetItemToolButton"))->click();
    ASSERT_EQ(list->count(), 1);
    EXPECT_EQ(s.model.imageSet()[0].fileName, QStringLiteral("A"));
    auto* x3 = s.find<QCheckBox>("x3CheckBox");

    auto* x2 = s.find<QCheckBox>("x2CheckBox");
    auto* setSize = s.find<QCheckBox>("setSizeCheckBox");
    auto* width = s.find<QSpinBox>("widthSpinBox");
    setSize->click();
    width->setValue(100);
    EXPECT_EQ(x2->text(), QStringLiteral("2x: (200 × 88)"));
    width->setValue(2731);
    EXPECT_FALSE(generate->isEnabled()) << "8193 pixels at 3x";
    EXPECT_EQ(x3->text(), QStringLiteral("3x")) << "no size past the limit is shown";
    x3->click();
    EXPECT_TRUE(generate->isEnabled());
    for (const char* name : {"x1CheckBox", "x2CheckBox"})
        s.find<QCheckBox>(name)->click();
    EXPECT_FALSE(generate->isEnabled());

    list->itemWidget(list->item(0))->findChild<QToolButton*>(QStringLiteral("removeImageSetItemToolButton"))->click();
    EXPECT_EQ(list->count(), 0);
    EXPECT_TRUE(placeholder->isVisible());
}
