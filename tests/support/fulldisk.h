#pragma once

#include <QtCore/QtGlobal>

#ifdef Q_OS_WIN

#define SKIP_WITHOUT_FULL_DISK() GTEST_SKIP() << "no disk can be made to look full on this system"

class FullDisk
{
public:
    explicit FullDisk(unsigned /*room*/ = 0) {}
};

#else

#include <csignal>
#include <sys/resource.h>

#define SKIP_WITHOUT_FULL_DISK()

/// While it lives, no file of this process grows beyond so many bytes.
class FullDisk
{
public:
    explicit FullDisk(rlim_t room = 0)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{room, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

#endif
