// The sections of the package page, built from one state of the store.
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QUrl>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"
#include "homebrew_catalog/views/HomebrewProgressView.h"
#include "platform/Workspace.h"

namespace quillbay {

using namespace Qt::StringLiterals;

namespace {

QString objectNameFor(const QString& title)
{
    QString name;
    bool upper = false;
    for (const QChar c : title) {
        if (!c.isLetterOrNumber()) {
            upper = !name.isEmpty();
            continue;
        }
        name += name.isEmpty() ? c.toLower() : (upper ? c.toUpper() : c);
        upper = false;
    }
    return name + u"GroupBox"_s;
}

QGroupBox* addSection(QVBoxLayout* layout, const QString& title)
{
    auto* box = new QGroupBox(title);
    box->setObjectName(objectNameFor(title));
    auto* form = new QFormLayout(box);
    form->setLabelAlignment(Qt::AlignLeft);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    layout->addWidget(box);
    return box;
}

QFormLayout* formOf(QGroupBox* box)
{
    return static_cast<QFormLayout*>(box->layout());
}

QLabel* textLabel(const QString& text, bool selectable, bool monospaced = false)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    if (selectable)
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    if (monospaced)
        label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return label;
}

// A label with a leading symbol, as the status and warning lines have.
QWidget* iconLine(const QString& symbol, const QString& text, const QString& objectName)
{
    auto* line = new QWidget;
    line->setObjectName(objectName);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(line);
    icon->setPixmap(symbolIcon(symbol).pixmap(16, 16));
    icon->setAccessibleName(symbol);
    auto* label = textLabel(text, true);
    label->setParent(line);
    label->setObjectName(objectName + u"Label"_s);
    row->addWidget(icon);
    row->addWidget(label, 1);
    return line;
}

// A row that reads as a link and pushes a package page.
QPushButton* linkButton(const QString& text, const QString& objectName)
{
    auto* button = new QPushButton(text);
    button->setObjectName(objectName);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(u"QPushButton { text-align: left; border: none; padding: 2px 0; color: palette(link); }"_s);
    return button;
}

bool hasText(const std::optional<QString>& text)
{
    return text && !text->isEmpty();
}

} // namespace

void HomebrewPackageDetailView::rebuildForm(const Shown& shown)
{
    // The installed sections outlive the form they stand in.
    if (m_installedSections)
        m_installedSections->setParent(this);
    if (QWidget* old = m_scrollArea->takeWidget())
        old->deleteLater();
    m_copyButton = nullptr;

    m_form = new QWidget;
    m_form->setObjectName(u"detailFormWidget"_s);
    auto* layout = new QVBoxLayout(m_form);
    layout->setContentsMargins(16, 4, 16, 16);
    layout->setSpacing(12);
    if (m_installedSections) {
        layout->addWidget(m_installedSections);
        m_installedSections->show();
    }
    if (shown.detail)
        addCatalogSections(layout, *shown.detail, shown);
    else
        addDetailUnavailableSection(layout, shown);
    layout->addStretch(1);
    m_scrollArea->setWidget(m_form);
}

void HomebrewPackageDetailView::addTryAgainRow(QGroupBox* box)
{
    auto* retry = new QPushButton(u"Try Again"_s);
    retry->setObjectName(u"tryAgainPushButton"_s);
    connect(retry, &QPushButton::clicked, this, &HomebrewPackageDetailView::startLoad);
    auto* row = new QHBoxLayout;
    row->addWidget(retry);
    row->addStretch();
    formOf(box)->addRow(row);
}

void HomebrewPackageDetailView::addDetailUnavailableSection(QVBoxLayout* layout, const Shown& shown)
{
    QGroupBox* box = addSection(layout, u"Catalog Details"_s);
    if (shown.isLoading) {
        formOf(box)->addRow(new HomebrewProgressView(u"Loading Package Details"_s));
        return;
    }
    formOf(box)->addRow(iconLine(u"exclamationmark.triangle"_s,
                                 shown.error.value_or(u"The package details could not be loaded."_s),
                                 u"detailErrorLine"_s));
    addTryAgainRow(box);
}

