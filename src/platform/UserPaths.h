#pragma once

#include <QString>
#include <QStringList>

namespace quillbay {

// Where the user's folders are. A value: tests build one around a temporary home.
class UserPaths
{
public:
    // The real home of the user running the program (from the password database, not
    // $HOME, as the sandboxed original does) and the platform's cache and data folders.
    static UserPaths system();

    // For tests: everything derives from the given home.
    static UserPaths forHome(const QString& home);

    QString home() const { return m_home; }
    // home + "Library/Developer".
    QString developerFolder() const;
    // The Homebrew download cache: "Library/Caches/Homebrew" on macOS; on Linux
    // $XDG_CACHE_HOME/Homebrew, else ~/.cache/Homebrew.
    QString homebrewCacheFolder() const;
    // The cache path as the platform's messages name it ("~/Library/Caches/Homebrew").
    QString homebrewCacheDisplayPath() const;
    // Where Homebrew roots are usually found, in the order they are suggested.
    QStringList homebrewRootCandidates() const;
    // The program's own caches (release feed, catalog) and data (custom folder lists).
    QString programCacheFolder() const { return m_programCache; }
    QString programDataFolder() const { return m_programData; }

private:
    QString m_home;
    QString m_xdgCache;
    QString m_programCache;
    QString m_programData;
};

} // namespace quillbay
