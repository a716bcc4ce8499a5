#pragma once

class QWidget;

namespace mivo::settings {

/// Gives the page, and every widget in it that has a usual width or height (setUsualWidth() and
/// setUsualHeight()), that size, or the one that its text needs where that is more.
void fitUsualSizes(QWidget* page);

} // namespace mivo::settings
