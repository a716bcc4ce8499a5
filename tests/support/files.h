#pragma once

#include <gtest/gtest.h>

#include <QtCore/QFile>

inline void writeFile(const QString& path, const QByteArray& content = {})
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(content), content.size());
}

/// Empty where there is no such file.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
