#pragma once

#include "mivohostapi/settingsrecords.h"

#include <cstdint>
#include <string>

namespace velorn::msgcenter {

enum EnumMsgKind : std::uint32_t { MsgInformation = 0, MsgQuestion = 1, MsgWarning = 2 };

/// A message to the operator.
struct STMsgInfo
{
    std::uint32_t kind = MsgInformation; ///< an EnumMsgKind
    std::string text;                    ///< in UTF-8, in the language of the moment
    std::int64_t programId = 0;          ///< the program that it is about; -1: none of them
    std::int64_t time = 0; ///< milliseconds since 1970 in UTC; 0: the moment of its posting

    auto fields() const { return std::tie(kind, text, programId, time); }
    MIVO_RECORD(STMsgInfo)
};

/// Where messages to the operator are collected and shown. The host implements and owns it; it
/// outlives the pages that were given it.
class IMsgCenterMgr
{
public:
    virtual ~IMsgCenterMgr() = default;

    /// Takes a message over, to be shown behind those that were posted before. The library calls
    /// it on the GUI thread; it must not wait.
    virtual void postMessage(const STMsgInfo& message) = 0;
};

} // namespace velorn::msgcenter
