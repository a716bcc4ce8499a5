#include "mivostyle/style.h"

#include <QtCore/QFile>

// In a static library resources register themselves only when they are asked to; the macro does not
// work within a namespace.
static void useResources()
{
    Q_INIT_RESOURCE(mivolanguages);
    Q_INIT_RESOURCE(mivostyle);
}

namespace mivo::style {

std::vector<QString> languageFiles()
{
    useResources();
    return {QStringLiteral(":/mivo/languages/mivo_en.qm"),
            QStringLiteral(":/mivo/languages/mivo_zh_cn.qm")};
}

QString styleSheet()
{
    useResources();
    QFile sheet(QStringLiteral(":/mivo/style/mivo.qss"));
    sheet.open(QIODevice::ReadOnly);
    return QString::fromUtf8(sheet.readAll());
}

} // namespace mivo::style
