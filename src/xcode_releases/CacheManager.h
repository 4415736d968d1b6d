#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "foundation/SerialExecutor.h"
#include "platform/UserPaths.h"

namespace quillbay {

// Keeps the last validated release feed, byte for byte as received, in one file. No
// header, stamp or checksum: what the network sent is what the next start reads.
// Calls run one at a time on its executor; the process shares one instance.
class CacheManager
{
public:
    static constexpr auto fileName = "xcodereleases.json";

    // An explicit file is used as it stands. Without one, the file lies in the program's
    // cache folder of `paths`, which is made when missing; when it cannot be, there is
    // no cache file and every save fails.
    explicit CacheManager(std::optional<QString> cacheFile = std::nullopt,
                          const UserPaths& paths = UserPaths::system());

    // The process-wide instance, made on first use with no explicit file.
    static SerialExecutor<CacheManager>& shared();

    const std::optional<QString>& cacheURL() const { return m_cacheURL; }

    // Replaces the file atomically: the old one stays whole until the new one is
    // complete. The folder is not created here. Returns the failure's text, if any.
    std::optional<QString> save(const QByteArray& bytes);

private:
    std::optional<QString> m_cacheURL;
};

} // namespace quillbay
