#pragma once

// The part of the sigslot library's interface that this project uses, over Boost.Signals2, for
// systems that do not package sigslot itself.

#include <boost/signals2/connection.hpp>
#include <boost/signals2/signal.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#define MIVO_SIGSLOT_ADAPTOR

namespace sigslot {

/// Handle of one connected slot. It owns nothing: the slot stays connected when the handle goes,
/// and disconnecting is safe on any thread and after the signal itself is gone.
class connection
{
public:
    connection() = default;
    explicit connection(boost::signals2::connection impl) : m_impl(std::move(impl)) {}

    void disconnect() { m_impl.disconnect(); }

private:
    boost::signals2::connection m_impl;
};

/// Disconnects its slot when it goes.
class scoped_connection
{
public:
    // NOLINTNEXTLINE(google-explicit-constructor)
    scoped_connection(connection kept) : m_kept(std::move(kept)) {}
    scoped_connection(scoped_connection&& other) noexcept
        : m_kept(std::exchange(other.m_kept, connection()))
    {}
    scoped_connection& operator=(scoped_connection&& other) noexcept
    {
        std::swap(m_kept, other.m_kept);
        return *this;
    }
    ~scoped_connection() { m_kept.disconnect(); }

private:
    connection m_kept;
};

template <typename... Args>
class signal
{
public:
    template <typename Class, typename Object, typename... Params>
    connection connect(void (Class::*method)(Params...), Object* object)
    {
        return connection(m_impl.connect(
            [method, object](Args... args) { (static_cast<Class*>(object)->*method)(args...); }));
    }

    /// The object stays while it is called; one that is gone is not called.
    template <typename Class, typename Object, typename... Params>
    connection connect(void (Class::*method)(Params...), std::weak_ptr<Object> object)
    {
        return connection(m_impl.connect([method, object = std::move(object)](Args... args) {
            if (const auto called = object.lock()) {
                (static_cast<Class*>(called.get())->*method)(args...);
            }
        }));
    }

    template <typename Callable>
    connection connect(Callable callable)
    {
        return connection(m_impl.connect(std::move(callable)));
    }

    void disconnect_all() { m_impl.disconnect_all_slots(); }
    std::size_t slot_count() const { return m_impl.num_slots(); }

    template <typename... Values>
    void operator()(Values&&... values) const
    {
        m_impl(std::forward<Values>(values)...);
    }

private:
    using Slot = std::function<void(Args...)>; // unlike Boost's own, it moves what it is given
    boost::signals2::signal<void(Args...), boost::signals2::optional_last_value<void>, int,
                            std::less<int>, Slot>
        m_impl;
};

} // namespace sigslot
