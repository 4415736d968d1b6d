#pragma once

#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

namespace quillbay {

// Opens the update page: a store page in the store application when there is one,
// anything else (and a store page the store application fails on) in the default handler.
// The platform operations are injected so the module stays free of the rest of the program.
class PlatformUpdateURLOpener
{
public:
    static constexpr auto storeApplicationIdentifier = "com.apple.AppStore";
    static constexpr auto storeWebHost = "apps.apple.com";
    static constexpr auto olderStoreWebHost = "itunes.apple.com";

    struct Operations
    {
        // The store application's location, when it is installed.
        std::function<std::optional<QString>(const QString& identifier)> applicationForIdentifier;
        // Opens url with that application; an error description when it could not.
        std::function<std::optional<QString>(const QUrl& url, const QString& application)> openWithApplication;
        std::function<void(const QUrl& url)> openWithDefaultHandler;
    };

    // With no operations given: no store application, and the desktop's default handler.
    explicit PlatformUpdateURLOpener(Operations operations = {});

    void open(const QUrl& url) const;

private:
    Operations m_operations;
};

} // namespace quillbay
