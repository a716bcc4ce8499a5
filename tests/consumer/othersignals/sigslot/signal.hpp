#pragma once

// Stands for a signal library that is not the one which the package was built with: as much of it
// as the headers need that examples/minimal includes.
namespace sigslot {

template <typename... Args>
struct signal
{
    template <typename... Values>
    void operator()(const Values&... /*values*/) const
    {}
};

} // namespace sigslot
