#pragma once

// Stands for a signal library that is not the one which the package was built with: as much of it
// as the headers need that the consumer includes.
namespace sigslot {

template <typename... Args>
class signal
{
};

} // namespace sigslot
