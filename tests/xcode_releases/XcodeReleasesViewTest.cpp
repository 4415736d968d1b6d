#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "ReleasesFixture.h"
#include "testsupport/TestEnvironment.h"
#include "testsupport/WidgetAudit.h"
#include "xcode_releases/views/XcodeReleasesCellDelegate.h"
#include "xcode_releases/views/XcodeReleasesTable.h"
#include "xcode_releases/views/XcodeReleasesTableModel.h"
#include "xcode_releases/views/XcodeReleasesView.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;
using Part = XcodeReleasesCellDelegate::Part;

namespace {

// Five releases in feed order: a beta, a final with every link, a release candidate, a
// {"release": false} and a {"Release": true}, which the filter hides but labels "Release".
const QByteArray kFeed = R"j([
 {"name": "Xcode (Apple Silicon)", "requires": "15.3", "date": {"day": 9, "month": 6, "year": 2025},
  "sdks": {"macOS": [{"build": "25A5279m", "number": "26.0"}], "iOS": [{"build": "", "number": "26.0"}]},
  "version": {"build": "17A5241e", "number": "26.0", "release": {"beta": 1}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 5, "month": 3, "year": 2025},
  "sdks": {"macOS": [{"build": "24E241", "number": "15.4"}], "iOS": [{"build": "22E235", "number": "18.4"}]},
  "links": {"download": {"url": "https://download.example.test/Xcode_16.3.xip"},
            "notes": {"url": "https://notes.example.test/16.3"}},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 2, "year": 2025},
  "version": {"build": "16E5104o", "number": "16.3", "release": {"rc": 1}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 1, "year": 2025},
  "links": {"download": {"url": "not a url at all"}},
  "version": {"build": "16C5032a", "number": "16.2", "release": {"release": false}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 12, "year": 2024},
  "version": {"build": "16C5031c", "number": "16.2", "release": {"Release": true}}}
])j";

struct Screen
{
    Store store;
    std::unique_ptr<XcodeReleasesView> view;

    explicit Screen(int status = 200, const QByteArray& infoPlist = {})
        : store(std::nullopt, status, status == 200 ? kFeed : QByteArray(), infoPlist)
    {
        view = std::make_unique<XcodeReleasesView>(*store.model);
        view->resize(1200, 600);
        view->show();
    }

    XcodeReleasesTable* table() const { return view->table(); }
    XcodeReleasesTableModel* model() const { return table()->releasesModel(); }
    template <typename T> T* find(const char* name) const
    {
        auto* widget = view->findChild<T*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QStringList column(int section, int role = Qt::DisplayRole) const
    {
        QStringList texts;
        for (int row = 0; row < model()->rowCount(); ++row)
            texts << model()->index(row, section).data(role).toString();
        return texts;
    }
    int sectionOf(Column column) const { return static_cast<int>(model()->columns().indexOf(column)); }
    // Clicks a part of one cell the way a user would, through the viewport.
    void clickPart(int row, Column column, Part part)
    {
        const QModelIndex index = model()->index(row, sectionOf(column));
        const QRect rect = table()->cellDelegate()->partRect(table()->cellOption(index), index, part);
        ASSERT_FALSE(rect.isEmpty()) << "no such part in that cell";
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rect.center());
    }
};

} // namespace

