#include "surface/rehearsal.h"

#include "base/hosttext.h"
#include "mivohostkit/settingspersistence.h"

#include <mivoqutils/post.h>
#include <mivosettingswidgets/isettingbox.h>

#include <QtCore/QMetaProperty>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QButtonGroup>

#include <algorithm>
#include <utility>

namespace mivohost {

using mivo::settings::ISettingBox;

/// Settings that are announced as changed elsewhere: nothing is written, and nothing logged.
class Rehearsal::Copy : public SettingsPersistence
{
public:
    QVariantHash loadAll() override { return {}; }
    bool write(const QVariantHash& /*settings*/) override { return true; }
    QString lastError() const override { return {}; }
    void watch(ChangeHandler handler) override { m_changed = std::move(handler); }

    void change(const QString& name, const QVariant& value)
    {
        m_changed(name, value.userType() == QMetaType::Bool ? QVariant(value.toInt()) : value);
    }

private:
    ChangeHandler m_changed;
};

namespace {

/// A control's place: its way from the page down, told so that what some page adds later does not
/// change it.
QStringList pathOf(const QWidget* control, const QWidget* page)
{
    QStringList path;
    for (const QWidget* part = control; part != page; part = part->parentWidget()) {
        const auto siblings = part->parentWidget()->findChildren<QWidget*>(
            part->objectName(), Qt::FindDirectChildrenOnly);
        int place = 0;
        for (const QWidget* sibling : siblings) {
            if (sibling == part) {
                break;
            }
            place += sibling->metaObject() == part->metaObject() ? 1 : 0;
        }
        path.prepend(QStringLiteral("%1 %2 %3")
                         .arg(QLatin1String(part->metaObject()->className()), part->objectName())
                         .arg(place));
    }
    return path;
}

QWidget* controlAt(const QStringList& path, const QWidget* page)
{
    const auto controls = page->findChildren<QWidget*>();
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const QWidget* control) {
        return pathOf(control, page) == path;
    });
    return found != controls.end() ? *found : nullptr;
}

/// One of several buttons of which one is always chosen.
bool isChoice(const QAbstractButton* button)
{
    return button->autoExclusive() || (button->group() && button->group()->exclusive());
}

QString nameOf(const QAbstractButton* button)
{
    for (const QString& name : {button->text(), button->accessibleName(), button->toolTip()}) {
        if (!name.isEmpty()) {
            return name;
        }
    }
    return {};
}

} // namespace

Rehearsal::Rehearsal(Finished finished) : m_finished(std::move(finished)) {}

Rehearsal::~Rehearsal()
{
    m_pages.clear();
}

void Rehearsal::addPage(ISettingBox* page, PageMaker maker)
{
    m_pages.push_back({page, std::move(maker), nullptr});
}

void Rehearsal::makeCopies()
{
    if (m_store) {
        return;
    }
    auto rows = std::make_unique<Copy>();
    m_rows = rows.get();
    m_store = std::make_unique<SettingsStore>(std::move(rows));
    for (Page& page : m_pages) {
        page.copy = page.maker(m_runtime, *m_store);
        page.copy->translateLanguage();
    }
}

void Rehearsal::translateLanguage()
{
    ++m_run; // a run that goes on would look up what is forgotten here
    m_known.clear();
    for (const Page& page : m_pages) {
        if (page.copy) {
            page.copy->translateLanguage();
        }
    }
}

void Rehearsal::start(const Settings& settings)
{
    makeCopies();
    m_settings.clear();
    m_unknown.clear();
    for (const auto& setting : settings) {
        m_rows->change(setting.name, setting.value);
        if (setting.isFollowed && setting.value != setting.fallback) {
            m_settings.push_back(setting);
            const auto known = m_known.find(setting.name);
            if (known == m_known.end() || known->second.value != setting.value) {
                m_unknown.push_back(setting);
            }
        }
    }
    m_step = 0;
    // The copies show a value by a queued call: what is queued behind it sees it.
    mivo::qutils::post(this, [this, run = ++m_run] { next(run); });
}

/// Every setting takes two steps: it is put to its default, and back when the controls are seen.
void Rehearsal::next(int run)
{
    if (run != m_run) {
        return;
    }
    const std::size_t index = m_step / 2;
    if (index == m_unknown.size()) {
        m_finished(differences());
        return;
    }
    const auto& setting = m_unknown[index];
    if (m_step % 2 == 0) {
        m_before = values();
        m_rows->change(setting.name, setting.fallback);
    } else {
        compare(setting, values());
        m_rows->change(setting.name, setting.value);
    }
    ++m_step;
    mivo::qutils::post(this, [this, run] { next(run); });
}

std::vector<Difference> Rehearsal::differences() const
{
    std::vector<Difference> all;
    for (const auto& setting : m_settings) {
        for (const Difference& one : m_known.at(setting.name).differences) {
            const auto same = std::find_if(all.begin(), all.end(), [&](const Difference& other) {
                return other.control == one.control;
            });
            if (same == all.end()) {
                all.push_back(one);
            } else {
                same->settings.append(setting.name);
            }
        }
    }
    return all;
}

/// What a person set: the property of each control that Qt calls the user's.
Rehearsal::Values Rehearsal::values() const
{
    Values values;
    for (const Page& page : m_pages) {
        const auto controls = page.copy->findChildren<QWidget*>();
        for (QWidget* control : controls) {
            const auto* button = qobject_cast<QAbstractButton*>(control);
            const bool isPart = qobject_cast<QAbstractSpinBox*>(control->parentWidget()) != nullptr;
            const QMetaProperty property = control->metaObject()->userProperty();
            if (property.isValid() && !isPart && (button == nullptr || button->isCheckable())) {
                values[control] = property.read(control);
            }
        }
    }
    return values;
}

void Rehearsal::compare(const SettingsStore::Entry& setting, const Values& now)
{
    Known& known = m_known[setting.name];
    known = {setting.value, {}};
    QString chosen; // by default, where there are several buttons
    std::vector<QWidget*> changed;
    for (const auto& [control, value] : now) {
        const auto before = m_before.find(control);
        if (before != m_before.end() && before->second != value) {
            changed.push_back(control);
            const auto* button = qobject_cast<QAbstractButton*>(control);
            if (button != nullptr && isChoice(button) && button->isChecked()) {
                chosen = nameOf(button);
            }
        }
    }
    for (QWidget* control : changed) {
        const auto page = std::find_if(m_pages.begin(), m_pages.end(), [&](const Page& candidate) {
            return candidate.copy->isAncestorOf(control);
        });
        QWidget* shown = controlAt(pathOf(control, page->copy.get()), page->shown);
        if (shown == nullptr) {
            continue;
        }
        QString text = control->metaObject()->userProperty().read(control).toString();
        if (const auto* button = qobject_cast<QAbstractButton*>(control)) {
            text = isChoice(button) ? chosen : hostText(button->isChecked() ? "On" : "Off");
        } else if (qobject_cast<QAbstractSpinBox*>(control) != nullptr) {
            text = control->property("text").toString(); // with its unit
        }
        known.differences.push_back({shown, text, {setting.name}});
    }
}

} // namespace mivohost
