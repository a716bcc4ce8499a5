#pragma once

#include <QtCore/QHash>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

/// A sound server of a test's own, without any card at first. While it lives, every program that
/// is started takes it for the machine's.
class SoundServer
{
public:
    SoundServer();
    ~SoundServer();

    /// False where there is no such server to be had.
    bool start();
    void stop();

    /// A card comes, and goes. Failures are failures of the test.
    void load(const QString& name, int channels = 2);
    void unload(const QString& name);

private:
    QString socket() const { return m_folder.filePath("sound"); }
    bool control(const QStringList& arguments);

    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_answer;
    QHash<QString, QString> m_modules; // by the cards' names
};
