#pragma once

#include <QDialog>
#include <QLabel>

namespace zf::ui {

// A label that reacts to clicks; as a link it underlines itself while the pointer is over it.
class ClickLabel : public QLabel {
    Q_OBJECT
public:
    explicit ClickLabel(QWidget* parent = nullptr, bool link = false);

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void setUnderline(bool on);

    bool m_link;
};

// The About box: borderless, a background picture, a mail link and a web link.
class formInfo : public QDialog {
    Q_OBJECT
public:
    static const QString MailLink;
    static const QString WebLink;

    explicit formInfo(QWidget* parent = nullptr);

    // Hands the link to the desktop's mail program or browser; failures stay silent.
    static void OpenLink(const QString& link);

    ClickLabel* XPImage201;
    ClickLabel* ImgMail;
    ClickLabel* HyperEMail;
    ClickLabel* HyperWebsite;
    ClickLabel* ImgWebsite;
    QLabel* Label1;
    QLabel* Label2;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace zf::ui
