#pragma once

#include <QFont>

class QWidget;

namespace zf::ui {

// The hourglass over the whole program while the contact link works; calls need not pair up.
void SetBusyCursor(bool busy);

// Puts the window into the always-on-top band or takes it out; putting it in also raises and
// activates it. On then off at once brings a window to the front a single time.
void SetTopMost(QWidget* window, bool onTop);

// "MS Sans Serif" at that size, or the closest sans-serif face the system has.
QFont ClassicFont(qreal pointSize, bool bold = false);

// Shrinks the widget's font until the text fits into the given width (never below 6 pt):
// the layout is fixed in pixels, the fonts of other systems run wider.
void FitFont(QWidget* widget, const QString& text, int availableWidth);

} // namespace zf::ui
