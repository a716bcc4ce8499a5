#pragma once

#include <mivosettingswidgets/isettingbox.h>

#include <QtCore/QSet>
#include <QtCore/QVariant>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

class MivoSettings;

/// One control of a page, its setting, and what a person does to it.
struct ControlCase
{
    const char* setting; ///< its key in the store
    const char* type;    ///< class name of the control; the `index`-th of that type on the page
    int index;
    QVariant initial;                   ///< shown when nothing is bound
    QVariant stored;                    ///< held by the store before the page is bound
    QVariant changed;                   ///< announced by the store while it is bound
    QVariant refused;                   ///< shown after binding through a runtime that refuses
    QVariant edited;                    ///< reached by `edit`
    std::function<void(QWidget*)> edit; ///< by mouse and keyboard, from any value but `edited`
    std::string writeSlot;              ///< named by the null-store warning
    /// What the store keeps for a value that is shown, where it is not the value itself.
    std::function<QVariant(const QVariant&)> record = nullptr;
    std::size_t hops = 1; ///< to the runtime, of one edit

    QVariant kept(const QVariant& shown) const { return record ? record(shown) : shown; }
};

/// One page: how it is made and bound, and its controls. A new page joins all tests of pages by a
/// case here.
struct PageCase
{
    std::string name;
    std::string sourceFile;
    bool keepsStoreWhenUnset;
    bool checksStore;     ///< setSettings() and unsetSettings() log a missing store
    std::size_t getters;  ///< store reads of one binding
    std::size_t signals_; ///< store signals that are followed
    std::function<mivo::settings::ISettingBox*()> make;
    std::function<void(mivo::settings::ISettingBox*, MivoSettings*)> bind;
    std::function<void(mivo::settings::ISettingBox*)> unbind;
    std::vector<ControlCase> controls; ///< none where the store has to announce them first
    const char* qtWarning =
        nullptr; ///< said by Qt's log, and not by ours, where a store is missing
};

const std::vector<PageCase>& pageCases();

inline std::ostream& operator<<(std::ostream& out, const PageCase& page)
{
    return out << page.name;
}

QWidget* findControl(QWidget* page, const ControlCase& control);
QVariant shownBy(QWidget* control);

/// Everything of `parent` that a person operates.
std::vector<QWidget*> controlsIn(QWidget* parent);

/// Whether Tab, which stopped at `stops`, leads to the control: of the radio buttons of a group to
/// one, from which the arrow keys lead to the others.
bool isReached(QWidget* control, const QSet<QWidget*>& stops);
