#include "peripherals/shortcutfileretry.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace mivohost {

using mivo::settings::ShortCutMgr;

ShortcutFileRetry::ShortcutFileRetry(ShortCutMgr& manager, std::chrono::milliseconds pause)
    : m_manager(manager)
{
    m_retry.setInterval(pause);
    connect(&m_retry, &QTimer::timeout, &manager, &ShortCutMgr::saveShortCutInfoList);
    connect(&manager, &ShortCutMgr::signalShortCutSave, this, &ShortcutFileRetry::check);
}

ShortcutFileRetry::~ShortcutFileRetry()
{
    if (m_retry.isActive()) {
        m_manager.saveShortCutInfoList();
    }
}

void ShortcutFileRetry::check(const STLinkShortCutInfo& info)
{
    const QString path = mivo::settings::shortCutFilePath();
    QFile file(path);
    const bool isSaved =
        QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly)
        && file.readAll().toStdString() == mivo::settings::formatShortCuts(info.shortCutInfoList);
    if (isSaved == !m_retry.isActive()) {
        return;
    }
    if (isSaved) {
        m_retry.stop();
        emit succeeded();
    } else {
        m_retry.start();
        emit failed();
    }
}

} // namespace mivohost
