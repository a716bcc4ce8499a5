#include "mivoqutils/volumes.h"

#include <QtCore/QStorageInfo>

namespace mivo::qutils {

qint64 bytesAvailable(const QString& root)
{
    const QStorageInfo volume(root);
    return volume.isValid() && volume.isReady() ? volume.bytesAvailable() : -1;
}

} // namespace mivo::qutils
