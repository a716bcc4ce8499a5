// A file of 100 to 1,000,000 shortcuts read into the manager's table, beside the same file read at
// once and taken into the same records by bare RapidJSON. Variants are "floor/100", "ours/100" and
// so on.

#include "once.h"
#include "shortcutitems.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>
#include <zrcutils/nocachefile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QApplication>

#include <fstream>
#include <memory>
#include <sstream>

namespace {

std::unique_ptr<mivo::settings::ShortCutMgr> loadOurs()
{
    auto manager = std::make_unique<mivo::settings::ShortCutMgr>();
    manager->loadShortCutInfoList();
    return manager;
}

Items loadFloor(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string text(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    BareHandler handler;
    rapidjson::StringStream stream(text.c_str());
    rapidjson::Reader().Parse(stream, handler);
    return std::move(handler.items);
}

} // namespace

int main(int argc, char** argv)
{
    const QString variant = argc == 2 ? QString::fromLatin1(argv[1]) : QString();
    if (variant == "--variants") {
        for (const int count : {100, 1000, 10000, 100000, 1000000}) {
            std::printf("floor/%d\nours/%d\n", count, count);
        }
        return 0;
    }
    const QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    const std::string path = mivo::settings::shortCutFilePath().toStdString();
    QDir().mkpath(QFileInfo(QString::fromStdString(path)).path());
    const auto count = static_cast<std::size_t>(variant.section('/', 1).toULong());
    NoCacheFile::saveToFile(path, mivo::settings::formatShortCuts(manyItems(count)));
    return variant.startsWith("floor") ? once::measure([&path] { return loadFloor(path); })
                                       : once::measure(loadOurs);
}
