// The input monitor. A message of OSC from the network through the service while nobody watches,
// beside the same without a tap and beside a bare socket that counts; and the GUI thread's own time
// for each of 10,000 messages a second with the monitor shown, beside the same with it closed and
// beside the bare socket, with how often the list is painted, and the longest time between two
// ticks of 16 ms in its event loop.

#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "peripherals/peripherals.h"
#include "support/hostlanguage.h"
#include "surface/inputmonitor.h"

#include <benchmark/benchmark.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtNetwork/QUdpSocket>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTableView>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <memory>
#include <thread>

namespace {

using namespace mivohost;
using namespace std::chrono_literals;

const QByteArray message("/Peripherals/Stage/Take\0,i\0\0\0\0\0\0", 32); // a release: no action

quint16 freePort()
{
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost));
    return socket.localPort();
}

/// A socket that reads as the services do, and counts.
struct Bare
{
    Bare()
    {
        socket.bind(QHostAddress(QHostAddress::LocalHost));
        QObject::connect(&socket, &QUdpSocket::readyRead, [this] {
            for (int i = 0; i < UdpInput::readAtOnce && socket.hasPendingDatagrams(); ++i) {
                count += socket.receiveDatagram().isValid() ? 1 : 0;
            }
        });
    }
    quint16 port() const { return socket.localPort(); }

    QUdpSocket socket;
    int count = 0;
};

/// The service without a tap.
struct Untapped
{
    Untapped() { osc.setInfo({true, listensAt}); }
    quint16 port() const { return listensAt; }

    quint16 listensAt = freePort();
    OscService osc;
};

/// The service with its tap and monitor.
struct Service
{
    Service() { peripherals.osc().setInfo({true, listensAt}); }
    ~Service()
    {
        runtime.call([] {}); // the store still has what was posted to it
    }
    quint16 port() const { return listensAt; }

    RuntimeThread runtime;
    SettingsStore store;
    quint16 listensAt = freePort();
    Peripherals peripherals{runtime, store};
    InputMonitor monitor{peripherals};
};

struct Watched : Service
{
    Watched()
    {
        useHostLanguage(QStringLiteral("en"));
        monitor.setTexts();
        monitor.resize(1200, 800);
        monitor.openWindow();
    }
};

class Paints : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
};

double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

template <typename Receiver>
void batch(benchmark::State& state)
{
    constexpr int size = 64;
    Receiver receiver;
    QUdpSocket sender;
    for (auto _ : state) {
        for (int i = 0; i < size; ++i) {
            sender.writeDatagram(message, QHostAddress::LocalHost, receiver.port());
        }
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * size);
}

/// Ten thousand messages a second, from another thread, for a second.
template <typename Receiver>
void flow(benchmark::State& state)
{
    constexpr int perMillisecond = 10;
    for (auto _ : state) {
        Receiver receiver;
        Paints paints;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (const auto* view = window->findChild<QTableView*>()) {
                view->viewport()->installEventFilter(&paints);
            }
        }
        std::atomic<bool> ends{false};
        std::atomic<int> sent{0};
        std::thread sender([&, port = receiver.port()] {
            QUdpSocket socket;
            auto next = std::chrono::steady_clock::now();
            while (!ends) {
                for (int i = 0; i < perMillisecond; ++i) {
                    sent += socket.writeDatagram(message, QHostAddress::LocalHost, port) > 0;
                }
                std::this_thread::sleep_until(next += 1ms);
            }
        });
        QElapsedTimer time;
        time.start();
        const double before = threadSeconds();
        qint64 longest = 0;
        QTimer frames;
        frames.setTimerType(Qt::PreciseTimer);
        QElapsedTimer frame;
        frame.start();
        QObject::connect(&frames, &QTimer::timeout,
                         [&] { longest = std::max(longest, frame.restart()); });
        frames.start(16);
        QEventLoop loop;
        QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        loop.exec();
        const double used = threadSeconds() - before;
        const double passed = static_cast<double>(time.elapsed()) / 1000;
        ends = true;
        sender.join();
        state.SetIterationTime(used / std::max(1, sent.load()));
        state.counters["sent_per_s"] = sent / passed;
        state.counters["paints_per_s"] = paints.count / passed;
        state.counters["longest_frame_ms"] = static_cast<double>(longest);
    }
}

BENCHMARK(batch<Bare>)->Name("monitor_hidden/floor");
BENCHMARK(batch<Untapped>)->Name("monitor_hidden/no_tap");
BENCHMARK(batch<Service>)->Name("monitor_hidden/ours");
BENCHMARK(flow<Bare>)->Name("monitor_flow/floor")->Iterations(1)->UseManualTime();
BENCHMARK(flow<Service>)->Name("monitor_flow/closed")->Iterations(1)->UseManualTime();
BENCHMARK(flow<Watched>)->Name("monitor_flow/shown")->Iterations(1)->UseManualTime();

} // namespace
