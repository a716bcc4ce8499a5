// Loaded into a Qt program with LD_PRELOAD. Writes to the descriptor that MIVO_BENCH_PROBE names,
// once the first frame of its first window is drawn: the time (nanoseconds of the monotonic clock),
// and where MIVO_BENCH_RECIPE is set what the program's windows consist of, for hostfloor. Then
// closes it.

#include "rawcontrols.h"

#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <ctime>

#include <fcntl.h>

namespace {

QString recipe()
{
    QStringList lines;
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        const auto controls = window->findChildren<QWidget*>();
        if (!controls.isEmpty()) {
            lines.append(window->isVisible() ? "shown" : "hidden");
        }
        for (const QWidget* control : controls) {
            if (!control->isWindow() && control->window() == window) {
                lines.append(opening::entryOf(control).replace('\n', ' '));
            }
        }
    }
    return lines.join('\n') + '\n';
}

class FirstFrame : public QObject
{
public:
    explicit FirstFrame(int descriptor) : QObject(qApp), m_descriptor(descriptor)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && object->isWidgetType()) {
            qApp->removeEventFilter(this);
            QTimer::singleShot(0, this, &FirstFrame::tell); // the rest of the window is painted now
        }
        return false;
    }

private:
    void tell()
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        QByteArray text = QByteArray::number(1000000000LL * now.tv_sec + now.tv_nsec) + '\n';
        if (qEnvironmentVariableIsSet("MIVO_BENCH_RECIPE")) {
            text += recipe().toUtf8();
        }
        QFile file;
        file.open(m_descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
        file.write(text);
        deleteLater();
    }

    int m_descriptor;
};

void watch()
{
    bool isNumber = false;
    const int descriptor = qEnvironmentVariableIntValue("MIVO_BENCH_PROBE", &isNumber);
    qunsetenv("MIVO_BENCH_PROBE"); // the program's own children are not watched
    qunsetenv("LD_PRELOAD");
    if (isNumber) {
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        new FirstFrame(descriptor);
    }
}
Q_COREAPP_STARTUP_FUNCTION(watch)

} // namespace
