#include "system/endrequests.h"

#include "base/hostlog.h"

#include <QtCore/QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

namespace mivohost {

namespace {

constexpr int endSignals[] = {SIGTERM, SIGINT, SIGHUP};
int pipeEnds[2] = {-1, -1};

void onSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = error;
}

} // namespace

void EndRequests::watch()
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
        hostLog()->warn("signals end the program at once: no pipe");
        return;
    }
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char number = 0;
        if (::read(pipeEnds[0], &number, 1) == 1) {
            hostLog()->info("ending by signal {}", static_cast<int>(number));
            emit requested();
        }
    });
    for (const int number : endSignals) {
        struct sigaction action
        {
        };
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action.sa_handler = onSignal;
            action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
            ::sigaction(number, &action, nullptr);
        }
    }
}

void EndRequests::unwatch()
{
    for (const int number : endSignals) {
        struct sigaction action
        {
        };
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler == onSignal) {
            ::signal(number, SIG_DFL);
        }
    }
    for (int& end : pipeEnds) {
        ::close(std::exchange(end, -1));
    }
}

// Session managers say it themselves.
void EndRequests::explainDelay(WId /*window*/, const QString& /*reason*/) {}

} // namespace mivohost
