#include <gtest/gtest.h>

#include "xcode_cleanup/XcodeFileProperties.h"

using namespace quillbay;

namespace {

XcodeFileProperties leaf(const QString& label, qint64 bytes, const QString& path = QStringLiteral("/nonexistent"))
{
    XcodeFileProperties node;
    node.label = label;
    node.paths = {path};
    node.size = Size::value(bytes);
    return node;
}

XcodeFileProperties group(const QString& label, std::vector<XcodeFileProperties> children)
{
    XcodeFileProperties node;
    node.label = label;
    node.children = std::move(children);
    return node;
}

// Location -> two OS rows -> leaves, the deepest shape a scan builds.
XcodeFileProperties threeLevels()
{
    return group(QStringLiteral("Device Support"),
                 {group(QStringLiteral("iOS"), {leaf(QStringLiteral("a"), 100), leaf(QStringLiteral("b"), 200)}),
                  group(QStringLiteral("watchOS"), {leaf(QStringLiteral("c"), 400)})});
}

} // namespace

TEST(XcodeFilePropertiesTest, ParentsFollowTheirChildrenAndOnlyLeavesCount)
{
    XcodeFileProperties root = threeLevels();
    // Rows without paths add only their children, so these known group sizes never count.
    root.size = Size::value(999);
    (*root.children)[0].size = Size::value(300);
    const QUuid a = (*(*root.children)[0].children)[0].id;
    const QUuid b = (*(*root.children)[0].children)[1].id;
    const QUuid c = (*(*root.children)[1].children)[0].id;
    const QUuid ios = (*root.children)[0].id;

    struct Step
    {
        QUuid id;
        bool value;
        bool iosChecked;
        bool rootChecked;
        qint64 selected;
    };
    const Step steps[] = {
        {a, true, false, false, 100}, // one of two: parent stays clear
        {b, true, true, false, 300}, // the last one checks the parent
        {c, true, true, true, 700}, // and every branch checks the root
        {a, false, false, false, 600}, // clearing one child clears the ancestors
        {root.id, true, true, true, 700}, // the root selects every descendant
        {root.id, false, false, false, 0},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.selected);
        ASSERT_TRUE(root.setSelected(step.id, step.value));
        EXPECT_EQ(root.selection(ios), step.iosChecked);
        EXPECT_EQ(root.isSelected, step.rootChecked);
        EXPECT_EQ(root.selectedSize(), step.selected);
        EXPECT_EQ(root.selection(step.id), step.value);
    }
    EXPECT_FALSE(root.hasSelection());
    EXPECT_FALSE(root.setSelected(QUuid::createUuid(), true));
    EXPECT_EQ(root.selection(QUuid::createUuid()), std::nullopt);

    XcodeFileProperties unknown = leaf(QStringLiteral("u"), 0);
    unknown.size = Size::unknown();
    unknown.isSelected = true;
    EXPECT_EQ(unknown.selectedSize(), 0) << "an unknown size counts as zero";
}

TEST(XcodeFilePropertiesTest, SelectedSizeOverflowStopsTheProgram)
{
    XcodeFileProperties root
        = group(QStringLiteral("r"),
                {leaf(QStringLiteral("a"), std::numeric_limits<qint64>::max()), leaf(QStringLiteral("b"), 1)});
    root.setSelected(root.id, true);
    EXPECT_DEATH(root.selectedSize(), "overflow");
}
