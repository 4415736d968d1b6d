#pragma once

#include <QByteArray>
#include <QString>
#include <QUuid>

namespace quillbay {

// One image of the image-set list: its PNG bytes and the dropped file's name without its
// extension, which names the generated files.
struct ImageSetItem
{
    QUuid id;
    QByteArray imageData;
    QString fileName;
};

} // namespace quillbay
