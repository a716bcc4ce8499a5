#include "base/exitcode.h"
#include "base/filerequests.h"
#include "base/hostlog.h"
#include "base/hosttext.h"
#include "cluster/sharedshortcuts.h"
#include "cluster/showcommands.h"
#include "cluster/showsetup.h"
#include "cluster/synchroniser.h"
#include "devices/clustersimulator.h"
#include "devices/graphicscards.h"
#include "devices/physicsoutputs.h"
#include "devices/soundcardlister.h"
#include "devices/soundcards.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "store/sqlitepersistence.h"
#include "surface/actionpanel.h"
#include "surface/askforcopy.h"
#include "surface/mainwindow.h"
#include "surface/pictures.h"
#include "surface/screenfit.h"
#include "surface/settingscommand.h"
#include "surface/settingstexts.h"
#include "surface/settingsview.h"
#include "surface/showbar.h"
#include "system/autostart.h"
#include "system/console.h"
#include "system/endrequests.h"
#include "system/listener.h"
#include "system/looks.h"
#include "system/power.h"
#include "system/runninginstance.h"
#include "system/sleepwatch.h"
#include "system/timedactions.h"
#include "zrcutils/nocachefile.h"

#include <mivoqutils/post.h>
#include <mivosettingswidgets/shortcutfile.h>
#include <mivostyle/style.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <utility>

using namespace mivohost;

