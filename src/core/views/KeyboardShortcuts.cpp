#include "core/views/KeyboardShortcuts.h"

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
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

void addFindKey(QWidget* owner, QLineEdit* field)
{
    auto* action = new QAction(owner);
    action->setShortcut(QKeySequence::Find);
    QObject::connect(action, &QAction::triggered, field, [field] {
        if (!field->isVisible())
            return;
        field->setFocus(Qt::ShortcutFocusReason);
        field->selectAll();
    });
    owner->addAction(action);
}

} // namespace quillbay
