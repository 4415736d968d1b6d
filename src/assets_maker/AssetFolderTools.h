#pragma once

#include <QDateTime>
#include <QString>

#include "platform/Pickers.h"

namespace quillbay {

namespace Tools {

// "yyyyMMdd_HH_mm_ss" in local time: the name the save panel proposes for a new asset folder.
QString timestampName(const QDateTime& now = QDateTime::currentDateTime());

// The save panel of the assets maker, opening on the desktop with a timestamp name. The
// answer is the folder the service is to create, or nothing when the user cancelled.
void chooseAssetFolder(Pickers& pickers, Pickers::Answer answer, const QString& startFolder = {});

} // namespace Tools

} // namespace quillbay
