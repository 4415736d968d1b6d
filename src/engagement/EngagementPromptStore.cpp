#include "engagement/EngagementPromptStore.h"

#include <algorithm>
#include <cmath>

#include "foundation/Defaults.h"

namespace quillbay {

namespace {

const QString kNoVersion = QStringLiteral("--");

} // namespace

EngagementPromptStore::EngagementPromptStore(
    Defaults& defaults, QString currentVersion, double automaticTipCooldown, double presentationDelay, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_currentVersion(currentVersion.isEmpty() ? kNoVersion : std::move(currentVersion))
    , m_automaticTipCooldown(automaticTipCooldown)
    , m_presentationDelay(presentationDelay)
{
    m_hasEverTipped = m_defaults.boolValue(QLatin1String(hasEverTippedKey), false);
    if (stringValue(versionKey) == m_currentVersion) {
        m_successfulActionCount
            = std::max<qint64>(0, m_defaults.integerValue(QLatin1String(successfulActionCountKey), 0));
        return;
    }
    // A new version (or none recorded): the count starts over.
    m_successfulActionCount = 0;
    if (hasUsableVersion()) {
        m_defaults.setValue(QLatin1String(versionKey), m_currentVersion);
        m_defaults.setValue(QLatin1String(successfulActionCountKey), qint64(0));
    }
}

bool EngagementPromptStore::hasUsableVersion() const
{
    return !m_currentVersion.isEmpty() && m_currentVersion != kNoVersion;
}

QString EngagementPromptStore::stringValue(const char* key) const
{
    const QVariant value = m_defaults.value(QLatin1String(key));
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

void EngagementPromptStore::recordSuccessfulAction(const QDateTime& now)
{
    if (!hasUsableVersion())
        return;
    ++m_successfulActionCount;
    m_defaults.setValue(QLatin1String(successfulActionCountKey), m_successfulActionCount);

    if (m_successfulActionCount == 1) {
        if (stringValue(lastReviewPromptVersionKey) == m_currentVersion)
            return;
        schedule(PromptKind::review, now);
    } else if (m_successfulActionCount == 2) {
        if (m_hasEverTipped || m_pendingPrompt || stringValue(lastAutoTipPromptVersionKey) == m_currentVersion
            || !cooldownHasPassed(now))
            return;
        schedule(PromptKind::tip, now);
    }
}

bool EngagementPromptStore::cooldownHasPassed(const QDateTime& now) const
{
    const QVariant stored = m_defaults.value(QLatin1String(lastAutoTipPromptDateKey));
    if (stored.typeId() != QMetaType::QDateTime || !stored.toDateTime().isValid())
        return true;
    const qint64 elapsedMs = stored.toDateTime().msecsTo(now);
    return static_cast<double>(elapsedMs) / 1000.0 >= m_automaticTipCooldown;
}

void EngagementPromptStore::schedule(PromptKind kind, const QDateTime& now)
{
    if (m_pendingPrompt)
        return;
    m_pendingPrompt = PendingPrompt {kind, now.addMSecs(std::llround(m_presentationDelay * 1000.0))};
    emit pendingPromptChanged();
}

std::optional<PromptKind> EngagementPromptStore::consumeDuePrompt(const QDateTime& now)
{
    if (!m_pendingPrompt || m_pendingPrompt->notBefore > now)
        return std::nullopt;
    const PromptKind kind = m_pendingPrompt->kind;
    m_pendingPrompt.reset();
    if (kind == PromptKind::review) {
        m_defaults.setValue(QLatin1String(lastReviewPromptVersionKey), m_currentVersion);
    } else {
        m_defaults.setValue(QLatin1String(lastAutoTipPromptVersionKey), m_currentVersion);
        m_defaults.setValue(QLatin1String(lastAutoTipPromptDateKey), now);
    }
    emit pendingPromptChanged();
    return kind;
}

void EngagementPromptStore::recordTip()
{
    if (m_hasEverTipped)
        return;
    m_hasEverTipped = true;
    m_defaults.setValue(QLatin1String(hasEverTippedKey), true);
    emit hasEverTippedChanged();
    if (m_pendingPrompt && m_pendingPrompt->kind == PromptKind::tip) {
        m_pendingPrompt.reset();
        emit pendingPromptChanged();
    }
}

void EngagementPromptStore::setPresentingPurchaseView(bool presenting)
{
    if (m_isPresentingPurchaseView == presenting)
        return;
    m_isPresentingPurchaseView = presenting;
    emit isPresentingPurchaseViewChanged(presenting);
}

} // namespace quillbay
