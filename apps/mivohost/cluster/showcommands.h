#pragma once

#include "cluster/etcdmessages.h"

#include <QtCore/QString>

#include <vector>

namespace mivohost {

struct ShowSetup;

/// What the program does with the show instead of opening its window. GUI thread; each tries every
/// server once and takes some seconds where none answers. `error` says why nothing was done.

/// The own settings of the machine of that name or id, as etcd has them.
std::vector<etcd::KeyValue> ownSettingsOf(const QString& machine, const ShowSetup& setup,
                                          QString& error);

/// Takes the machine of that name or id out of the show, with its own settings, unless it is
/// connected.
void forgetMachine(const QString& machine, const ShowSetup& setup, QString& error);

} // namespace mivohost
