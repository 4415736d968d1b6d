#include "foundation/Version.h"

#include <QStringList>
#include <cstdlib>

namespace quillbay {

namespace {

std::optional<std::uint64_t> parseUnsigned(QStringView piece)
{
    // Only plain digits: no sign, no white space, and it must fit 64 unsigned bits.
    if (piece.isEmpty())
        return std::nullopt;
    std::uint64_t value = 0;
    for (const QChar c : piece) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return std::nullopt;
        const auto digit = static_cast<std::uint64_t>(c.unicode() - u'0');
        if (value > (UINT64_MAX - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

} // namespace

std::optional<Version> Version::parse(QStringView text)
{
    // At most three splits, counted in kept pieces: empty pieces are dropped and do not
    // use up a split, so "1...2.3" is "1.2.3", while "1.2.3.4.5" leaves a last piece
    // "4.5" that fails as a number.
    QList<QStringView> pieces;
    qsizetype start = 0;
    while (true) {
        const qsizetype dot = pieces.size() < 3 ? text.indexOf(QLatin1Char('.'), start) : -1;
        const QStringView piece = dot < 0 ? text.mid(start) : text.mid(start, dot - start);
        if (!piece.isEmpty())
            pieces.append(piece);
        if (dot < 0)
            break;
        start = dot + 1;
    }
    if (pieces.size() != 2 && pieces.size() != 3)
        return std::nullopt;
    Version v;
    const auto major = parseUnsigned(pieces[0]);
    const auto minor = parseUnsigned(pieces[1]);
    if (!major || !minor)
        return std::nullopt;
    v.major = *major;
    v.minor = *minor;
    if (pieces.size() == 3) {
        const auto patch = parseUnsigned(pieces[2]);
        if (!patch)
            return std::nullopt;
        v.patch = *patch;
    }
    return v;
}

QString Version::description() const
{
    QString text = QString::number(major) + QLatin1Char('.') + QString::number(minor);
    if (patch)
        text += QLatin1Char('.') + QString::number(*patch);
    return text;
}

AppleBuild::AppleBuild(const QString& text)
    : textual(text)
{
    // A scanner that skips leading white space before the number; when no number stands
    // there nothing is consumed, white space included.
    qsizetype pos = 0;
    qsizetype scan = 0;
    while (scan < text.size() && text.at(scan).isSpace())
        ++scan;
    qsizetype digitsStart = scan;
    if (scan < text.size() && (text.at(scan) == QLatin1Char('+') || text.at(scan) == QLatin1Char('-')))
        ++scan;
    qsizetype digitsEnd = scan;
    while (digitsEnd < text.size() && text.at(digitsEnd).isDigit() && text.at(digitsEnd).unicode() < 128)
        ++digitsEnd;
    if (digitsEnd > scan) {
        bool ok = false;
        const qint64 value = text.mid(digitsStart, digitsEnd - digitsStart).toLongLong(&ok);
        if (ok) {
            major = value;
            pos = digitsEnd;
        }
    }
    if (pos < text.size()) {
        minor = text.at(pos);
        ++pos;
    }
    if (pos < text.size())
        daily = text.mid(pos);
}

bool operator<(const AppleBuild& a, const AppleBuild& b)
{
    if (a.major && b.major && *a.major != *b.major)
        return *a.major < *b.major;
    if (a.major.has_value() != b.major.has_value()) {
        if (a.major)
            return *a.major < 0;
        return 0 < *b.major;
    }
    if (a.minor.has_value() != b.minor.has_value())
        std::abort(); // a precondition of the ordering, not a case it answers
    if (a.minor && *a.minor != *b.minor)
        return a.minor->unicode() < b.minor->unicode();
    return QString::compare(a.daily.value_or(QString()), b.daily.value_or(QString()), Qt::CaseSensitive) < 0;
}

} // namespace quillbay
