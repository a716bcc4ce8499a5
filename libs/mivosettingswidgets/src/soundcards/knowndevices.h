#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <string_view>
#include <unordered_map>

namespace mivo::settings {

struct KnownDevice
{
    const STDeviceSoundCards* cards;
    bool isOther; // than it was before
};

/// The devices of `now` by their names, and whether each is another than in `before`. All editors
/// are reset from one state to the next, so the last answer is kept for the others. GUI thread;
/// valid until the next call.
const std::unordered_map<std::string_view, KnownDevice>&
compareDevices(const QVector<STDeviceSoundCards>& before, const QVector<STDeviceSoundCards>& now);

} // namespace mivo::settings
