#pragma once

#include "mivohostapi/imediaoutput.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

namespace mivohost {

/// The machine's outputs: its screens. The reference host renders nothing to them; it logs the
/// configuration that it is given. GUI thread, except setOutputConfig(), which any thread calls.
class PhysicsOutputs : public QObject, public mivo::mediaoutput::IPhysicsOutputMgr
{
    Q_OBJECT

public:
    /// Lists the screens in the log, now and whenever one comes or goes.
    PhysicsOutputs();

    void setOutputConfig(const mivo::mediaoutput::STOutputConfig& config) override;

    /// Name and size of each output.
    static QStringList outputs();
};

} // namespace mivohost
