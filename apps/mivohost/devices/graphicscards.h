#pragma once

#include "mivohostapi/imediaoutput.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace mivohost {

class RuntimeThread;

/// The graphics cards of a machine. Names are unique: cards of one model are numbered.
struct GraphicsCardList
{
    std::vector<std::string> names;
    std::string inUse; ///< empty where there is none
};

/// Adds a card, with a number where another one has that name.
void addCard(GraphicsCardList& list, const std::string& name);

/// The cards that the kernel lists in `folder`, which has the form of Linux's /sys/class/drm. The
/// card that the machine booted with is the one in use. Empty when the folder does not exist. Any
/// thread; not on Windows.
GraphicsCardList kernelGraphicsCards(const QString& folder);

/// The cards that the system lists: on Linux the kernel's. Any thread.
GraphicsCardList systemGraphicsCards();

/// Runs in a process of its own: writes the cards that Vulkan lists, or else those of the system,
/// to the standard output as a line of JSON. Returns the exit code.
///
/// In a process of its own, because drivers take much memory, crash, or never return.
int listGraphicsCards();

/// What such a process lists, or the system where that fails, lists nothing or takes longer than
/// `longest` milliseconds. Nothing once `isWanted` is no longer set. Any thread; waits for the
/// process, and up to a second for its end.
GraphicsCardList listedGraphicsCards(const QString& program, const QStringList& arguments,
                                     const std::atomic<bool>& isWanted, int longest = 20000);

/// The machine's cards, read once on a thread of its own; the list is empty until that is done.
///
/// Made and destroyed on any one thread; the rest on the runtime thread, as IRenderFacade says.
class GraphicsCards : public mivo::mediaoutput::IRenderFacade
{
public:
    using Reader = std::function<GraphicsCardList(const std::atomic<bool>& isWanted)>;

    /// `runtime` must outlive it.
    GraphicsCards(RuntimeThread& runtime, Reader read);
    ~GraphicsCards() override;

    std::vector<std::string> graphicsCards() const override { return m_list.names; }
    std::string graphicsCardInUse() const override { return m_list.inUse; }

    /// Starts to read, once. On the thread that made it, as wait().
    void start();
    /// Returns when the cards have been read and announced, or at once where they are not read.
    void wait();

private:
    RuntimeThread& m_runtime;
    Reader m_read;
    GraphicsCardList m_list; // runtime thread
    std::atomic<bool> m_isWanted{true};
    std::thread m_reading;
};

} // namespace mivohost
