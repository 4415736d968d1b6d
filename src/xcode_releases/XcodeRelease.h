#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <optional>

namespace quillbay {

// One published Xcode as the public release feed describes it. Plain values throughout;
// the nested records mirror the feed's objects, with absent optional keys left absent.
struct XcodeRelease
{
    struct DateInfo
    {
        qint64 day = 0;
        qint64 month = 0;
        qint64 year = 0;
        friend bool operator==(const DateInfo&, const DateInfo&) = default;
    };

    // A feed value that is an integer, a boolean, or neither (kept, never an error, so
    // that a string in a maturity entry cannot sink the whole feed).
    struct BoolOrInt
    {
        enum class Kind { boolean, integer, unknown };
        Kind kind = Kind::unknown;
        bool boolValue = false;
        qint64 intValue = 0;

        static BoolOrInt fromBool(bool value) { return {Kind::boolean, value, 0}; }
        static BoolOrInt fromInt(qint64 value) { return {Kind::integer, false, value}; }
        static BoolOrInt unknown() { return {}; }
        friend bool operator==(const BoolOrInt&, const BoolOrInt&) = default;
    };

    // Maturity entries in the feed's key order; the feed carries one per release.
    using ReleaseMap = QList<QPair<QString, BoolOrInt>>;

    struct VersionInfo
    {
        QString build;
        QString number;
        ReleaseMap release;
        friend bool operator==(const VersionInfo&, const VersionInfo&) = default;
    };

    struct CompilerInfo
    {
        std::optional<QString> build;
        QString number;
        friend bool operator==(const CompilerInfo&, const CompilerInfo&) = default;
    };

    struct Compilers
    {
        std::optional<QList<CompilerInfo>> clang;
        std::optional<QList<CompilerInfo>> swift;
        friend bool operator==(const Compilers&, const Compilers&) = default;
    };

    struct SDKInfo
    {
        std::optional<QString> build;
        std::optional<QString> number;
        friend bool operator==(const SDKInfo&, const SDKInfo&) = default;
    };

    struct SDKs
    {
        std::optional<QList<SDKInfo>> iOS;
        std::optional<QList<SDKInfo>> macOS;
        std::optional<QList<SDKInfo>> tvOS;
        std::optional<QList<SDKInfo>> visionOS;
        std::optional<QList<SDKInfo>> watchOS;
        friend bool operator==(const SDKs&, const SDKs&) = default;
    };

    struct LinkInfo
    {
        QString url;
        std::optional<QStringList> architectures;
        friend bool operator==(const LinkInfo&, const LinkInfo&) = default;
    };

    struct Links
    {
        std::optional<LinkInfo> download;
        std::optional<LinkInfo> notes;
        friend bool operator==(const Links&, const Links&) = default;
    };

    // Made fresh on every decode: the table's row identity, never read from the feed.
    QUuid id;
    QString name;
    // The lowest macOS, as bare version text ("requires" in the feed; the C++ keyword
    // forbids the plain name).
    QString requires_;
    DateInfo date;
    std::optional<Compilers> compilers;
    std::optional<Links> links;
    std::optional<SDKs> sdks;
    std::optional<VersionInfo> version;

    // Every field but the identity: two decodings of the same bytes compare equal here.
    bool hasSameContent(const XcodeRelease& other) const
    {
        return name == other.name && requires_ == other.requires_ && date == other.date && compilers == other.compilers
            && links == other.links && sdks == other.sdks && version == other.version;
    }
};

} // namespace quillbay
