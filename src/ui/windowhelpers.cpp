#include "windowhelpers.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace zf::ui {

QFont ClassicFont(qreal pointSize, bool bold)
{
    static const bool substituted = [] {
        QFont::insertSubstitutions(u"MS Sans Serif"_s, {u"Liberation Sans"_s, u"Arial"_s,
                                                        u"Nimbus Sans"_s, u"DejaVu Sans"_s});
        return true;
    }();
    Q_UNUSED(substituted);
    QFont font(u"MS Sans Serif"_s);
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(pointSize);
    font.setBold(bold);
    return font;
}

void FitFont(QWidget* widget, const QString& text, int availableWidth)
{
    QFont font = widget->font();
    while (font.pointSizeF() > 6.0 && QFontMetrics(font).horizontalAdvance(text) > availableWidth)
        font.setPointSizeF(font.pointSizeF() - 0.25);
    widget->setFont(font);
}

void SetBusyCursor(bool busy)
{
    if (busy) {
        if (!QGuiApplication::overrideCursor())
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        return;
    }
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
}

void SetTopMost(QWidget* window, bool onTop)
{
    if (!window)
        return;
    // QWidget::setWindowFlag would hide a shown window; its native window takes the hint
    // while it stays on screen, and the widget only records it.
    if (QWindow* handle = window->windowHandle()) {
        handle->setFlag(Qt::WindowStaysOnTopHint, onTop);
        window->overrideWindowFlags(onTop ? window->windowFlags() | Qt::WindowStaysOnTopHint
                                          : window->windowFlags() & ~Qt::WindowStaysOnTopHint);
    } else {
        window->setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    }
    if (onTop && window->isVisible()) {
        window->raise();
        window->activateWindow();
    }
}

} // namespace zf::ui
