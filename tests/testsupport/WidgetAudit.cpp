#include "testsupport/WidgetAudit.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QWidget>

namespace quillbay::test {

namespace {

bool isControl(const QWidget* widget)
{
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QLineEdit*>(widget)
        || qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractItemView*>(widget)
        || qobject_cast<const QAbstractSpinBox*>(widget) || qobject_cast<const QAbstractSlider*>(widget);
}

// Parts that Qt builds inside its own composite widgets (a combo box's line edit, a
// line edit's clear button, a tab bar's scroll arrows, scroll bars) are announced
// through their owner, not on their own.
bool isPartOfCompositeWidget(const QWidget* widget)
{
    if (qobject_cast<const QScrollBar*>(widget))
        return true;
    const QWidget* parent = widget->parentWidget();
    return parent
        && (qobject_cast<const QComboBox*>(parent) || qobject_cast<const QLineEdit*>(parent)
            || qobject_cast<const QTabBar*>(parent) || qobject_cast<const QAbstractSpinBox*>(parent)
            || qobject_cast<const QAbstractItemView*>(parent)
            || qobject_cast<const QAbstractItemView*>(parent->parentWidget()));
}

} // namespace

std::string controlsWithoutAccessibleName(QWidget* root)
{
    QStringList unnamed;
    const QList<QWidget*> widgets = root->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (!isControl(widget) || !widget->isVisibleTo(root) || isPartOfCompositeWidget(widget))
            continue;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        if (accessible && !accessible->text(QAccessible::Name).trimmed().isEmpty())
            continue;
        unnamed << QStringLiteral("%1 \"%2\"")
                       .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName());
    }
    return unnamed.join(QStringLiteral(", ")).toStdString();
}

} // namespace quillbay::test

namespace quillbay::test {

bool pressKey(QWidget* widget, const QKeySequence& key)
{
    QWidget* window = widget->window();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        return false;
    QWidget* target = QApplication::focusWidget();
    QTest::keySequence(target && target->window() == window ? target : window, key);
    return true;
}

} // namespace quillbay::test
