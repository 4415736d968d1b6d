#include "homebrew_catalog/views/HomebrewProgressView.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace quillbay {

HomebrewProgressView::HomebrewProgressView(const QString& text, QWidget* parent)
    : QWidget(parent)
    , m_text(text)
{
    setObjectName(QStringLiteral("progressView"));
    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    auto* bar = new QProgressBar(this);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(200);
    auto* label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("progressLabel"));
    label->setAlignment(Qt::AlignCenter);
    label->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(bar, 0, Qt::AlignHCenter);
    layout->addWidget(label);
    layout->addStretch();
}

} // namespace quillbay
