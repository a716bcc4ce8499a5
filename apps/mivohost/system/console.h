#pragma once

#include <QtCore/QStringList>

#include <optional>

class QCommandLineParser;

namespace mivohost {

/// A program with windows gets no console on Windows: what it prints is to be seen in the one from
/// which it was started, if any, unless it goes elsewhere. Elsewhere, a reader of what it prints
/// that goes does not end the program. At the start of the program.
void useConsole();

/// On Windows, no box of the system asks for a disk that is not in its drive, over all windows,
/// while who looked for a file waits: that just fails. Before all else.
#ifdef Q_OS_WIN
void useNoSystemBoxes();
#else
inline void useNoSystemBoxes() {}
#endif

/// The folders of the environment that are relative, and would be others in each current folder,
/// are not there, as their standard has it; Qt would take them. Before all that looks for a folder.
void forgetRelativeFolders();

/// From now on Qt's messages go the way of the log's lines for the console, without those on what a
/// screen without a window manager cannot do: these come for each window, and nobody can do
/// anything about it.
void takeQtMessages();

/// The options that let the program do something without a window, then end. One at a time.
const QStringList& commandOptions();

/// On Linux, lets a command that opens no window do without a display. Before the QApplication.
void useNoDisplayForCommands(int argc, char** argv);

/// What the program is, and its options that no other file adds.
void addProgramOptions(QCommandLineParser& arguments);

/// Parses the program's command line. Help, version and what is wrong, as an option that is empty
/// or an argument that is none, are printed, and the program ends with the code that is returned.
/// In place of QCommandLineParser::process(), which on Windows shows them in a box, and waits,
/// where output goes into a file.
std::optional<int> parseCommandLine(QCommandLineParser& arguments);

/// The number that an option has, or 0 without the option. Nothing if it is another than `low` to
/// `high`.
std::optional<int> numberOf(const QCommandLineParser& arguments, const QString& option, int low,
                            int high);

} // namespace mivohost
