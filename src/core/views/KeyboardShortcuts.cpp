#include "core/views/KeyboardShortcuts.h"

#include <QAbstractButton>
#include <QAction>
#include <QWidget>

namespace quillbay {

void addKeyToButton(QWidget* owner, QAbstractButton* button, const QKeySequence& key)
{
    auto* action = new QAction(owner);
    action->setShortcut(key);
    QObject::connect(action, &QAction::triggered, button, [button] {
        if (button->isVisible())
            button->click();
    });
    owner->addAction(action);
}

} // namespace quillbay
