#include "windowhelpers.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QLibraryInfo>
#include <QLocale>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTranslator>
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

int ButtonWidthNeeded(const QPushButton* button, const QFont& font)
{
    // As QPushButton::sizeHint measures, but for any font.
    QStyleOptionButton opt;
    opt.initFrom(button);
    opt.features = QStyleOptionButton::None;
    if (button->autoDefault())
        opt.features |= QStyleOptionButton::AutoDefaultButton;
    if (button->isDefault())
        opt.features |= QStyleOptionButton::DefaultButton;
    opt.text = button->text();
    opt.icon = button->icon();
    opt.iconSize = button->iconSize();
    const QSize text = QFontMetrics(font).size(Qt::TextShowMnemonic, opt.text);
    int w = text.width();
    int h = text.height();
    if (!opt.icon.isNull()) {
        w += opt.iconSize.width() + 4;
        h = qMax(h, opt.iconSize.height());
    }
    opt.rect.setSize({w, h});
    return button->style()->sizeFromContents(QStyle::CT_PushButton, &opt, {w, h}, button).width();
}

void FitButtonFonts(const QList<QPushButton*>& buttons, QFont font)
{
    const auto fits = [&buttons](const QFont& f) {
        for (const QPushButton* b : buttons)
            if (ButtonWidthNeeded(b, f) > b->width())
                return false;
        return true;
    };
    while (font.pointSizeF() > 6.0 && !fits(font))
        font.setPointSizeF(font.pointSizeF() - 0.25);
    for (QPushButton* b : buttons)
        b->setFont(font);
}

int WrappedTextHeight(const QLabel* label, const QFont& font)
{
    const QRect room = label->contentsRect();
    return QFontMetrics(font)
        .boundingRect(room, int(label->alignment()) | Qt::TextWordWrap, label->text())
        .height();
}

void FitWrappedFont(QLabel* label)
{
    QFont font = label->font();
    while (font.pointSizeF() > 6.0 &&
           WrappedTextHeight(label, font) > label->contentsRect().height())
        font.setPointSizeF(font.pointSizeF() - 0.25);
    label->setFont(font);
}

bool UseGermanQtTexts()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(u"qtbase_de"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
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
