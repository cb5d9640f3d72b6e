#pragma once

#include <QFont>
#include <QList>

class QLabel;
class QPushButton;
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

// The width the button's style needs for its picture and caption in that font.
int ButtonWidthNeeded(const QPushButton* button, const QFont& font);

// One font for buttons that belong together: the given one, or smaller in 0.25 pt steps
// (never below 6 pt) until every caption fits its button, so that neighbours look alike.
void FitButtonFonts(const QList<QPushButton*>& buttons, QFont font);

// The height the word-wrapped label's text takes in that font within the label's width.
int WrappedTextHeight(const QLabel* label, const QFont& font);

// Shrinks a word-wrapped label's font in 0.25 pt steps (never below 6 pt) until the whole
// text fits the label's rectangle; a font with the metrics the layout was made for fits
// at its own size.
void FitWrappedFont(QLabel* label);

// Qt's own German texts (standard buttons, the text boxes' context menus) and the German
// locale, whatever the system's language: the window is German throughout. False when Qt's
// German translation cannot be loaded.
bool UseGermanQtTexts();

} // namespace zf::ui
