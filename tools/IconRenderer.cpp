// Renders the application icon SVG to the PNG sizes of the hicolor theme at build time.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s <icon.svg> <output folder> <icon name>\n", argv[0]);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
    if (!renderer.isValid()) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    const QString out = QString::fromLocal8Bit(argv[2]);
    const QString name = QString::fromLocal8Bit(argv[3]);
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const QString folder = QStringLiteral("%1/%2x%2/apps").arg(out).arg(size);
        QDir().mkpath(folder);
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
        painter.end();
        if (!image.save(folder + QLatin1Char('/') + name + QStringLiteral(".png"))) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(folder));
            return 1;
        }
    }
    return 0;
}
