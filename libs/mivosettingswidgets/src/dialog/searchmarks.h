#pragma once

#include <QtWidgets/QWidget>

#include <vector>

namespace mivo::settings {

/// Frames around what was found, above the controls of a section, in the colour of a selection
/// (a style sheet's "selection-background-color" for #searchMarks). GUI thread.
class SearchMarks : public QWidget
{
public:
    explicit SearchMarks(QWidget* parent);

    /// Lies over all of `root` and frames `rects`, of which the one of the index `current` stands
    /// out; -1, none does.
    void mark(QWidget* root, const std::vector<QRect>& rects, int current);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<QRect> m_rects;
    int m_current = -1;
};

} // namespace mivo::settings
