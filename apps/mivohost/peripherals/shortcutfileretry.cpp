#include "peripherals/shortcutfileretry.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>
#include <zrcutils/nocachefile.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <system_error>

namespace mivohost {

using mivo::settings::ShortCutMgr;

namespace {

/// The manager does not tell why it could not write: it is looked for beside the file, which stays
/// as it is.
QString reasonOf(const std::string& path, const std::string& content)
{
    std::error_code error;
    const NoCacheFile::Replacement attempt(path, content, error);
    return error ? qt_error_string(error.value())
                 : QStringLiteral("the file that is there cannot be replaced");
}

} // namespace

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
    const std::string content = mivo::settings::formatShortCuts(info.shortCutInfoList);
    QFile file(path);
    const bool isSaved = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly)
                         && file.readAll().toStdString() == content;
    if (isSaved == !m_retry.isActive()) {
        return;
    }
    if (isSaved) {
        m_retry.stop();
        emit succeeded();
    } else {
        m_retry.start();
        emit failed(reasonOf(path.toStdString(), content));
    }
}

} // namespace mivohost
