#pragma once

#include "mivohostapi/imediaoutput.h"

#include <QtCore/QString>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace mivohost {

class RuntimeThread;

/// The graphics cards of a machine, each under a name of its own: twins are numbered.
struct GraphicsCardList
{
    std::vector<std::string> names;
    std::string inUse; ///< empty where there is none
};

/// The cards that the Vulkan loader finds drivers for, the one that it prefers being in use. Loads
/// those drivers, which takes a while. Any thread.
GraphicsCardList vulkanGraphicsCards();

/// The cards that the system's kernel knows, out of a folder in the form of Linux's /sys/class/drm;
/// the one that the machine started with is in use. A folder that is not there has none. Any
/// thread.
GraphicsCardList kernelGraphicsCards(const QString& folder);

/// The machine's cards: those of Vulkan, or of the kernel where that finds none.
GraphicsCardList machineGraphicsCards();

/// Reads the cards once, on a thread of its own; until then there are none.
///
/// Made and destroyed on any one thread; the rest on the runtime thread, as IRenderFacade says.
class GraphicsCards : public mivo::mediaoutput::IRenderFacade
{
public:
    using Reader = std::function<GraphicsCardList()>;

    /// `runtime` must outlive it.
    explicit GraphicsCards(RuntimeThread& runtime, Reader read = machineGraphicsCards);
    ~GraphicsCards() override;

    std::vector<std::string> graphicsCards() const override { return m_list.names; }
    std::string graphicsCardInUse() const override { return m_list.inUse; }

    /// Returns when the cards have been read and announced. On the thread that made it.
    void wait();

private:
    RuntimeThread& m_runtime;
    GraphicsCardList m_list; // runtime thread
    std::thread m_reading;
};

} // namespace mivohost
