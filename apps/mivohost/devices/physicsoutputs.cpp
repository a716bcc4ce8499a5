#include "devices/physicsoutputs.h"

#include "base/hostlog.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

namespace mivohost {

namespace {

void logOutputs()
{
    const QStringList outputs = PhysicsOutputs::outputs();
    const auto logger = hostLog();
    if (outputs.isEmpty()) {
        logger->warn("no output found");
    } else {
        logger->info("outputs: {}", outputs.join(QStringLiteral(", ")).toStdString());
    }
}

} // namespace

PhysicsOutputs::PhysicsOutputs()
{
    connect(qGuiApp, &QGuiApplication::screenAdded, this, logOutputs);
    // QGuiApplication::screens() still contains a screen while its removal is announced.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, logOutputs, Qt::QueuedConnection);
    logOutputs();
}

void PhysicsOutputs::setOutputConfig(const mivo::mediaoutput::STOutputConfig& config)
{
    hostLog()->info("outputs: {}, {} bit, from the next start on", config.displayTechnologyStandard,
                    config.bitDepth);
}

QStringList PhysicsOutputs::outputs()
{
    QStringList outputs;
    for (const QScreen* screen : QGuiApplication::screens()) {
        outputs.append(QStringLiteral("%1 (%2 × %3)")
                           .arg(screen->name())
                           .arg(screen->size().width())
                           .arg(screen->size().height())
                           .trimmed()); // without the blank, where it has no name
    }
    return outputs;
}

} // namespace mivohost
