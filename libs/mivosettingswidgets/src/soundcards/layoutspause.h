#pragma once

#include "mivosettingswidgets/controls.h"

#include <QtWidgets/QWidget>

#include <optional>

namespace mivo::settings {

/// A LayoutPause for an editor in which a column is shown, and for what the editor stands in.
class LayoutsPause
{
public:
    explicit LayoutsPause(const QWidget* editor) : m_inner(editor->layout())
    {
        const QWidget* page = editor->parentWidget();
        if (page != nullptr && page->layout() != nullptr) {
            m_outer.emplace(page->layout());
        }
    }

private:
    std::optional<LayoutPause> m_outer;
    LayoutPause m_inner;
};

} // namespace mivo::settings
