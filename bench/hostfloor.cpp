// The floor of starting mivohost: a bare Qt program with as many controls of the same kinds in as
// many windows. Its main window shows, the others wait to be opened. Neither files, devices, ports
// nor languages, and Qt's own look. Its argument is the file with what hostprobe wrote.

#include "rawcontrols.h"

#include <QtCore/QFile>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>

#include <memory>
#include <vector>

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QFile file(QString::fromLocal8Bit(argc == 2 ? argv[1] : ""));
    if (!file.open(QIODevice::ReadOnly)) {
        return 2;
    }
    std::vector<std::unique_ptr<QScrollArea>> windows;
    QGridLayout* grid = nullptr;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (const QString& line : lines) {
        if (line == "shown" || line == "hidden") {
            windows.push_back(std::make_unique<QScrollArea>());
            auto* content = new QWidget;
            grid = new QGridLayout(content);
            windows.back()->setWidget(content);
            windows.back()->setWidgetResizable(true);
            windows.back()->resize(1080, 800);
            windows.back()->setProperty("isShown", line == "shown");
            continue;
        }
        constexpr int columns = 4;
        QWidget* control =
            opening::makeRawControl(line.section('\t', 0, 0), line.section('\t', 1, 1));
        if (control != nullptr) {
            const int place = grid->count();
            grid->addWidget(control, place / columns, place % columns);
            const QString sheet = line.section('\t', 2);
            if (!sheet.isEmpty()) {
                control->setStyleSheet(sheet);
            }
        }
    }
    for (const auto& window : windows) {
        window->setVisible(window->property("isShown").toBool());
    }
    return QApplication::exec();
}
