#pragma once

#include <QString>
#include <QUrl>

namespace quillbay {

class Workspace;

// The feedback mail: a message to the makers with the program's name and version and the
// system's version already filled in, opened in the user's mail program.
struct FeedbackMail
{
    QString recipient;
    QString appName;
    QString appVersion; // "--" when the program has none
    QString systemVersion;

    QString subject() const;
    QString body() const;
    // A mailto: address carrying recipient, subject and body.
    QUrl url() const;

    // Opens the mail program; false when the desktop has none for mailto: (nothing else
    // happens then, and nothing is reported).
    bool send(Workspace& workspace) const;
};

} // namespace quillbay
