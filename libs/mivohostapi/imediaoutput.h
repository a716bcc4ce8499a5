#pragma once

#include "mivohostapi/signals.h"

#include <cstdint>
#include <string>
#include <vector>

// What the host's output pipeline tells pages and takes from them. The host implements it; all
// operations are called on the runtime thread, where the signals are emitted too, and answer from
// what is known already: a page waits for them.

namespace mivo::mediaoutput {

/// The graphics cards that can render.
class IRenderFacade
{
public:
    virtual ~IRenderFacade() = default;

    /// Their names, each different from the others; empty where there is none, or none known yet.
    virtual std::vector<std::string> graphicsCards() const = 0;

    /// The one that renders now; empty where none does.
    virtual std::string graphicsCardInUse() const = 0;

    sigslot::signal<> graphicsCardsChanged; ///< of either answer
};

/// What the outputs are driven with.
struct STOutputConfig
{
    bool testPicture = false;              ///< in place of the program, with the next two in it
    bool testGrid = false;                 ///< a grid
    bool testOutputName = false;           ///< the name of the output
    std::string testBackground = "000000"; ///< red, green and blue, in hexadecimal digits
    std::string testForeground = "FFFFFF"; ///< the same
    float brightness = 0.5F;               ///< 0 to 1
    float contrast = 0.5F;                 ///< 0 to 1
    int rotation = 0;                      ///< degrees
    std::string graphicsCard;              ///< as IRenderFacade lists it; empty: the host chooses
    std::string displayTechnologyStandard; ///< one of mivo::displayTechnologyStandards
    int rangeMode = 0;                     ///< as in mivo::DynamicRangeConfig
    std::uint32_t bitDepth = 8;            ///< as in mivo::DynamicRangeConfig
    int scale = 1;                         ///< always 1
};

/// The physical outputs of the machine.
class IPhysicsOutputMgr
{
public:
    virtual ~IPhysicsOutputMgr() = default;

    /// What the outputs are to be driven with from the next start on.
    virtual void setOutputConfig(const STOutputConfig& config) = 0;
};

} // namespace mivo::mediaoutput
