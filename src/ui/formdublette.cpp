#include "formdublette.h"

#include "formkontakt.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace zf::ui {

QString ReasonText(dup::Reason reason)
{
    switch (reason) {
    case dup::Reason::EMail:
        return u"gleiche E-Mail-Adresse"_s;
    case dup::Reason::Name:
        return u"gleicher Name"_s;
    case dup::Reason::Mobile:
        return u"gleiche Mobilnummer"_s;
    }
    return {};
}

formDublette::formDublette(const QList<dup::Match>& matches, QWidget* parent)
    : QDialog(parent), m_matches(matches)
{
    // The title, icon and font of the program's message boxes.
    setWindowTitle(u"Zettelfischer"_s);
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    lblSymbol = new QLabel(this);
    lblSymbol->setObjectName(u"lblSymbol"_s);
    lblSymbol->setPixmap(
        style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(iconSize));
    lblSymbol->setAlignment(Qt::AlignTop);

    const bool several = matches.size() > 1;
    lblFrage = new QLabel(several ? u"Diese Kontakte im Adressbuch sind vielleicht dieselbe "
                                    u"Person. Welcher soll die Daten bekommen?"_s
                                  : u"Diesen Kontakt gibt es im Adressbuch vielleicht schon."_s,
                          this);
    lblFrage->setObjectName(u"lblFrage"_s);
    lblFrage->setWordWrap(true);
    lblFrage->setTextFormat(Qt::PlainText);

    lstTreffer = new QListWidget(this);
    lstTreffer->setObjectName(u"lstTreffer"_s);
    // A single match is only to be read, several to be chosen from.
    lstTreffer->setSelectionMode(several ? QAbstractItemView::SingleSelection
                                         : QAbstractItemView::NoSelection);
    lstTreffer->setFocusPolicy(several ? Qt::StrongFocus : Qt::NoFocus);
    // Two lines a match: who, then the address and why it counts as the same person; a
    // line too long for the dialog is cut short, its tooltip has it whole.
    lstTreffer->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstTreffer->setTextElideMode(Qt::ElideRight);
    for (const dup::Match& match : matches) {
        const QString why = ReasonText(match.reason);
        const QString text = ContactLabel(match) + u'\n' +
                             (match.email.isEmpty() ? why : match.email + u" – "_s + why);
        auto* item = new QListWidgetItem(text, lstTreffer);
        item->setToolTip(text);
    }
    if (several)
        lstTreffer->setCurrentRow(0);
    // Up to three matches before it scrolls.
    int height = 0;
    for (int row = 0; row < qMin(lstTreffer->count(), 3); ++row)
        height += lstTreffer->sizeHintForRow(row);
    const int scrollBar =
        lstTreffer->count() > 3 ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
    lstTreffer->setFixedWidth(qBound(320, lstTreffer->sizeHintForColumn(0) + scrollBar + 12, 520));
    lstTreffer->setFixedHeight(height + 2 * lstTreffer->frameWidth() + 2);

    // In the order of the question: file anyway, file into the match, or nothing.
    cmdNeu = new QPushButton(u"Trotzdem neu anlegen"_s, this);
    cmdNeu->setObjectName(u"cmdNeu"_s);
    cmdAktualisieren = new QPushButton(u"Stattdessen diesen aktualisieren"_s, this);
    cmdAktualisieren->setObjectName(u"cmdAktualisieren"_s);
    cmdAbbrechen = new QPushButton(u"Abbrechen"_s, this);
    cmdAbbrechen->setObjectName(u"cmdAbbrechen"_s);
    // A hasty Enter writes nothing.
    for (QPushButton* b : {cmdNeu, cmdAktualisieren})
        b->setAutoDefault(false);
    cmdAbbrechen->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdNeu);
    buttons->addWidget(cmdAktualisieren);
    buttons->addWidget(cmdAbbrechen);

    connect(cmdNeu, &QPushButton::clicked, this, [this] {
        m_answer = {DuplicateAnswer::CreateAnyway, {}};
        QDialog::accept();
    });
    connect(cmdAktualisieren, &QPushButton::clicked, this, [this] {
        const int row = qMax(0, lstTreffer->currentRow()); // none when there is one
        m_answer = {DuplicateAnswer::UpdateInstead, m_matches.value(row).id};
        QDialog::accept();
    });
    connect(cmdAbbrechen, &QPushButton::clicked, this, &QDialog::reject);

    auto* text = new QVBoxLayout;
    text->addWidget(lblFrage);
    text->addWidget(lstTreffer);
    auto* top = new QHBoxLayout;
    top->addWidget(lblSymbol);
    top->addSpacing(8);
    top->addLayout(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

DuplicateAnswer AskDuplicate(const QList<dup::Match>& matches, QWidget* parent)
{
    formDublette dialog(matches, parent);
    dialog.exec();
    return dialog.answer();
}

} // namespace zf::ui
