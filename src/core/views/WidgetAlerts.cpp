#include "core/views/WidgetAlerts.h"

#include <QMessageBox>
#include <QPushButton>

namespace quillbay {

WidgetAlerts::WidgetAlerts(QWidget* window)
    : m_window(window)
{
}

void WidgetAlerts::show(const Request& request, Answer answer)
{
    auto* box = new QMessageBox(m_window);
    box->setObjectName(QStringLiteral("alertMessageBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setText(request.messageText);
    box->setInformativeText(request.informativeText);
    switch (request.style) {
    case Style::informational:
        box->setIcon(QMessageBox::Information);
        break;
    case Style::warning:
        box->setIcon(QMessageBox::Warning);
        break;
    case Style::critical:
        box->setIcon(QMessageBox::Critical);
        break;
    }
    QList<QAbstractButton*> buttons;
    for (qsizetype i = 0; i < request.buttons.size(); ++i) {
        // The first button answers Return, the last one Escape, as on the desktop it mimics.
        const auto role = i == 0
            ? QMessageBox::AcceptRole
            : (i == request.buttons.size() - 1 ? QMessageBox::RejectRole : QMessageBox::ActionRole);
        buttons.append(box->addButton(request.buttons[i], role));
    }
    if (!buttons.isEmpty())
        box->setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
    QObject::connect(box, &QMessageBox::finished, box, [box, buttons, answer](int) {
        const int index = int(buttons.indexOf(box->clickedButton()));
        answer(index < 0 ? int(buttons.size()) - 1 : index);
    });
    box->open();
}

} // namespace quillbay
