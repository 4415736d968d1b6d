#include "assets_maker/AppIconOption.h"

namespace quillbay {

QString appIconOptionText(AppIconOption option)
{
    switch (option) {
    case AppIconOption::none:
        return QStringLiteral("None");
    case AppIconOption::singleSize:
        return QStringLiteral("Single Size");
    case AppIconOption::allSize:
        return QStringLiteral("All Size");
    }
    Q_UNREACHABLE();
}

std::optional<QString> appIconTemplateName(AppIconOption option, const QString& platformWord)
{
    switch (option) {
    case AppIconOption::none:
        return std::nullopt;
    case AppIconOption::singleSize:
        return platformWord + QStringLiteral("_single_contents");
    case AppIconOption::allSize:
        return platformWord + QStringLiteral("_allSize_contents");
    }
    Q_UNREACHABLE();
}

} // namespace quillbay
