#include "forminfo.h"

#include "version.h"
#include "windowhelpers.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace zf::ui {

const QString formInfo::MailLink = u"Mailto:kontakt@zettelfischer.example"_s;
const QString formInfo::WebLink = u"https://zettelfischer.example"_s;

ClickLabel::ClickLabel(QWidget* parent, bool link) : QLabel(parent), m_link(link)
{
    setCursor(Qt::PointingHandCursor);
}

void ClickLabel::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
    QLabel::mouseReleaseEvent(event);
}

void ClickLabel::enterEvent(QEnterEvent* event)
{
    setUnderline(true);
    QLabel::enterEvent(event);
}

void ClickLabel::leaveEvent(QEvent* event)
{
    setUnderline(false);
    QLabel::leaveEvent(event);
}

void ClickLabel::setUnderline(bool on)
{
    if (!m_link)
        return;
    QFont f = font();
    f.setUnderline(on);
    setFont(f);
}

namespace {

ClickLabel* imageLabel(QWidget* parent, const QString& name, const QString& icon, QRect place)
{
    auto* label = new ClickLabel(parent);
    label->setObjectName(name);
    label->setGeometry(place);
    label->setPixmap(QIcon(icon).pixmap(place.size()));
    return label;
}

ClickLabel* linkLabel(QWidget* parent, const QString& name, const QString& text, QRect place)
{
    auto* label = new ClickLabel(parent, true);
    label->setObjectName(name);
    label->setText(text);
    label->setGeometry(place);
    QPalette p = label->palette();
    p.setColor(QPalette::WindowText, QColor(0x1a, 0x3a, 0x8c));
    label->setPalette(p);
    return label;
}

QLabel* plainLabel(QWidget* parent, const QString& name, const QString& text, QRect place)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setGeometry(place);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    QPalette p = label->palette();
    p.setColor(QPalette::WindowText, QColor(0x1e, 0x2a, 0x3a));
    label->setPalette(p);
    return label;
}

} // namespace

formInfo::formInfo(QWidget* parent) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    setWindowTitle(u"Über Zettelfischer"_s);
    setFixedSize(370, 200);
    setFont(ClassicFont(8.25));

    Label1 = plainLabel(
        this, u"Label1"_s,
        u"Zettelfischer v.%1 · © 2024 Zettelfischer-Projekt"_s.arg(QString::fromUtf16(Version)),
        {8, 64, 337, 33});
    Label2 =
        plainLabel(this, u"Label2"_s, u"Macht aus kopierten Adressen Kontakte. Gebaut mit Qt."_s,
                   {8, 88, 337, 33});
    ImgMail = imageLabel(this, u"ImgMail"_s, u":/icons/mail.svg"_s, {8, 120, 24, 24});
    HyperEMail = linkLabel(this, u"HyperEMail"_s, u"Zettelfischer"_s, {32, 124, 169, 17});
    ImgWebsite = imageLabel(this, u"ImgWebsite"_s, u":/icons/web.svg"_s, {208, 120, 24, 24});
    HyperWebsite =
        linkLabel(this, u"HyperWebsite"_s, u"Internet Zettelfischer"_s, {232, 124, 129, 17});
    XPImage201 = imageLabel(this, u"XPImage201"_s, u":/icons/close.svg"_s, {346, 176, 13, 13});

    HyperEMail->setToolTip(MailLink.mid(7));
    HyperWebsite->setToolTip(WebLink);
    XPImage201->setToolTip(u"Schließen"_s);

    connect(ImgMail, &ClickLabel::clicked, this, [] { OpenLink(MailLink); });
    connect(HyperEMail, &ClickLabel::clicked, this, [] { OpenLink(MailLink); });
    connect(ImgWebsite, &ClickLabel::clicked, this, [] { OpenLink(WebLink); });
    connect(HyperWebsite, &ClickLabel::clicked, this, [] { OpenLink(WebLink); });
    connect(XPImage201, &ClickLabel::clicked, this, &QDialog::accept);
}

void formInfo::OpenLink(const QString& link)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    QDesktopServices::openUrl(QUrl(link));
    QGuiApplication::restoreOverrideCursor();
    QCoreApplication::processEvents();
}

void formInfo::paintEvent(QPaintEvent*)
{
    static QSvgRenderer background(u":/icons/about.svg"_s);
    QPainter painter(this);
    background.render(&painter, QRectF(rect()));
}

} // namespace zf::ui
