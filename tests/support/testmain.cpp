#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

std::function<int(const QStringList&)>& otherProcess()
{
    static std::function<int(const QStringList&)> role;
    return role;
}

int main(int argc, char** argv)
{
    if (argc > 1 && otherProcess() && qstrncmp(argv[1], "--as-", 5) == 0) {
        const QCoreApplication application(argc, argv);
        return otherProcess()(QCoreApplication::arguments().mid(1));
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
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
