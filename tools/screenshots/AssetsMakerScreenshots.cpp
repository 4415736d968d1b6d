#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QRadialGradient>
#include <QTemporaryDir>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/ContentView.h"
#include "core/views/SidebarItem.h"
#include "foundation/Defaults.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

namespace {

// A stand-in for an app icon or artwork: a gradient square with a disc and a glyph.
QImage artwork(int width, int height, const QColor& from, const QColor& to, const QString& glyph)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QRadialGradient gradient(width * 0.35, height * 0.3, std::max(width, height));
    gradient.setColorAt(0, from);
    gradient.setColorAt(1, to);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(QRectF(0, 0, width, height), width * 0.22, height * 0.22);
    painter.setBrush(QColor(255, 255, 255, 200));
    const double side = std::min(width, height) * 0.5;
    painter.drawEllipse(QRectF((width - side) / 2, (height - side) / 2, side, side));
    QFont font;
    font.setPixelSize(static_cast<int>(side * 0.6));
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(40, 40, 60));
    painter.drawText(image.rect(), Qt::AlignCenter, glyph);
    return image;
}

QByteArray png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

void renderAssetsMakerScreenshots(const QString& outDir)
{
    QTemporaryDir home;
    QuillbayApp app(std::make_unique<SettingsDefaults>(home.filePath(QStringLiteral("defaults.ini"))));
    AppViewModel& model = app.viewModel();
    ContentView window(app);
    window.resize(1180, 760);
    window.select(sidebarItem(Tool::assetsMaker).id);

    save(&window, outDir, QStringLiteral("assets-maker-app-icon-empty"));

    model.setAppIconImage(png(artwork(1024, 1024, QColor(255, 190, 70), QColor(60, 30, 140), QStringLiteral("Qb"))));
    model.setMacOSSelection(AppIconOption::allSize);
    model.setIOSSelection(AppIconOption::allSize);
    model.setWatchOSSelection(AppIconOption::singleSize);
    model.setMergeIOSWatchOS(true);
    save(&window, outDir, QStringLiteral("assets-maker-app-icon-filled"));

    model.setTabViewSelection(AssetsMakerTab::imageSet);
    save(&window, outDir, QStringLiteral("assets-maker-image-set-empty"));

    const struct
    {
        const char* name;
        QColor from, to;
        QSize size;
    } images[] = {
        {"onboarding-welcome", QColor(120, 220, 255), QColor(20, 60, 160), {600, 400}},
        {"badge-gold", QColor(255, 240, 150), QColor(190, 120, 10), {300, 300}},
        {"empty-state", QColor(220, 220, 230), QColor(110, 110, 130), {480, 360}},
    };
    for (const auto& image : images) {
        const QString path = home.filePath(QLatin1String(image.name) + QStringLiteral(".png"));
        artwork(image.size.width(), image.size.height(), image.from, image.to, QStringLiteral("✦")).save(path);
        model.addImageSetFile(QUrl::fromLocalFile(path));
    }
    model.setScaleSelected(AssetScale::x1, false);
    model.setSetSize(true);
    model.setWidth(120);
    model.setHeight(80);
    save(&window, outDir, QStringLiteral("assets-maker-image-set-filled"));
}

} // namespace quillbay::screenshots
