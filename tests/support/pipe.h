#pragma once

#include <QtCore/QFile>

/// Makes a file that is a pipe: whoever opens it waits for the one who writes into it.
#ifdef Q_OS_WIN
#define MAKE_PIPE(path) GTEST_SKIP() << "no file can be a pipe on this system"
#else
#include <sys/stat.h>

#define MAKE_PIPE(path) ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0)
#endif