TEST(XcodeReleasesViewTest, FirstRunFilterAndMoreInformationFlow)
{
    Screen s(200,
             "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleShortVersionString</key>"
             "<string>16.3</string></dict></plist>");
    ASSERT_TRUE(waitUntil([&] { return s.store.model->releases().size() == 5; }));
    QStringList headers;
    for (int i = 0; i < s.model()->columnCount(); ++i)
        headers << s.model()->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
    EXPECT_EQ(headers,
              (QStringList {u"Version"_s, u"Release"_s, u"Required Environment"_s, u"macOS SDK"_s, u"iOS SDK"_s,
                            u"Download"_s}));
    EXPECT_EQ(s.column(0), QStringList {u"Xcode 16.3"_s});
    EXPECT_EQ(s.column(s.sectionOf(Column::required)), QStringList {u"macOS 14.5+"_s});
    EXPECT_FALSE(s.view->isShowingFailure());
    EXPECT_EQ(test::controlsWithoutAccessibleName(s.view.get()), "");
    auto* subtitle = s.find<QLabel>("subtitleLabel");
    ASSERT_TRUE(waitUntil([&] { return subtitle->isVisible(); }));
    EXPECT_EQ(subtitle->text(), u"Current Xcode 16.3"_s);
    EXPECT_EQ(s.store.workspace->askedIdentifiers, QStringList {u"com.apple.dt.Xcode"_s});

    // The filter switch shows every release without a new fetch, and is saved.
    const int requests = s.store.server.requestCount();
    QTest::mouseClick(s.find<QToolButton>("onlyReleaseToolButton"), Qt::LeftButton);
    EXPECT_FALSE(s.store.defaults.boolValue(u"OnlyRelease"_s, true));
    EXPECT_EQ(s.column(1), (QStringList {u"Beta 1"_s, u"Release"_s, u"RC 1"_s, u"Release"_s, u"Release"_s}));
    EXPECT_EQ(s.store.server.requestCount(), requests);

    // More information adds build lines; the short form stays.
    QTest::mouseClick(s.find<QToolButton>("moreInformationToolButton"), Qt::LeftButton);
    EXPECT_EQ(s.column(0, XcodeReleasesTableModel::BuildLineRole),
              (QStringList {u"17A5241e"_s, u"16E140"_s, u"16E5104o"_s, u"16C5032a"_s, u"16C5031c"_s}));
    EXPECT_EQ(s.column(s.sectionOf(Column::macOSSDK)).first(), u"macOS 26.0"_s);
    QTest::mouseClick(s.find<QToolButton>("onlyReleaseToolButton"), Qt::LeftButton);
    EXPECT_EQ(s.model()->rowCount(), 1);
}

TEST(XcodeReleasesViewTest, RetryShowsAnEmptyTableWhileItRunsAndTheFailureAgainIfItFails)
{
    Screen s(500, "<plist"); // an unreadable Info.plist
    ASSERT_TRUE(waitUntil([&] { return s.view->isShowingFailure(); }));
    EXPECT_EQ(s.find<QLabel>("failureLabel")->text(), u"Failed to load data"_s);
    EXPECT_TRUE(s.find<QLabel>("failureLabel")->isVisible());
    EXPECT_TRUE(s.find<QLabel>("subtitleLabel")->isHidden()) << "no version read gives no subtitle";

    QTest::mouseClick(s.find<QPushButton>("retryPushButton"), Qt::LeftButton);
    EXPECT_FALSE(s.view->isShowingFailure());
    EXPECT_EQ(s.model()->rowCount(), 0);
    ASSERT_TRUE(waitUntil([&] { return s.view->isShowingFailure(); }));
    EXPECT_EQ(s.store.server.requestCount(), 2);

    s.store.server.answer(200, kFeed);
    ASSERT_TRUE(pressKey(s.view.get(), QKeySequence(Qt::CTRL | Qt::Key_R))) << "Ctrl+R is \"Retry\"";
    ASSERT_TRUE(waitUntil([&] { return s.model()->rowCount() == 1; }));
    EXPECT_FALSE(s.view->isShowingFailure());

    // With a list on show, a failed refresh shows nothing at all.
    s.store.server.answer(500, {});
    s.store.model->refreshReleases();
    ASSERT_TRUE(waitUntil([&] { return s.store.model->hasError(); }));
    EXPECT_FALSE(s.view->isShowingFailure());
    EXPECT_EQ(s.model()->rowCount(), 1);
}

TEST(XcodeReleasesViewTest, LinksOpenOnlyRealAddresses)
{
    Screen s;
    ASSERT_TRUE(waitUntil([&] { return s.store.model->releases().size() == 5; }));
    s.store.model->setOnlyRelease(false);
    s.store.model->setReleaseColumnVisible(AppViewModel::ReleaseColumn::releaseNotes, true);
    EXPECT_TRUE(AppViewModel(s.store.defaults, s.store.saved).columns().contains(Column::releaseNotes))
        << "a column choice is saved at once";
    QList<QUrl>& opened = s.store.workspace->openedUrls;
    s.clickPart(1, Column::releaseNotes, Part::releaseNotesButton);
    EXPECT_EQ(opened, QList<QUrl> {QUrl(u"https://notes.example.test/16.3"_s)});
    s.clickPart(1, Column::download, Part::downloadLink);
    EXPECT_EQ(opened.value(1), QUrl(u"https://download.example.test/Xcode_16.3.xip"_s));
    s.clickPart(3, Column::download, Part::downloadLink);
    EXPECT_EQ(opened.size(), 2) << "a download text that is no address opens nothing";
}
