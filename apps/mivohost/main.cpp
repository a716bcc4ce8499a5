#include "runtime/runtimethread.h"
#include "store/settingsstore.h"
#include "store/sqlitepersistence.h"
#include "surface/hostlog.h"
#include "surface/mainwindow.h"
#include "surface/pictures.h"
#include "surface/settingsview.h"

#include "qvspdlog/spdlogapplication.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <cstdio>
#include <memory>
#include <optional>

using namespace mivohost;

namespace {

enum ExitCode { finished = 0, storeInUse = 2, storeFailed = 3, notWritten = 4 };

QString systemLanguage()
{
    return QLocale::system().language() == QLocale::Chinese ? QStringLiteral("zh_cn")
                                                            : QStringLiteral("en");
}

void loadLanguages()
{
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    for (const QString& file : languageFiles()) {
        translator.load(file);
    }
    translator.switchLanguage(systemLanguage());
    translator.setMissingTextHandler(
        [](const QString& /*catalogue*/, const QString& /*context*/, const QString& key) {
            QV::SpdlogApplication::instance().logger()->warn("no text for {}", key.toStdString());
        });
}

/// Says on the standard error, and to a person at a screen, why the program does not start.
ExitCode refuse(ExitCode code, const QString& message, bool withWindow)
{
    std::fprintf(stderr, "mivohost: %s\n", qPrintable(message));
    if (withWindow) {
        QMessageBox::critical(nullptr, QStringLiteral("mivohost"), message);
    }
    return code;
}

int run(const QCommandLineParser& arguments)
{
    const bool printing = arguments.isSet(QStringLiteral("print-settings"));
    const bool drawing = arguments.isSet(QStringLiteral("pictures"));
    const bool withWindow = !printing && !drawing;
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    std::optional<QTemporaryDir> scratch; // pictures show the defaults, whatever the user has set
    if (drawing) {
        scratch.emplace();
    }
    QString path = drawing ? scratch->filePath(QStringLiteral("settings.sqlite"))
                           : data.filePath(QStringLiteral("settings.sqlite"));
    if (arguments.isSet(QStringLiteral("store"))) {
        path = arguments.value(QStringLiteral("store"));
    }
    data.mkpath(QStringLiteral("."));
    startLog(withWindow ? data.filePath(QStringLiteral("mivohost.log")) : QString());

    RuntimeThread runtime;
    auto opened = runtime.call([&path] { return SqlitePersistence::open(path); });
    if (opened.status == SqlitePersistence::Status::inUse) {
        return refuse(storeInUse, hostText(QStringLiteral("StoreInUse")).arg(path), withWindow);
    }
    if (!opened.persistence) {
        return refuse(storeFailed, hostText(QStringLiteral("StoreFailed")).arg(path, opened.error),
                      withWindow);
    }
    auto store = runtime.call(
        [&opened] { return std::make_unique<SettingsStore>(std::move(opened.persistence)); });

    int code = finished;
    if (printing) {
        for (const auto& [key, value] : runtime.call([&store] { return store->all(); })) {
            std::printf("%s=%s\n", qPrintable(key), qPrintable(value.toString()));
        }
    } else {
        MainWindow window(runtime, *store);
        const QString language = runtime.call([&store] { return store->getLanguage(); });
        window.switchLanguage(language.isEmpty() ? systemLanguage() : language);
        if (opened.status == SqlitePersistence::Status::putAside) {
            QV::SpdlogApplication::instance().logger()->error(
                "the settings file could not be read; put aside as {}",
                opened.asidePath.toStdString());
            window.showNotice(QStringLiteral("StorePutAside"),
                              QFileInfo(opened.asidePath).fileName());
        }
        if (drawing) {
            const QString folder = arguments.value(QStringLiteral("pictures"));
            if (!drawPictures(window, folder)) {
                code =
                    refuse(notWritten, QStringLiteral("cannot write pictures to ") + folder, false);
            }
        } else {
            window.show();
            if (arguments.isSet(QStringLiteral("settings"))) {
                window.openSettings();
            }
            code = QApplication::exec();
        }
    }
    runtime.call([&store] { store.reset(); });
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("mivo"));
    QApplication::setApplicationName(QStringLiteral("mivohost"));
    QApplication::setApplicationVersion(QStringLiteral(MIVO_VERSION));

    QCommandLineParser arguments;
    arguments.setApplicationDescription(
        QStringLiteral("Reference host of the settings library mivosettingswidgets."));
    arguments.addHelpOption();
    arguments.addVersionOption();
    arguments.addOptions({
        {QStringLiteral("settings"), QStringLiteral("Open the settings dialog at once.")},
        {QStringLiteral("pictures"),
         QStringLiteral("Draw every page in every language into PNG files, then end."),
         QStringLiteral("folder")},
        {QStringLiteral("print-settings"), QStringLiteral("Print all settings, then end.")},
        {QStringLiteral("store"), QStringLiteral("Use this settings file."),
         QStringLiteral("file")},
    });
    arguments.process(application);

    loadLanguages();
    application.setStyleSheet(hostStyleSheet());
    return run(arguments);
}
