#include "formtrenner.h"

#include "analysis/textutil.h"
#include "messages.h"
#include "windowhelpers.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

// The marked text as plain text: the text cursor hands out paragraph separators.
QString markedText(const QPlainTextEdit* box)
{
    QString text = box->textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

// The first character, a surrogate pair kept whole.
QString firstCharacter(const QString& text)
{
    if (text.size() >= 2 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate())
        return text.left(2);
    return text.left(1);
}

QString visible(const QString& separator)
{
    if (separator == u"\n"_s || separator == u"\r"_s)
        return u"↵"_s;
    if (separator == u"\t"_s)
        return u"⇥"_s;
    return separator;
}

} // namespace

QString SeparatorPreview(const QString& clipboardText, const QString& separator)
{
    QString whole = clipboardText;
    whole.replace(u"\r\n"_s, separator);
    QString preview;
    for (const QString& piece : whole.split(separator, Qt::KeepEmptyParts)) {
        preview += Trim(piece);
        preview += u"\r\n"_s;
    }
    return preview;
}

formTrenner::formTrenner(SharedState& state, MessageFunction showMessage, QWidget* parent)
    : QDialog(parent), m_state(state), m_showMessage(std::move(showMessage))
{
    setWindowTitle(u"Trennzeichen wählen"_s);
    setFixedSize(459, 265);
    setFont(ClassicFont(8.25));

    Label1 =
        new QLabel(u"Bitte markieren Sie das Trennzeichen mit der Maus und klicken Sie auf das "
                   u"Häkchen-Symbol. Klicken Sie auf das UNDO Symbol wenn Ihre Auswahl doch nicht "
                   u"korrekt war."_s,
                   this);
    Label1->setObjectName(u"Label1"_s);
    Label1->setGeometry(8, 8, 441, 65);
    Label1->setFont(ClassicFont(12));
    Label1->setWordWrap(true);
    Label1->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    cmdTrennerNeu =
        new QPushButton(QIcon(u":/icons/check.svg"_s), u"Trennzeichen übernehmen"_s, this);
    cmdTrennerNeu->setObjectName(u"cmdTrennerNeu"_s);
    cmdTrennerNeu->setGeometry(8, 80, 217, 25);
    cmdTrennerNeu->setToolTip(u"Markiertes Trennzeichen wird übernommen. Unten wird eine "
                              u"Vorschau mit dem gewählten Trennzeichen angezeigt."_s);

    cmdTrennerVerwerfen =
        new QPushButton(QIcon(u":/icons/undo.svg"_s), u"Trennzeichen verwerfen"_s, this);
    cmdTrennerVerwerfen->setObjectName(u"cmdTrennerVerwerfen"_s);
    cmdTrennerVerwerfen->setGeometry(232, 80, 217, 25);
    cmdTrennerVerwerfen->setToolTip(u"Zurück zum ursprünglichen Zwischenablageninhalt. "
                                    u"Trennzeichen werden verworfen."_s);

    // Read-only: the user marks in it, only the preview writes it.
    txtClipText = new QPlainTextEdit(this);
    txtClipText->setObjectName(u"txtClipText"_s);
    txtClipText->setGeometry(8, 112, 441, 113);
    txtClipText->setReadOnly(true);
    txtClipText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtClipText->setLineWrapMode(QPlainTextEdit::NoWrap);

    Label2 = new QLabel(u"Trennzeichen :"_s, this);
    Label2->setObjectName(u"Label2"_s);
    Label2->setGeometry(8, 236, 97, 25);
    Label2->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    txtTrenner = new QLineEdit(this);
    txtTrenner->setObjectName(u"txtTrenner"_s);
    txtTrenner->setGeometry(104, 232, 30, 25);
    txtTrenner->setReadOnly(true);
    txtTrenner->setAlignment(Qt::AlignCenter);
    txtTrenner->setToolTip(u"Gewähltes Trennzeichen"_s);

    cmdWeiter = new QPushButton(u"Weiter mit Trennzeichen"_s, this);
    cmdWeiter->setObjectName(u"cmdWeiter"_s);
    cmdWeiter->setGeometry(232, 232, 217, 25);
    cmdWeiter->setToolTip(u"Übernimmt das Trennzeichen in das Zettelfischer Hauptfenster"_s);

    for (QPushButton* button : {cmdTrennerNeu, cmdTrennerVerwerfen, cmdWeiter}) {
        button->setAutoDefault(false);
        FitFont(button, button->text(), button->width() - (button->icon().isNull() ? 12 : 32));
    }

    connect(cmdTrennerNeu, &QPushButton::clicked, this, &formTrenner::takeSeparator);
    connect(cmdTrennerVerwerfen, &QPushButton::clicked, this, &formTrenner::discardSeparator);
    connect(cmdWeiter, &QPushButton::clicked, this, &formTrenner::continueWithSeparator);

    txtClipText->setPlainText(m_state.ClipboardText);
    m_state.ChosenSeparator.clear();
}

void formTrenner::takeSeparator()
{
    const QString marked = markedText(txtClipText);
    if (marked.isEmpty()) {
        m_showMessage(msg::MarkOneChar, MessageStyle::Information);
        return;
    }
    m_chosen = firstCharacter(marked);
    txtTrenner->setText(visible(m_chosen));
    txtClipText->setPlainText(SeparatorPreview(m_state.ClipboardText, m_chosen));
}

void formTrenner::discardSeparator()
{
    txtClipText->setPlainText(m_state.ClipboardText);
    m_chosen.clear();
    txtTrenner->clear();
}

void formTrenner::continueWithSeparator()
{
    m_state.ChosenSeparator = m_chosen;
    accept();
}

QString ChooseSeparator(SharedState& state, const MessageFunction& showMessage, QWidget* parent)
{
    formTrenner dialog(state, showMessage, parent);
    dialog.exec();
    return state.ChosenSeparator;
}

} // namespace zf::ui