namespace {

// The first one, or not at all.
constexpr const char* listSoundCardsOption = "--list-sound-cards";
constexpr const char* listGraphicsCardsOption = "--list-graphics-cards";

/// Says on the standard error, and to a person at a screen, why the program does not start.
ExitCode refuse(ExitCode code, const QString& message, bool withWindow)
{
    std::fprintf(stderr, "mivohost: %s\n", message.toUtf8().constData());
    if (withWindow) {
        QMessageBox box(QMessageBox::Critical, QStringLiteral("mivohost"), message);
        box.setTextFormat(Qt::PlainText);
        box.exec();
    }
    return code;
}

/// Folders that the settings start with; each is made when something is to be put there.
std::map<SettingsStore::Key, QVariant> defaultFolders(const QDir& data)
{
    using Key = SettingsStore::Key;
    return {{Key::autoSavePath, data.filePath(QStringLiteral("projectbackups"))},
            {Key::playLogPath, data.filePath(QStringLiteral("playlog"))},
            {Key::cachePath, data.filePath(QStringLiteral("cache"))},
            {Key::sharePath, data.filePath(QStringLiteral("sharedfolder"))}};
}

/// Lets the event loop run so long.
void wait(int seconds)
{
    hostLog()->info("waiting {} s before the start", seconds);
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The program with its window, from here to its end.
int runWindow(MainWindow& window, ProjectFile& project, RuntimeThread& runtime,
              SettingsStore& store, Peripherals& peripherals, Synchroniser* synchroniser,
              bool storeIsCopy, const QCommandLineParser& arguments, int simulatedDevices)
{
    const auto notify = [&window](const char* key) {
        return [&window, key = QString::fromLatin1(key)](const QString& reason) {
            mivo::qutils::post(&window, [&window, key, reason] { window.showNotice(key, reason); });
        };
    };
    const bool allowed = arguments.isSet(QStringLiteral("allow-power-actions"));
    const auto settings = arguments.isSet(QStringLiteral("store")) ? Autostart::Settings::others
                          : storeIsCopy                            ? Autostart::Settings::copy
                                                                   : Autostart::Settings::own;
    const Autostart autostart(runtime, store, QCoreApplication::applicationFilePath(), allowed,
                              settings, notify("AutostartFailed"));
    const EndRequests ends(window);
    QObject::connect(&ends, &EndRequests::requested, [&project] {
        project.rescueAndFinish(); // now, as without a display no event is handled any more
        QApplication::quit();
    });
    QObject::connect(&ends, &EndRequests::sessionEnds, &project, &ProjectFile::rescueAndFinish);
    QObject::connect(&ends, &EndRequests::sessionGoesOn, &project, &ProjectFile::goOn);
    const SleepWatch sleep(window);
    QObject::connect(&sleep, &SleepWatch::goingToSleep, &project, &ProjectFile::rescue);
    QObject::connect(&sleep, &SleepWatch::awake, [&project, &peripherals, synchroniser] {
        project.goOn();
        peripherals.reopen();
        if (synchroniser != nullptr) {
            synchroniser->reconnect();
        }
    });
    const TimedActions timed(
        runtime, store,
        [&window, &project, allowed, tell = notify("PowerActionFailed")](
            PowerAction action, const std::function<void()>& failed) {
            const auto act = [=, &window] {
                carryOut(action, allowed, &window, [failed, tell](const QString& reason) {
                    failed();
                    tell(reason);
                });
            };
            mivo::qutils::post(&window, [&project, act] { project.afterSaves(act); });
        },
        notify("TimedActionCalledOff"));

    const Listener listener(runtime, store);
    QObject::connect(&listener, &Listener::failed, &window, &MainWindow::showNotice);
    QObject::connect(&listener, &Listener::recovered, &window, [&window](const QString& port) {
        window.messages().postMessage(
            {velorn::msgcenter::MsgInformation, hostText("PortOpen").arg(port).toStdString(), -1});
    });
    const SoundCards soundCards(
        {QCoreApplication::applicationFilePath(), {QString::fromLatin1(listSoundCardsOption)}});
    QObject::connect(&soundCards, &SoundCards::changed, [&] {
        const auto tell = [&store, cards = soundCards.cards()] {
            store.soundCards().setDeviceSoundCards({}, {}, cards);
        };
        runtime.post(tell, __FILE__, __LINE__, "SoundCards");
        if (synchroniser != nullptr) {
            synchroniser->setSoundCards(soundCards.cards());
        }
    });
    QTimer simulation;
    if (simulatedDevices > 0) {
        const auto cluster =
            std::make_shared<ClusterSimulator>(store.soundCards(), simulatedDevices, 1U);
        QObject::connect(&simulation, &QTimer::timeout, [&runtime, cluster] {
            runtime.post([cluster] { cluster->step(); }, __FILE__, __LINE__, "ClusterSimulator");
        });
        simulation.start(1000);
    }

    const RunningInstance instance(
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    QObject::connect(&instance, &RunningInstance::showRequested, &window,
                     &MainWindow::bringToFront);

    // Hiding to the tray is not the end.
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(&window, &MainWindow::closed, &QApplication::quit);
    window.showTray();
    const ScreenFit screenFit;
    window.show();
    hostLog()->info("main window open");
    window.settings(); // there from the start: its pages ask about the timed actions
    if (arguments.isSet(QStringLiteral("settings"))) {
        window.openSettings();
    }
    const int code = QApplication::exec();
    project.rescue(); // unless the user was asked
    return code;
}

int run(const QCommandLineParser& arguments)
{
    const QStringList& commands = commandOptions();
    const auto given =
        std::count_if(commands.begin(), commands.end(),
                      [&arguments](const QString& option) { return arguments.isSet(option); });
    if (given > 1) {
        return refuse(badArgument,
                      QStringLiteral("only one of --%1").arg(commands.join(QLatin1String(", --"))),
                      false);
    }
    const bool withWindow = given == 0;
    const SettingsCommand command(arguments);
    if (!command.problem.isEmpty()) {
        return refuse(badArgument, command.problem, false);
    }
    const bool drawing = arguments.isSet(QStringLiteral("pictures"));
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const QString ownPath = data.filePath(QStringLiteral("settings.sqlite"));
    QString path = ownPath;
    std::optional<QTemporaryDir> scratch; // pictures show the defaults, whatever the user has set
    if (drawing) {
        scratch.emplace();
        path = scratch->filePath(QStringLiteral("settings.sqlite"));
        // For what finds its folder itself: below HOME, on Windows beside the user's.
        qputenv("HOME", scratch->path().toUtf8());
        QStandardPaths::setTestModeEnabled(true);
    }
    if (arguments.isSet(QStringLiteral("store"))) {
        if (drawing) {
            return refuse(badArgument,
                          QStringLiteral("--pictures draws the defaults and takes no --store"),
                          false);
        }
        path = arguments.value(QStringLiteral("store"));
    }

    const auto delay = numberOf(arguments, QStringLiteral("start-delay"), 0, 300);
    if (!delay) {
        return refuse(badArgument, QStringLiteral("--start-delay takes 0 to 300 seconds"), false);
    }
    const auto simulatedDevices =
        numberOf(arguments, QStringLiteral("simulate-devices"), 1, ClusterSimulator::mostDevices);
    if (!simulatedDevices) {
        return refuse(badArgument,
                      QStringLiteral("--simulate-devices takes 1 to %1 devices")
                          .arg(ClusterSimulator::mostDevices),
                      false);
    }
    if (*delay > 0) {
        wait(*delay);
    }

    FileLock alone;
    if (withWindow) {
        // The shortcuts and the log have one owner, also when each has a store of its own.
        data.mkpath(QStringLiteral("."));
        QFile::setPermissions(data.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner
                                               | QFileDevice::ExeOwner); // for this user alone
        const QString lock = data.filePath(QStringLiteral("mivohost.lock"));
        switch (alone.lock(lock.toStdString(), 200)) {
        case FileLock::Result::locked:
            break;
        case FileLock::Result::inUse:
            if (arguments.isSet(QStringLiteral("start-delay"))) {
                return finished; // at log-on, but somebody was faster
            }
            if (!arguments.isSet(QStringLiteral("store")) && RunningInstance::show(data.path())) {
                return finished;
            }
            return refuse(storeInUse,
                          hostText("DataInUse").arg(QDir::toNativeSeparators(data.path())), true);
        case FileLock::Result::failed:
            return refuse(storeFailed,
                          hostText("DataFailed")
                              .arg(QDir::toNativeSeparators(lock),
                                   reasonText(QString::fromStdString(alone.error()))),
                          true);
        }
        for (const QString& folder :
             {data.path(), QFileInfo(mivo::settings::shortCutFilePath()).path()}) {
            NoCacheFile::removeLeftovers(folder.toStdString());
        }
    }
    const QString logPath = withWindow ? data.filePath(QStringLiteral("mivohost.log")) : QString();
    const QString logError = startLog(logPath);

    ShowSetup::Problem problem;
    const auto show = ShowSetup::read(arguments, data, problem);
    if (!problem.reason.isEmpty()) {
        return refuse(problem.code, reasonText(problem.reason), withWindow);
    }
    path = show ? show->path(data) : path;
    QString showError;
    if (show && !show->forgotten.isEmpty()) {
        forgetMachine(show->forgotten, *show, showError);
        return showError.isEmpty() ? finished : refuse(storeFailed, reasonText(showError), false);
    }
    const QString shownPath = QDir::toNativeSeparators(path);

    RuntimeThread runtime;
    auto opened = runtime.call([&] { return SqlitePersistence::open(path); });
    if (opened.status == SqlitePersistence::Status::damaged && !command.isGiven) {
        hostLog()->error("the settings file cannot be used: {}", opened.error.toStdString());
        if (opened.copyTime.isValid()
            && !wantsCopy(shownPath, opened.error, timeText(opened.copyTime))) {
            return storeFailed;
        }
        opened = runtime.call([&] { return SqlitePersistence::recover(path); });
    }
    if (opened.status == SqlitePersistence::Status::inUse) {
        return refuse(storeInUse, hostText("StoreInUse").arg(shownPath), withWindow);
    }
    if (!opened.persistence) {
        return refuse(storeFailed, hostText("StoreFailed").arg(shownPath, reasonText(opened.error)),
                      withWindow);
    }
    const QString copyError = command.isGiven && !command.changesSettings
                                  ? QString()
                                  : runtime.call([&] { return opened.persistence->keepCopy(); });
    if (!withWindow && !copyError.isEmpty()) {
        hostLog()->warn("no copy of the settings could be kept: {}", copyError.toStdString());
    }
    auto sharing = show ? runtime.call([&] {
        return show->share(std::move(opened.persistence), ownPath, showError);
    })
                        : nullptr;
    if (show && !sharing) {
        return refuse(storeFailed, hostText("StoreFailed").arg(shownPath, reasonText(showError)),
                      withWindow);
    }
    SharedSettings* const shared = sharing.get(); // belongs to the store
    if (show && !show->adopted.isEmpty()) {
        adoptMachine(show->adopted, *show, runtime, std::move(sharing), showError);
        return showError.isEmpty() ? finished : refuse(storeFailed, reasonText(showError), false);
    }
    auto store = runtime.call([&] {
        std::unique_ptr<SettingsPersistence> persistence = std::move(sharing);
        if (!show) {
            persistence = std::move(opened.persistence);
        }
        return std::make_unique<SettingsStore>(std::move(persistence), defaultFolders(data));
    });

    int code = finished;
    if (command.isGiven) {
        code = runSettingsCommand(arguments, runtime, *store);
    } else {
        const QString language =
            languageOf(runtime.call([&store] { return store->getLanguage(); }));
        switchTexts(language); // before what may fail, and tell of it
        ProjectFile project(runtime, *store);
        Peripherals peripherals(runtime, *store);
        GraphicsCards cards(runtime, [](const std::atomic<bool>& isWanted) {
            return listedGraphicsCards(QCoreApplication::applicationFilePath(),
                                       {QString::fromLatin1(listGraphicsCardsOption)}, isWanted);
        });
        SettingsServices services;
        services.cards = &cards;
        services.outputs = std::make_shared<PhysicsOutputs>();
        MainWindow window(runtime, *store, project, peripherals, services);
        window.switchLanguage(language);
        if (opened.isReplaced) {
            tellReplaced(window, path, opened);
        }
        const QStringList unusable = runtime.call([&store] { return store->unusable(); });
        if (!unusable.isEmpty()) {
            window.showNotice(QStringLiteral("SettingsNotUsed"), settingsText(unusable));
        }
        if (!logError.isEmpty()) {
            window.showNotice(QStringLiteral("LogFailed"), fileProblem(logPath, logError));
        }
        if (!copyError.isEmpty()) {
            window.showNotice(QStringLiteral("StoreCopyFailed"), copyError);
        }
        std::optional<Synchroniser> synchroniser;
        std::optional<ShowBar> bar;
        if (show) {
            synchroniser.emplace(runtime, *shared, store->soundCards(), *show);
            bar.emplace(*synchroniser, window);
            new SharedShortcuts(window.actions().shortcuts(), *synchroniser); // goes with it
            synchroniser->start();
        }
        project.start();
        if (drawing) {
            cards.start();
            cards.wait();
            const QString folder = arguments.value(QStringLiteral("pictures"));
            if (!drawPictures(window, peripherals.tap(), folder)) {
                code =
                    refuse(notWritten, QStringLiteral("cannot write pictures to ") + folder, false);
            }
        } else {
            // As the sound cards, behind the first frame.
            QTimer::singleShot(0, &window, [&cards] { cards.start(); });
            code = runWindow(window, project, runtime, *store, peripherals,
                             synchroniser ? &*synchroniser : nullptr, opened.isReplaced, arguments,
                             *simulatedDevices);
        }
    }
    runtime.call([&store] { store.reset(); });
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    useNoSystemBoxes();
    useConsole();
    forgetRelativeFolders();
    if (argc > 1 && qstrcmp(argv[1], listSoundCardsOption) == 0) {
        const QCoreApplication application(argc, argv);
        return listSoundCards();
    }
    if (argc > 1 && qstrcmp(argv[1], listGraphicsCardsOption) == 0) {
        return listGraphicsCards();
    }
    takeQtMessages();
    useNoDisplayForCommands(argc, argv);
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("mivo"));
    QApplication::setApplicationName(QStringLiteral("mivohost"));
    QApplication::setApplicationVersion(QStringLiteral(MIVO_VERSION));

    QCommandLineParser arguments;
    addProgramOptions(arguments);
    addSettingsOptions(arguments);
    ShowSetup::addOptions(arguments);
    if (const auto code = parseCommandLine(arguments)) {
        return *code;
    }
    loadLanguages();
    const bool drawing = arguments.isSet(QStringLiteral("pictures"));
    const QString look = arguments.value(QStringLiteral("look"));
    if (!Looks::isName(look)) {
        return refuse(badArgument, QStringLiteral("--look takes dark, light or system"), false);
    }
    // Pictures are the same on every desktop.
    const bool isOpen = drawing && !arguments.isSet(QStringLiteral("look"));
    const Looks looks(isOpen ? QStringLiteral("dark") : look);
    return run(arguments);
}
