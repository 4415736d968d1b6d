#pragma once

#include <QString>
#include <compare>
#include <cstdint>
#include <optional>

namespace quillbay {

// major.minor[.patch], as Xcode, SDK and archive versions are written. An absent patch
// prints as absent but compares as 0: "1.2" == "1.2.0".
struct Version
{
    std::uint64_t major = 0;
    std::uint64_t minor = 0;
    std::optional<std::uint64_t> patch;

    // Exactly two or three dot-separated decimal numbers (empty pieces dropped, so
    // "1..2" is "1.2"); anything else is absent.
    static std::optional<Version> parse(QStringView text);

    QString description() const;

    friend bool operator==(const Version& a, const Version& b)
    {
        return a.major == b.major && a.minor == b.minor && a.patch.value_or(0) == b.patch.value_or(0);
    }
    friend bool operator<(const Version& a, const Version& b)
    {
        if (a.major != b.major)
            return a.major < b.major;
        if (a.minor != b.minor)
            return a.minor < b.minor;
        return b.patch.has_value() && *b.patch > a.patch.value_or(0);
    }
    friend bool operator>(const Version& a, const Version& b) { return b < a; }
    friend bool operator<=(const Version& a, const Version& b) { return !(b < a); }
    friend bool operator>=(const Version& a, const Version& b) { return !(a < b); }
};

// An Apple build text such as "21B74": major 21, minor 'B', daily "74". Never fails; a
// text that does not start with a number has no major, and its first character becomes
// the minor ("(21B74)" gives minor '(' and daily "21B74)").
struct AppleBuild
{
    QString textual;
    std::optional<qint64> major;
    std::optional<QChar> minor;
    std::optional<QString> daily;

    explicit AppleBuild(const QString& text = {});

    QString description() const { return textual; }

    friend bool operator==(const AppleBuild& a, const AppleBuild& b)
    {
        return a.major == b.major && a.minor == b.minor && a.daily.value_or(QString()) == b.daily.value_or(QString());
    }
    // Builds whose majors are equal (or both absent) must both have a minor or both lack
    // one; comparing such a pair otherwise is a programming error and stops the program.
    friend bool operator<(const AppleBuild& a, const AppleBuild& b);
    friend bool operator>(const AppleBuild& a, const AppleBuild& b) { return b < a; }
};

// A size in bytes, or unknown until measured. Unknown orders before every value.
class Size
{
public:
    constexpr Size() = default;
    static constexpr Size unknown() { return Size(); }
    static constexpr Size value(qint64 bytes) { return Size(bytes); }

    constexpr bool isKnown() const { return m_bytes.has_value(); }
    constexpr std::optional<qint64> bytes() const { return m_bytes; }
    constexpr qint64 bytesOrZero() const { return m_bytes.value_or(0); }

    friend constexpr bool operator==(const Size& a, const Size& b) = default;
    friend constexpr bool operator<(const Size& a, const Size& b)
    {
        if (!a.m_bytes)
            return b.m_bytes.has_value();
        return b.m_bytes && *a.m_bytes < *b.m_bytes;
    }
    friend constexpr bool operator>(const Size& a, const Size& b) { return b < a; }

private:
    constexpr explicit Size(qint64 bytes)
        : m_bytes(bytes)
    {
    }
    std::optional<qint64> m_bytes;
};

} // namespace quillbay
