#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <optional>

namespace quillbay {

class Defaults;

enum class PromptKind { review, tip };

struct PendingPrompt
{
    PromptKind kind;
    QDateTime notBefore;

    friend bool operator==(const PendingPrompt&, const PendingPrompt&) = default;
};

// Decides when the program may ask for a review and when it may offer the tip window.
// Successes are counted per app version: the first may bring a review request, the second
// a tip offer (never to someone who tipped, at most once per version and once in the
// cool-down). One prompt waits at a time. A prompt's mark is written when it is handed
// out, not when it is scheduled, so a prompt lost with the process comes again.
// UI thread only; every key is written when its value changes.
class EngagementPromptStore : public QObject
{
    Q_OBJECT

public:
    static constexpr auto hasEverTippedKey = "engagementPrompt.hasEverTipped";
    static constexpr auto versionKey = "engagementPrompt.version";
    static constexpr auto successfulActionCountKey = "engagementPrompt.successfulActionCount";
    static constexpr auto lastReviewPromptVersionKey = "LastReviewPromptVersion";
    static constexpr auto lastAutoTipPromptVersionKey = "engagementPrompt.lastAutoTipPromptVersion";
    static constexpr auto lastAutoTipPromptDateKey = "engagementPrompt.lastAutoTipPromptDate";

    static constexpr double defaultAutomaticTipCooldown = 3888000.0; // 45 days, in seconds
    static constexpr double defaultPresentationDelay = 3.0; // seconds

    // currentVersion is the running program's short version; empty reads as "--", and
    // a "--" version neither counts nor prompts.
    EngagementPromptStore(Defaults& defaults,
                          QString currentVersion,
                          double automaticTipCooldown = defaultAutomaticTipCooldown,
                          double presentationDelay = defaultPresentationDelay,
                          QObject* parent = nullptr);

    const QString& currentVersion() const { return m_currentVersion; }
    double automaticTipCooldown() const { return m_automaticTipCooldown; }
    double presentationDelay() const { return m_presentationDelay; }
    qint64 successfulActionCount() const { return m_successfulActionCount; }
    bool hasEverTipped() const { return m_hasEverTipped; }
    const std::optional<PendingPrompt>& pendingPrompt() const { return m_pendingPrompt; }
    bool isPresentingPurchaseView() const { return m_isPresentingPurchaseView; }

    void recordSuccessfulAction(const QDateTime& now);
    std::optional<PromptKind> consumeDuePrompt(const QDateTime& now);
    void recordTip();
    void setPresentingPurchaseView(bool presenting);

signals:
    void pendingPromptChanged();
    void isPresentingPurchaseViewChanged(bool presenting);
    void hasEverTippedChanged();

private:
    bool hasUsableVersion() const;
    bool cooldownHasPassed(const QDateTime& now) const;
    void schedule(PromptKind kind, const QDateTime& now);
    QString stringValue(const char* key) const;

    Defaults& m_defaults;
    QString m_currentVersion;
    double m_automaticTipCooldown;
    double m_presentationDelay;
    qint64 m_successfulActionCount = 0;
    bool m_hasEverTipped = false;
    std::optional<PendingPrompt> m_pendingPrompt;
    bool m_isPresentingPurchaseView = false;
};

} // namespace quillbay
