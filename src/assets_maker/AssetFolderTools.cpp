#include "assets_maker/AssetFolderTools.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace quillbay::Tools {

QString timestampName(const QDateTime& now)
{
    return now.toLocalTime().toString(u"yyyyMMdd_HH_mm_ss"_s);
}

void chooseAssetFolder(Pickers& pickers, Pickers::Answer answer, const QString& startFolder)
{
    Pickers::SaveRequest request;
    request.directory
        = startFolder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) : startFolder;
    request.suggestedName = timestampName();
    request.title = u"Save your Asset Folder"_s;
    request.message = u"Choose a folder and a name to store your asset."_s;
    request.nameFieldLabel = u"Folder Name:"_s;
    pickers.chooseSaveLocation(request, std::move(answer));
}

} // namespace quillbay::Tools
