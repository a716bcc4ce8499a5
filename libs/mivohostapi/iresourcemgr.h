#pragma once

namespace mivo::resource {

/// The host's manager of resources. Pages that are given it keep it for the host, and call nothing.
class IResourceMgr
{
public:
    virtual ~IResourceMgr() = default;
};

} // namespace mivo::resource
