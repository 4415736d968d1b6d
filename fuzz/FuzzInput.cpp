#include "FuzzInput.h"

#include <QTemporaryDir>

namespace quillbay::fuzz {

QString scratchFolder()
{
    // Lives until the process ends, then takes its files with it.
    static const QTemporaryDir folder;
    return folder.path();
}

} // namespace quillbay::fuzz
