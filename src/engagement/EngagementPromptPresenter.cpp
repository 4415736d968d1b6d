#include "engagement/EngagementPromptPresenter.h"

#include <QGuiApplication>

#include "engagement/EngagementPromptStore.h"

namespace quillbay {

EngagementPromptPresenter::EngagementPromptPresenter(EngagementPromptStore& store,
                                                     Environment environment,
                                                     QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_environment(std::move(environment))
{
    if (!m_environment.now)
        m_environment.now = [] { return QDateTime::currentDateTimeUtc(); };
    if (!m_environment.isApplicationActive) {
        m_environment.isApplicationActive = [] { return QGuiApplication::applicationState() == Qt::ApplicationActive; };
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                present();
        });
    }
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &EngagementPromptPresenter::present);
    connect(&m_store, &EngagementPromptStore::pendingPromptChanged, this, &EngagementPromptPresenter::reschedule);
    reschedule();
}

void EngagementPromptPresenter::reschedule()
{
    // A newer pending prompt replaces the wait for the former one.
    m_timer.stop();
    const auto& pending = m_store.pendingPrompt();
    if (!pending)
        return;
    const qint64 wait = std::max<qint64>(0, m_environment.now().msecsTo(pending->notBefore));
    m_timer.start(std::chrono::milliseconds(wait));
}

void EngagementPromptPresenter::present()
{
    if (!m_environment.isApplicationActive())
        return;
    const auto kind = m_store.consumeDuePrompt(m_environment.now());
    if (!kind)
        return;
    if (*kind == PromptKind::tip)
        m_store.setPresentingPurchaseView(true);
    else if (m_environment.requestReview)
        m_environment.requestReview();
}

} // namespace quillbay
