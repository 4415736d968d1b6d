#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimer>
#include <functional>

namespace quillbay {

class EngagementPromptStore;

// Turns the store's pending prompt into a review request or the tip window once it is
// due, and only while the application is active: a prompt that falls due in the
// background waits for the user's return. UI thread only.
class EngagementPromptPresenter : public QObject
{
    Q_OBJECT

public:
    struct Environment
    {
        std::function<QDateTime()> now; // the system clock when empty
        std::function<bool()> isApplicationActive; // the application state when empty
        std::function<void()> requestReview; // nothing happens when empty
    };

    EngagementPromptPresenter(EngagementPromptStore& store, Environment environment, QObject* parent = nullptr);

    // Runs when the application becomes active; also what the timer runs when a prompt is due.
    void present();

private:
    void reschedule();

    EngagementPromptStore& m_store;
    Environment m_environment;
    QTimer m_timer;
};

} // namespace quillbay
