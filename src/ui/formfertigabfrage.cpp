#include "formfertigabfrage.h"

#include "windowhelpers.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace zf::ui {

formFertigAbfrage::formFertigAbfrage(bool created, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(u"Beenden oder zurück zum Zettelfischer"_s);
    setFixedSize(321, 113);
    setFont(ClassicFont(8.25));

    Label1 = new QLabel(created ? u"Kontakt wurde erfolgreich angelegt."_s
                                : u"Kontakt wurde erfolgreich bearbeitet."_s,
                        this);
    Label1->setObjectName(u"Label1"_s);
    Label1->setGeometry(8, 8, 305, 25);
    Label1->setFont(ClassicFont(12, true));
    FitFont(Label1, Label1->text(), Label1->width());

    cmdNeueRunde = new QPushButton(u"Zurück zum Zettelfischer"_s, this);
    cmdNeueRunde->setObjectName(u"cmdNeueRunde"_s);
    cmdNeueRunde->setGeometry(8, 32, 305, 33);

    cmdRaus = new QPushButton(u"Den Zettelfischer verlassen"_s, this);
    cmdRaus->setObjectName(u"cmdRaus"_s);
    cmdRaus->setGeometry(8, 72, 305, 33);

    connect(cmdNeueRunde, &QPushButton::clicked, this, [this] { answer(act::Completion::Back); });
    connect(cmdRaus, &QPushButton::clicked, this, [this] { answer(act::Completion::Leave); });

    // The contact manager's window may lie above; the prompt must stay visible.
    SetTopMost(this, true);
}

void formFertigAbfrage::answer(act::Completion choice)
{
    m_choice = choice;
    accept();
}

act::Completion ShowCompletionPrompt(bool created, QWidget* parent)
{
    formFertigAbfrage prompt(created, parent);
    prompt.exec();
    return prompt.CompletionChoice();
}

} // namespace zf::ui