void HomebrewPackageDetailView::addCatalogSections(QVBoxLayout* layout,
                                                   const HomebrewPackageDetail& detail,
                                                   const Shown& shown)
{
    const HomebrewFormula* formula = detail.formula();
    const HomebrewCask* cask = detail.cask();
    const bool isFormula = formula != nullptr;

    if (shown.error) {
        QGroupBox* box = addSection(layout, u"Update Failed"_s);
        formOf(box)->addRow(iconLine(u"exclamationmark.triangle"_s, *shown.error, u"updateFailedLine"_s));
        addTryAgainRow(box);
    }

    {
        QGroupBox* box = addSection(layout, u"Overview"_s);
        QFormLayout* form = formOf(box);
        const std::optional<QString>& description = isFormula ? formula->description : cask->description;
        if (hasText(description)) {
            QLabel* text = textLabel(*description, true);
            text->setObjectName(u"descriptionLabel"_s);
            form->addRow(text);
        }
        form->addRow(u"Package"_s, textLabel(detail.identifier(), true, true));
        form->addRow(u"Type"_s, textLabel(isFormula ? u"Formula"_s : u"Cask"_s, false));
        form->addRow(u"Current Version"_s, textLabel(detail.currentVersionText(), true, true));
        const std::optional<QString>& tap = isFormula ? formula->tap : cask->tap;
        form->addRow(u"Tap"_s, textLabel(tap.value_or(isFormula ? u"homebrew/core"_s : u"homebrew/cask"_s), false));
        if (isFormula && hasText(formula->license))
            form->addRow(u"License"_s, textLabel(*formula->license, true));
        const std::optional<QString>& homepage = isFormula ? formula->homepage : cask->homepage;
        if (hasText(homepage)) {
            auto* link
                = new QLabel(u"<a href=\"%1\">%2</a>"_s.arg(homepage->toHtmlEscaped(), homepage->toHtmlEscaped()));
            link->setObjectName(u"homepageLabel"_s);
            link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
            connect(link, &QLabel::linkActivated, this, [this](const QString& url) { m_workspace.openUrl(QUrl(url)); });
            form->addRow(u"Homepage"_s, link);
        }
    }

    const bool disabled = (isFormula ? formula->disabled : cask->disabled).value_or(false);
    const bool deprecated = (isFormula ? formula->deprecated : cask->deprecated).value_or(false);
    if (disabled || deprecated) {
        QGroupBox* box = addSection(layout, u"Status"_s);
        QFormLayout* form = formOf(box);
        form->addRow(disabled ? iconLine(u"nosign"_s, u"Disabled"_s, u"statusLine"_s)
                              : iconLine(u"exclamationmark.triangle"_s, u"Deprecated"_s, u"statusLine"_s));
        const std::optional<QString>& disableReason = isFormula ? formula->disableReason : cask->disableReason;
        const std::optional<QString>& deprecationReason
            = isFormula ? formula->deprecationReason : cask->deprecationReason;
        if (disableReason || deprecationReason)
            form->addRow(u"Availability"_s, textLabel(disableReason ? *disableReason : *deprecationReason, true));
        if (const auto replacement = detail.replacementRoute()) {
            QPushButton* link = linkButton(replacement->identifier, u"replacementLinkPushButton"_s);
            connect(link, &QPushButton::clicked, this, [this, target = *replacement] { pushRoute(target); });
            form->addRow(u"Replacement"_s, link);
        }
    }

    {
        QGroupBox* box = addSection(layout, u"Install Command"_s);
        QLabel* command = textLabel(detail.installCommand(), true, true);
        command->setObjectName(u"installCommandLabel"_s);
        formOf(box)->addRow(command);
        m_copyButton = new QPushButton;
        m_copyButton->setObjectName(u"copyInstallCommandPushButton"_s);
        connect(m_copyButton, &QPushButton::clicked, this, &HomebrewPackageDetailView::copyInstallCommand);
        updateCopyButton();
        auto* row = new QHBoxLayout;
        row->addWidget(m_copyButton);
        row->addStretch();
        formOf(box)->addRow(row);
    }

    if (shown.summary) {
        QGroupBox* box = addSection(layout, u"Installation Statistics"_s);
        const HomebrewAnalyticsCounts& counts = shown.summary->analytics;
        for (const auto& [title, count] :
             {std::pair {u"30 Days"_s, counts.thirtyDays}, std::pair {u"90 Days"_s, counts.ninetyDays},
              std::pair {u"365 Days"_s, counts.threeHundredSixtyFiveDays}}) {
            QLabel* value = textLabel(HomebrewPackageTableModel::countText(count), false);
            value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            formOf(box)->addRow(title, value);
        }
    }

    const std::optional<QString>& caveats = isFormula ? formula->caveats : cask->caveats;
    if (hasText(caveats)) {
        QGroupBox* box = addSection(layout, u"Caveats"_s);
        formOf(box)->addRow(textLabel(*caveats, true));
    }

    for (const HomebrewDependencySection& section : detail.dependencySections()) {
        QGroupBox* box = addSection(layout, section.title);
        box->setObjectName(u"dependencySectionGroupBox"_s);
        for (const HomebrewPackageRoute& target : section.routes) {
            QPushButton* link = linkButton(target.identifier, u"dependencyLinkPushButton"_s);
            link->setToolTip(target.description());
            connect(link, &QPushButton::clicked, this, [this, target] { pushRoute(target); });
            formOf(box)->addRow(link);
        }
    }

    if (const QStringList lines = detail.requirementLines(); !lines.isEmpty()) {
        QGroupBox* box = addSection(layout, u"Requirements"_s);
        for (const QString& line : lines)
            formOf(box)->addRow(textLabel(line, true));
    }

    if (isFormula && formula->conflictsWith && !formula->conflictsWith->isEmpty()) {
        QGroupBox* box = addSection(layout, u"Conflicts"_s);
        for (const QString& line : *formula->conflictsWith)
            formOf(box)->addRow(textLabel(line, true));
    }
}

} // namespace quillbay
