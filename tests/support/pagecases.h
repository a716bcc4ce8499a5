#pragma once

#include <mivosettingswidgets/settingpage.h>

#include <QtCore/QVariant>

#include <functional>

/// One control of a page, its setting, and what a person does to it.
struct ControlCase
{
    const char* setting; ///< its key in the store
    const char* type;    ///< class name of the control; the `index`-th of that type on the page
    int index;
    QVariant initial;                   ///< shown when nothing is bound
    QVariant changed;                   ///< announced by the store while it is bound
    QVariant refused;                   ///< shown after binding through a runtime that refuses
    QVariant edited;                    ///< reached by `edit`; not the initial one
    std::function<void(QWidget*)> edit; ///< by mouse and keyboard, from any value but `edited`
    std::string writeSlot;              ///< named by the null-store warning
    std::pair<int, int> limits{0, 0};   ///< that the control keeps to, where it has some
    /// What the store keeps for a value that is shown, where it is not the value itself.
    std::function<QVariant(const QVariant&)> record = nullptr;
    std::size_t hops = 1; ///< to the runtime, of one edit

    QVariant kept(const QVariant& shown) const { return record ? record(shown) : shown; }
};

/// What a page logs of an argument that is missing; empty where it says nothing or needs it.
struct MissingLines
{
    const char* setWithoutStore = "";
    const char* unsetWithoutStore = "";
    const char* setWithoutRuntime = "";
    const char* unsetWithoutRuntime = "";
};

/// One page: how it is made, and its controls. A new page joins all tests of pages by a case here.
struct PageCase
{
    std::string name;
    bool keepsStoreWhenUnset;
    MissingLines missing;              ///< the text, "|", and the function it is logged under
    std::size_t getters;               ///< store reads of one binding
    std::size_t signals_;              ///< store signals that are followed
    std::vector<ControlCase> controls; ///< none where the store has to announce them first
    const char* qtWarning;             ///< in place of our log's, where a store is missing
    std::function<mivo::settings::SettingPage*()> make;
};

const std::vector<PageCase>& pageCases();

/// Everything of `parent` that a person operates.
std::vector<QWidget*> controlsIn(QWidget* parent);
