#pragma once

#include "mivohostapi/imediaoutput.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

namespace mivohost {

/// The machine's outputs, which are its screens. A reference host drives none: it says what it
/// would drive them with. GUI thread, but for setOutputConfig().
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
