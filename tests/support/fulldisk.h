#pragma once

#include <csignal>
#include <sys/resource.h>

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
