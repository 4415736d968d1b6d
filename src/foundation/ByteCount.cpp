#include "foundation/ByteCount.h"

#include <QLocale>
#include <array>
#include <cmath>

namespace quillbay {

QString formatByteCount(qint64 bytes)
{
    if (bytes == 0)
        return QStringLiteral("Zero KB");
    const bool negative = bytes < 0;
    // Work in long double so that INT64_MIN and INT64_MAX convert without overflow.
    long double value = std::fabs(static_cast<long double>(bytes));
    const QLocale locale = QLocale::system();
    const QString sign = negative ? QStringLiteral("-") : QString();
    if (value < 1000.0L) {
        const auto n = static_cast<qint64>(value);
        return sign + locale.toString(n) + (n == 1 ? QStringLiteral(" byte") : QStringLiteral(" bytes"));
    }
    static constexpr std::array<const char*, 6> units {"KB", "MB", "GB", "TB", "PB", "EB"};
    static constexpr std::array<int, 6> decimals {0, 1, 2, 2, 2, 2};
    std::size_t unit = 0;
    value /= 1000.0L;
    while (unit + 1 < units.size()) {
        // Round first, so that 999,950 bytes reads "1 MB" and not "1,000 KB".
        const long double scale = std::pow(10.0L, decimals[unit]);
        if (std::round(value * scale) / scale < 1000.0L)
            break;
        value /= 1000.0L;
        ++unit;
    }
    QString text = locale.toString(static_cast<double>(value), 'f', decimals[unit]);
    if (decimals[unit] > 0) {
        const QString point = locale.decimalPoint();
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(point))
            text.chop(point.size());
    }
    return sign + text + QLatin1Char(' ') + QLatin1String(units[unit]);
}

} // namespace quillbay
