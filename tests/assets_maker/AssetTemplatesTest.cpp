#include <QDir>
#include <QFile>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;

namespace {

AssetContent bundled(const QString& name)
{
    return readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), name + QStringLiteral(".json"));
}

// (idiom, size, scale) with an absent scale read as 1x, and the pixel side: what a real set
// and ours must agree on. Empty slots (no filename) count too, so entries are read loosely.
struct Slot
{
    std::string idiom;
    std::string size;
    std::string scale;
    int pixels;
    bool operator<(const Slot& other) const
    {
        return std::tie(idiom, size, scale) < std::tie(other.idiom, other.size, other.scale);
    }
};

std::vector<Slot> realSlots(const QString& realdata, const QString& folder)
{
    QFile file(QDir(realdata).filePath(QStringLiteral("appiconset/") + folder + QStringLiteral("/Contents.json")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << folder.toStdString();
    // Real sets carry slots without files; fill in a name so that the decoder takes them.
    QByteArray json = file.readAll();
    json.replace("\"idiom\"", "\"filename\" : \"x.png\", \"idiom\"");
    std::vector<Slot> found;
    for (const AssetItem& item : decodeAssetContent(json).images) {
        // Appearance variants (dark, tinted) of a slot have the same size; one of each is enough.
        found.push_back({item.idiom.toStdString(), item.size.toStdString(),
                         item.scale.value_or(QStringLiteral("1x")).toStdString(), assetPixelSize(item).width()});
    }
    return found;
}

} // namespace

// Real sets carry appearance variants and empty slots; ours must offer every slot (macOS,
// iOS single size) or every pixel side (the all-size sets) that they do.
TEST(AssetTemplatesTest, TemplatesCoverTheSlotsOfRealSets)
{
    QUILLBAY_REQUIRE_SHARED_DATA(realdata);
    struct Case
    {
        const char* templateName;
        std::vector<const char*> folders;
        bool sameSlots;
    };
    const Case cases[] = {
        {"macOS_contents", {"macos", "macos-empty-slots", "macos-dark-appearance-handwritten"}, true},
        {"iOS_single_contents", {"ios-single-size", "ios-single-size-dark-tinted"}, true},
        {"iOS_allSize_contents", {"ios-all-sizes", "ios-all-sizes-empty-slots"}, false},
        {"watchOS_allSize_contents",
         {"watchos", "watchos-empty-slots-38-42mm", "watchos-tool-generated-no-roles"},
         false},
    };
    for (const Case& c : cases) {
        std::set<Slot> ourSlots;
        std::set<int> ourSides;
        for (const AssetItem& item : bundled(QLatin1String(c.templateName)).images) {
            ourSlots.insert({item.idiom.toStdString(), item.size.toStdString(),
                             item.scale.value_or(QStringLiteral("1x")).toStdString(), 0});
            ourSides.insert(assetPixelSize(item).width());
        }
        for (const char* folder : c.folders) {
            SCOPED_TRACE(std::string(c.templateName) + " / " + folder);
            const auto real = realSlots(realdata, QLatin1String(folder));
            if (c.sameSlots) {
                EXPECT_EQ(std::set<Slot>(real.begin(), real.end()).size(), ourSlots.size());
                for (const Slot& slot : real)
                    EXPECT_TRUE(ourSlots.count(slot)) << slot.idiom << " " << slot.size << " @ " << slot.scale;
                continue;
            }
            for (const Slot& slot : real) {
                // The 1x slots below 1024 were for non-Retina iPads, which no current iOS runs on.
                if (slot.scale == "1x" && slot.pixels < 1024)
                    continue;
                EXPECT_TRUE(ourSides.count(slot.pixels)) << slot.idiom << " " << slot.size << " @ " << slot.scale;
            }
        }
    }
}
