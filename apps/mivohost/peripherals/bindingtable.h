#pragma once

#include "mivohostapi/peripherals.h"

#include <QtCore/QJsonArray>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mivohost {

/// Which control of a device triggers which action: one control for each action and one action for
/// each control. Every operation on any thread.
class BindingTable
{
public:
    using BindInfo = mivo::peripheralcontrol::SDeviceBindInfo;

    struct Setup
    {
        /// Whether a text names a control of this kind; a binding to another text is refused.
        bool (*isControl)(const std::string& text) = nullptr;
        /// What was last saved, a JSON array, or empty. Entries that are not understood, as of a
        /// later version, are logged, and saved again as they are.
        std::string kept;
        /// Keeps all bindings as one text. Called after each change, on the thread that made it, in
        /// the order of the changes; it must not call the table.
        std::function<void(const std::string& text)> save;
    };

    explicit BindingTable(Setup setup);

    void learn(int type, const std::string& path);
    void stopLearning();
    void bind(const BindInfo& info);
    void unbind(int type, const std::string& path);
    std::vector<BindInfo> bindings() const;
    bool isEmpty() const;
    /// Replaces all bindings by these, and saves once. Others with the same action or control go
    /// before, and what binds no control is left out.
    void setAll(const std::vector<BindInfo>& infos);
    /// Takes over what is kept from now on; but not while a change that is newer has yet to be
    /// kept. Returns whether the bindings are read anew.
    bool follow(const std::string& kept);
    /// What a control is bound to; of type 0 when that is nothing.
    BindInfo boundTo(const std::string& control) const;
    /// While it is on, nothing is triggered or learned: a use that teaches is kept for takeFound().
    void setFinding(bool on);
    /// The last control that was used since the last call, as boundTo().
    std::optional<BindInfo> takeFound();
    /// All bindings as the text that Setup::save is given.
    std::string text() const;
    /// Whether `kept` says the same as text(): a table that never had a binding is kept as nothing.
    bool isKeptAs(const std::string& kept) const;
    void setLocked(bool locked) { m_locked = locked; }

    enum class Outcome {
        nothing,
        triggered, ///< the action of the control is to be carried out
        learned,   ///< the control is bound to the action that was waiting for one
        refused    ///< it is not, because another action has the control
    };

    /// What the use of a control leads to, and whose binding it is. `triggers`: it carries out the
    /// action that it is bound to. `teaches`: an action that waits for a control takes it, and then
    /// nothing is carried out.
    std::pair<Outcome, BindInfo> use(const std::string& control, bool triggers, bool teaches);

private:
    using Action = std::pair<int, std::string>; // type and path

    void put(const Action& action, const std::string& control);
    bool remove(const Action& action);
    BindInfo infoOf(const std::string& control) const;
    void restore(const std::string& kept);
    std::string textOfAll() const;
    static bool isSame(const std::string& kept, const std::string& text);
    void save();

    const Setup m_setup;
    std::atomic<bool> m_locked{false};
    mutable std::mutex m_mutex;
    std::unordered_map<std::string, Action> m_actions; // by control
    std::map<Action, std::string> m_controls;          // by action
    std::optional<Action> m_learning;
    QJsonArray m_unread; // kept for who understands them
    bool m_finding = false;
    std::optional<BindInfo> m_found;
    bool m_isKept = true;              // as far as follow() has said
    std::optional<std::string> m_read; // what the bindings are as they were kept
};

/// Implements the operations of a service that concern its bindings. `Base` is the interface.
template <typename Base>
class BoundPeripheral : public Base
{
public:
    void learn(int type, const std::string& path) override { m_table.learn(type, path); }
    void stopLearning() override { m_table.stopLearning(); }
    void bind(const BindingTable::BindInfo& info) override { m_table.bind(info); }
    void unbind(int type, const std::string& path) override { m_table.unbind(type, path); }
    std::vector<BindingTable::BindInfo> bindings() const override { return m_table.bindings(); }
    void setLocked(bool locked) override { m_table.setLocked(locked); }
    BindingTable& table() { return m_table; }
    const BindingTable& table() const { return m_table; }

protected:
    explicit BoundPeripheral(BindingTable::Setup setup) : m_table(std::move(setup)) {}

    /// As BindingTable::use(), and emits the result on the caller's thread.
    void use(const std::string& control, bool triggers, bool teaches)
    {
        const auto [outcome, info] = m_table.use(control, triggers, teaches);
        if (outcome == BindingTable::Outcome::triggered) {
            this->controlMessage(info.type, info.oprKey, info.keyValue);
        } else if (outcome != BindingTable::Outcome::nothing) {
            this->bindResult(info, outcome == BindingTable::Outcome::learned);
        }
    }

private:
    BindingTable m_table;
};

} // namespace mivohost
