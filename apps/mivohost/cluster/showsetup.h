#pragma once

#include "base/exitcode.h"
#include "cluster/etcdclient.h"
#include "cluster/sharedsettings.h"

#include <QtCore/QDir>

#include <memory>
#include <optional>

class QCommandLineParser;

namespace mivohost {

/// What the program is told of the show whose settings it shares.
struct ShowSetup
{
    QString show;
    EtcdServers servers;
    QString machine; ///< the id of this machine
    QString name;    ///< and its name
    /// A machine by its name or id, where the program is only to take over what that one has for
    /// itself, or to take it out of the show.
    QString adopted = {};
    QString forgotten = {};

    /// Its options of the command line.
    static void addOptions(QCommandLineParser& arguments);

    /// Why the program cannot go on with what it is told; without a reason it can.
    struct Problem
    {
        ExitCode code = finished;
        QString reason; ///< for reasonText()
    };

    /// From the command line and the environment, whose user and password it removes in any case.
    /// Files that it names are read, for ten seconds at most. Nothing without a show, and where
    /// there is a problem.
    static std::optional<ShowSetup> read(const QCommandLineParser& arguments, const QDir& data,
                                         Problem& problem);

    /// This machine's file for the show.
    QString path(const QDir& data) const;

    /// The settings in that file, which is open, as those that are shared; where it is new, with
    /// the machine's own ones at `ownPath` to begin with; empty: without. Null where `error` then
    /// says why. Runtime thread.
    std::unique_ptr<SharedSettings> share(std::unique_ptr<SqlitePersistence> local,
                                          const QString& ownPath, QString& error) const;
};

} // namespace mivohost
