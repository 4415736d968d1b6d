// Times the macOS, iOS and watchOS all-size icon sets made from one 1024 x 1024 PNG against
// ImageMagick making the same pixel sizes from the same file, and compares the results:
// PSNR of each of our files against ImageMagick's Lanczos resize, and the bytes written.
// Also sweeps the PNG compression level and the number of encoding threads, which is how
// the default level was chosen.

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRadialGradient>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThreadPool>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <vector>

#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerService.h"
#include "assets_maker/AssetSize.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRuns = 3;

struct Set
{
    QString templateName;
    QString folder;
    bool removesAlpha;
};

const Set kSets[] = {
    {u"macOS_contents.json"_s, AssetCatalogLayout::macOSSetFolder(), false},
    {u"iOS_allSize_contents.json"_s, AssetCatalogLayout::iOSSetFolder(), true},
    {u"watchOS_allSize_contents.json"_s, AssetCatalogLayout::watchOSSetFolder(), true},
};

// Icon art as people draw it: a gradient squircle with transparent corners, a disc, a
// glyph; with grain it stands for a photographic icon, which compresses far worse.
QImage makeIcon(bool grain)
{
    QImage image(1024, 1024, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QRadialGradient gradient(380, 300, 900);
    gradient.setColorAt(0, QColor(255, 190, 70));
    gradient.setColorAt(1, QColor(60, 30, 140));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(QRectF(0, 0, 1024, 1024), 230, 230);
    painter.setBrush(QColor(255, 255, 255, 210));
    painter.drawEllipse(QRectF(262, 262, 500, 500));
    QFont font;
    font.setPixelSize(320);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(40, 40, 60));
    painter.drawText(image.rect(), Qt::AlignCenter, u"Qb"_s);
    painter.end();
    if (grain) {
        QRandomGenerator random(1024);
        for (int y = 0; y < image.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(line[x]) == 0)
                    continue;
                const int n = random.bounded(-10, 11);
                line[x] = qRgba(std::clamp(qRed(line[x]) + n, 0, 255), std::clamp(qGreen(line[x]) + n, 0, 255),
                                std::clamp(qBlue(line[x]) + n, 0, 255), qAlpha(line[x]));
            }
        }
    }
    return image;
}

QString findImageMagick()
{
    QStringList candidates {qEnvironmentVariable("QUILLBAY_IMAGEMAGICK")};
    for (const QString& name : {u"magick"_s, u"convert"_s}) {
        for (const QString& dir : {u"/usr/bin"_s, u"/usr/local/bin"_s, u"/opt/homebrew/bin"_s})
            candidates << dir + u"/"_s + name;
    }
    for (const QString& candidate : candidates) {
        if (candidate.isEmpty() || !QFileInfo(candidate).isExecutable())
            continue;
        QProcess process;
        process.start(candidate, {u"-version"_s});
        process.waitForFinished();
        // A stand-in may mention ImageMagick; only the real one starts with its version line.
        if (process.readAllStandardOutput().startsWith("Version: ImageMagick"))
            return candidate;
    }
    return {};
}

qint64 folderBytes(const QString& folder)
{
    qint64 total = 0;
    QDir dir(folder);
    for (const QFileInfo& info : dir.entryInfoList(QDir::Files))
        total += info.fileName().endsWith(u".png"_s) ? info.size() : 0;
    for (const QString& sub : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        total += folderBytes(dir.filePath(sub));
    return total;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// One ImageMagick process per set: decode once, then a Lanczos resize and a write per entry.
QStringList
imageMagickArguments(const QString& input, const AssetContent& content, const QString& folder, bool removesAlpha)
{
    QStringList args {input};
    for (const AssetItem& item : content.images) {
        const QSize size = assetPixelSize(item);
        args << u"("_s << u"+clone"_s << u"-filter"_s << u"Lanczos"_s << u"-resize"_s
             << u"%1x%2!"_s.arg(size.width()).arg(size.height());
        if (removesAlpha)
            args << u"-background"_s << u"black"_s << u"-alpha"_s << u"remove"_s << u"-alpha"_s << u"off"_s;
        args << u"-write"_s << QDir(folder).filePath(item.filename) << u"+delete"_s << u")"_s;
    }
    args << u"null:"_s;
    return args;
}

double imageMagickRun(const QString& magick, const QString& input, const QString& out)
{
    QDir(out).removeRecursively();
    QElapsedTimer timer;
    timer.start();
    for (const Set& set : kSets) {
        const AssetContent content = readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), set.templateName);
        const QString folder = QDir(out).filePath(set.folder);
        QDir().mkpath(folder);
        if (QProcess::execute(magick, imageMagickArguments(input, content, folder, set.removesAlpha)) != 0)
            std::fprintf(stderr, "ImageMagick failed\n");
    }
    return timer.nsecsElapsed() / 1e6;
}

double ourRun(const QByteArray& input, const QString& out, int level)
{
    QDir(out).removeRecursively();
    AssetMakerService service;
    service.setCompressionLevel(level);
    QElapsedTimer timer;
    timer.start();
    service.generateAppIcons(input, AppIconOption::allSize, AppIconOption::allSize, AppIconOption::allSize, false,
                             AssetCatalogLayout::bundledTemplateFolder(), out);
    return timer.nsecsElapsed() / 1e6;
}

