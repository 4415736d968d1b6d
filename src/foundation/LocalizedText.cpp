#include "foundation/LocalizedText.h"

#include <QLocale>

namespace quillbay {

QCollator& standardCollator()
{
    thread_local QCollator collator = [] {
        // The C locale has no collation of its own (and no numeric mode); people
        // running without a locale still expect natural order.
        QLocale locale;
        if (locale.language() == QLocale::C)
            locale = QLocale(QLocale::English, QLocale::UnitedStates);
        QCollator c(locale);
        c.setNumericMode(true);
        c.setCaseSensitivity(Qt::CaseInsensitive);
        c.setIgnorePunctuation(false);
        return c;
    }();
    return collator;
}

int localizedStandardCompare(const QString& a, const QString& b)
{
    return standardCollator().compare(a, b);
}

QString foldedSearchKey(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString out;
    out.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        const auto category = c.category();
        if (category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining
            || category == QChar::Mark_Enclosing)
            continue;
        out.append(c);
    }
    return out.toCaseFolded();
}

bool foldedContains(const QString& foldedHaystack, const QString& foldedNeedle)
{
    return foldedNeedle.isEmpty() || foldedHaystack.contains(foldedNeedle, Qt::CaseSensitive);
}

bool isAlphanumericScalar(char32_t scalar)
{
    switch (QChar::category(scalar)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
        return true;
    default:
        return false;
    }
}

bool localizedStandardContains(const QString& haystack, const QString& needle)
{
    return foldedContains(foldedSearchKey(haystack), foldedSearchKey(needle));
}

} // namespace quillbay
