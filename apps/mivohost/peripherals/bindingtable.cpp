#include "peripherals/bindingtable.h"

#include "base/hostlog.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace mivohost {

namespace {

const QString typeKey = QStringLiteral("type");
const QString pathKey = QStringLiteral("path");
const QString controlKey = QStringLiteral("control");

} // namespace

BindingTable::BindingTable(Setup setup) : m_setup(std::move(setup))
{
    restore(m_setup.kept);
}

void BindingTable::learn(int type, const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    m_learning = Action(type, path);
}

void BindingTable::stopLearning()
{
    const std::lock_guard lock(m_mutex);
    m_learning.reset();
}

void BindingTable::bind(const BindInfo& info)
{
    const std::lock_guard lock(m_mutex);
    if (m_setup.isControl(info.keyValue)) {
        put({info.type, info.oprKey}, info.keyValue);
        save();
    }
}

void BindingTable::unbind(int type, const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    if (remove({type, path})) {
        save();
    }
}

std::vector<BindingTable::BindInfo> BindingTable::bindings() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<BindInfo> all;
    all.reserve(m_controls.size());
    for (const auto& [action, control] : m_controls) {
        all.push_back({action.first, action.second, control});
    }
    return all;
}

bool BindingTable::isEmpty() const
{
    const std::lock_guard lock(m_mutex);
    return m_controls.empty();
}

void BindingTable::setAll(const std::vector<BindInfo>& infos)
{
    const std::lock_guard lock(m_mutex);
    m_actions.clear();
    m_controls.clear();
    for (const BindInfo& info : infos) {
        if (m_setup.isControl(info.keyValue)) {
            put({info.type, info.oprKey}, info.keyValue);
        }
    }
    save();
}

bool BindingTable::follow(const std::string& kept)
{
    const std::lock_guard lock(m_mutex);
    const bool isSameText = kept == m_read || isSame(kept, textOfAll());
    if (isSameText || !m_isKept) {
        m_isKept = isSameText;
        return false;
    }
    m_actions.clear();
    m_controls.clear();
    m_unread = {};
    restore(kept);
    return true;
}

BindingTable::BindInfo BindingTable::boundTo(const std::string& control) const
{
    const std::lock_guard lock(m_mutex);
    return infoOf(control);
}

BindingTable::BindInfo BindingTable::infoOf(const std::string& control) const
{
    const auto held = m_actions.find(control);
    return held == m_actions.end() ? BindInfo{0, {}, control}
                                   : BindInfo{held->second.first, held->second.second, control};
}

void BindingTable::setFinding(bool on)
{
    const std::lock_guard lock(m_mutex);
    m_finding = on;
    m_found.reset();
}

std::optional<BindingTable::BindInfo> BindingTable::takeFound()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_found, std::nullopt);
}

std::pair<BindingTable::Outcome, BindingTable::BindInfo>
BindingTable::use(const std::string& control, bool triggers, bool teaches)
{
    const std::lock_guard lock(m_mutex);
    if (m_finding) {
        if (teaches) {
            m_found = infoOf(control);
        }
        return {};
    }
    const auto held = m_actions.find(control);
    if (m_learning && teaches) {
        const Action action = *std::exchange(m_learning, std::nullopt);
        const BindInfo info{action.first, action.second, control};
        if (held != m_actions.end() && held->second != action) {
            return {Outcome::refused, info};
        }
        put(action, control);
        save();
        return {Outcome::learned, info};
    }
    if (!triggers || m_locked || held == m_actions.end()) {
        return {};
    }
    return {Outcome::triggered, infoOf(control)};
}

void BindingTable::put(const Action& action, const std::string& control)
{
    remove(action);
    const auto held = m_actions.find(control);
    if (held != m_actions.end()) {
        m_controls.erase(held->second);
    }
    m_actions[control] = action;
    m_controls[action] = control;
}

bool BindingTable::remove(const Action& action)
{
    const auto held = m_controls.find(action);
    if (held == m_controls.end()) {
        return false;
    }
    m_actions.erase(held->second);
    m_controls.erase(held);
    return true;
}

void BindingTable::restore(const std::string& kept)
{
    m_read = kept;
    if (kept.empty()) {
        return;
    }
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(kept));
    for (const QJsonValue value : document.array()) {
        const QJsonObject entry = value.toObject();
        const std::string control = entry[controlKey].toString().toStdString();
        if (entry[typeKey].isDouble() && entry[pathKey].isString() && m_setup.isControl(control)) {
            put({entry[typeKey].toInt(), entry[pathKey].toString().toStdString()}, control);
        } else {
            m_unread.append(value);
        }
    }
    if (!m_unread.isEmpty()) {
        hostLog()->warn(
            "{} bindings of controls could not be read: {}", m_unread.size(),
            shortened(QJsonDocument(m_unread).toJson(QJsonDocument::Compact).toStdString()));
    }
}

std::string BindingTable::text() const
{
    const std::lock_guard lock(m_mutex);
    return textOfAll();
}

bool BindingTable::isKeptAs(const std::string& kept) const
{
    return isSame(kept, text());
}

bool BindingTable::isSame(const std::string& kept, const std::string& text)
{
    return kept == text || (kept.empty() && text == "[]");
}

std::string BindingTable::textOfAll() const
{
    QJsonArray entries;
    for (const auto& [action, control] : m_controls) {
        entries.append(QJsonObject{{typeKey, action.first},
                                   {pathKey, QString::fromStdString(action.second)},
                                   {controlKey, QString::fromStdString(control)}});
    }
    for (const QJsonValue unread : m_unread) {
        entries.append(unread);
    }
    return QJsonDocument(entries).toJson(QJsonDocument::Compact).toStdString();
}

void BindingTable::save()
{
    m_isKept = false;
    m_read.reset();
    m_setup.save(textOfAll());
}

} // namespace mivohost