double psnr(const QString& ours, const QString& theirs)
{
    const QImage a = QImage(ours).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage b = QImage(theirs).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (a.isNull() || a.size() != b.size())
        return -1;
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto* p = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* q = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            const int d[] = {qRed(p[x]) - qRed(q[x]), qGreen(p[x]) - qGreen(q[x]), qBlue(p[x]) - qBlue(q[x]),
                             qAlpha(p[x]) - qAlpha(q[x])};
            for (const int v : d)
                sum += double(v) * v;
        }
    }
    const double mse = sum / (4.0 * a.width() * a.height());
    return mse == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mse);
}

void benchInput(const char* label, const QImage& image, const QString& magick, const QString& work)
{
    const QString input = QDir(work).filePath(QString::fromLatin1(label) + u".png"_s);
    image.save(input, "PNG");
    QFile file(input);
    file.open(QIODevice::ReadOnly);
    const QByteArray bytes = file.readAll();
    const QString ours = QDir(work).filePath(u"ours"_s);
    const QString theirs = QDir(work).filePath(u"imagemagick"_s);

    std::printf("\n## Input: %s (%s, %lld bytes)\n\n", label, qPrintable(input), static_cast<long long>(bytes.size()));
    std::printf("| run | median ms | bytes written | time vs ImageMagick | bytes vs ImageMagick |\n"
                "|---|---|---|---|---|\n");
    // The machine is shared, so the runs are interleaved: each round runs ImageMagick and
    // then every configuration of ours once, and the medians are taken per configuration.
    struct Config
    {
        int level;
        int threads;
        std::vector<double> times;
        qint64 bytes = 0;
    };
    const int poolThreads = QThreadPool::globalInstance()->maxThreadCount();
    std::vector<Config> configs {{AssetImageRenderer::defaultCompressionLevel, 1, {}}};
    for (const int level : {1, 2, 3, 4, 6, 9})
        configs.push_back({level, poolThreads, {}});
    std::vector<double> magickTimes;
    for (int round = 0; round < kRuns; ++round) {
        magickTimes.push_back(imageMagickRun(magick, input, theirs));
        for (Config& config : configs) {
            QThreadPool::globalInstance()->setMaxThreadCount(config.threads);
            config.times.push_back(ourRun(bytes, ours, config.level));
            config.bytes = folderBytes(ours);
        }
    }
    QThreadPool::globalInstance()->setMaxThreadCount(poolThreads);
    const double magickMs = median(magickTimes);
    const qint64 magickBytes = folderBytes(theirs);
    std::printf("| ImageMagick Lanczos, one process per set | %.0f | %lld | 1.00 | 1.00 |\n", magickMs,
                static_cast<long long>(magickBytes));
    for (const Config& config : configs) {
        const double ms = median(config.times);
        const bool isDefault
            = config.level == AssetImageRenderer::defaultCompressionLevel && config.threads == poolThreads;
        std::printf("| Quillbay, zlib level %d, %d thread%s%s | %.0f | %lld | %.3f | %.3f |\n", config.level,
                    config.threads, config.threads == 1 ? "" : "s", isDefault ? " (default)" : "", ms,
                    static_cast<long long>(config.bytes), ms / magickMs, double(config.bytes) / magickBytes);
    }

    // Quality at the default level: each of our files against ImageMagick's file of the same name.
    ourRun(bytes, ours, AssetImageRenderer::defaultCompressionLevel);
    std::map<int, std::vector<double>> bySide;
    for (const Set& set : kSets) {
        const AssetContent content = readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), set.templateName);
        for (const AssetItem& item : content.images) {
            const QString name = set.folder + u"/"_s + item.filename;
            bySide[assetPixelSize(item).width()].push_back(
                psnr(QDir(ours).filePath(name), QDir(theirs).filePath(name)));
        }
    }
    std::printf("\nPSNR (dB) of our files against ImageMagick's Lanczos output, by pixel side (lowest of the files of "
                "that side):\n\n| side | files | PSNR |\n|---|---|---|\n");
    for (const auto& [side, values] : bySide)
        std::printf("| %d | %zu | %.1f |\n", side, values.size(), *std::min_element(values.begin(), values.end()));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QString magick = findImageMagick();
    if (magick.isEmpty()) {
        std::fprintf(stderr, "ImageMagick was not found (apt-get install imagemagick, or set QUILLBAY_IMAGEMAGICK)\n");
        return 1;
    }
    QProcess version;
    version.start(magick, {u"-version"_s});
    version.waitForFinished();
    std::printf("# Assets maker: all-size icon sets (macOS, iOS, watchOS) from one 1024 x 1024 PNG\n\n");
    std::printf("ImageMagick: %s (%s); %d runs each, median; %d threads in the pool\n", qPrintable(magick),
                version.readAllStandardOutput().split('\n').value(0).constData(), kRuns,
                QThreadPool::globalInstance()->maxThreadCount());

    QTemporaryDir work(QDir::tempPath() + u"/assets_maker_bench-XXXXXX"_s);
    if (argc > 1) {
        benchInput("given", QImage(QString::fromLocal8Bit(argv[1])), magick, work.path());
    } else {
        benchInput("icon-art", makeIcon(false), magick, work.path());
        benchInput("icon-grain", makeIcon(true), magick, work.path());
    }
    return 0;
}
