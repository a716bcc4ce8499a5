#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtGui/QFont>
#include <QtWidgets/QApplication>

#include <iostream>

std::map<QString, OtherProcess>& otherProcesses()
{
    static std::map<QString, OtherProcess> roles;
    return roles;
}

int main(int argc, char** argv)
{
    if (argc > 1 && qstrncmp(argv[1], "--as-", 5) == 0) {
        const QApplication application(argc, argv);
        const QStringList arguments = QCoreApplication::arguments().mid(1);
        return otherProcesses().at(arguments.first())(arguments);
    }
    // No test touches the user's own files, whoever starts it.
    const QTemporaryDir home;
    for (const char* name :
         {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(name, home.path().toUtf8());
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    ::testing::InitGoogleTest(&argc, argv);
#ifdef Q_OS_WIN
    // Without a screen only the fonts of one folder are known there, and without any all letters
    // are boxes.
    qputenv("QT_QPA_FONTDIR",
            QStandardPaths::writableLocation(QStandardPaths::FontsLocation).toLocal8Bit());
#endif
    QApplication application(argc, argv);
#ifdef Q_OS_WIN
    QFont font = QApplication::font();
    font.setFamilies({QStringLiteral("Segoe UI"), QStringLiteral("Noto Sans")});
    QApplication::setFont(font);
    // The system is asked for folders, and not the environment: folders of this process alone.
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setApplicationName(
        QStringLiteral("mivotests-%1").arg(QCoreApplication::applicationPid()));
#endif
    const int result = RUN_ALL_TESTS();
#ifdef Q_OS_WIN
    for (const auto& [kind, suffix] : {std::pair(QStandardPaths::AppDataLocation, ""),
                                       {QStandardPaths::AppDataLocation, "_Display"},
                                       {QStandardPaths::AppLocalDataLocation, ""}}) {
        QDir(QStandardPaths::writableLocation(kind) + suffix).removeRecursively();
    }
#endif
    if (::testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::cerr << "no test has that name\n";
        return 1;
    }
    return result;
}
