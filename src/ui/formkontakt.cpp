#include "formkontakt.h"

#include "windowhelpers.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

// The contact's place in m_found; notes have none.
constexpr int FoundRole = Qt::UserRole;

// A server answers in tenths of a second: typing on waits for a pause of this length once a
// search has taken longer than SlowSearch.
constexpr int TypingPause = 300;
constexpr qint64 SlowSearch = 50;

QString joined(std::initializer_list<QString> parts)
{
    QStringList kept;
    for (const QString& part : parts)
        if (!part.trimmed().isEmpty())
            kept << part.trimmed();
    return kept.join(u", "_s);
}

} // namespace

QString ContactLabel(const dup::Match& contact)
{
    const QString label = joined({contact.name, contact.company});
    if (!label.isEmpty())
        return label;
    return contact.email.isEmpty() ? u"(ohne Namen)"_s : contact.email;
}

QString ContactLine(const dup::Match& contact)
{
    const QString line = joined({contact.name, contact.company, contact.email});
    return line.isEmpty() ? u"(ohne Namen)"_s : line;
}

formKontakt::formKontakt(dup::ContactDirectory& directory, const QString& prompt, QWidget* parent)
    : QDialog(parent), m_directory(directory)
{
    setWindowTitle(u"Kontakt wählen"_s);
    setFont(ClassicFont(8.25));

    lblFrage = new QLabel(
        prompt.isEmpty() ? u"Welchen Kontakt soll „Bearbeiten“ überschreiben?"_s : prompt, this);
    lblFrage->setObjectName(u"lblFrage"_s);
    lblFrage->setWordWrap(true);
    lblFrage->setTextFormat(Qt::PlainText);
    txtSuche = new QLineEdit(this);
    txtSuche->setObjectName(u"txtSuche"_s);
    txtSuche->setPlaceholderText(u"Teil von Name, Firma, E-Mail oder Telefon"_s);
    txtSuche->setClearButtonEnabled(true);
    txtSuche->installEventFilter(this);
    lstKontakte = new QListWidget(this);
    lstKontakte->setObjectName(u"lstKontakte"_s);
    lstKontakte->setMinimumHeight(160);

    auto* buttons = new QDialogButtonBox(this);
    cmdOK = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    cmdOK->setObjectName(u"cmdOK"_s);
    cmdAbbrechen = buttons->addButton(u"Abbrechen"_s, QDialogButtonBox::RejectRole);
    cmdAbbrechen->setObjectName(u"cmdAbbrechen"_s);
    cmdAbbrechen->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::accepted, this, &formKontakt::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblFrage);
    layout->addWidget(txtSuche);
    layout->addWidget(lstKontakte, 1);
    layout->addWidget(buttons);
    resize(420, sizeHint().height());

    m_pause.setSingleShot(true);
    m_pause.setInterval(0);
    connect(&m_pause, &QTimer::timeout, this, &formKontakt::search);
    connect(txtSuche, &QLineEdit::textChanged, &m_pause, qOverload<>(&QTimer::start));
    connect(lstKontakte, &QListWidget::currentItemChanged, this, &formKontakt::updateState);
    connect(lstKontakte, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        if (item->data(FoundRole).isValid())
            accept();
    });
    txtSuche->setFocus();
    search();
}

void formKontakt::search()
{
    m_pause.stop();
    lstKontakte->clear();
    m_found.clear();
    const QString text = txtSuche->text().trimmed();
    if (text.isEmpty()) {
        showNote(u"Bitte einen Teil von Name, Firma, E-Mail-Adresse oder Telefonnummer "
                 u"eingeben."_s);
        return;
    }
    QList<dup::Match> found;
    QElapsedTimer took;
    took.start();
    SetBusyCursor(true);
    bool reached = true;
    try {
        found = m_directory.search(text, Limit + 1);
    } catch (const std::exception&) {
        reached = false;
    }
    SetBusyCursor(false);
    // A server that is slow to answer or to fail is not asked again at every key.
    if (took.elapsed() > SlowSearch)
        m_pause.setInterval(TypingPause);
    if (!reached) {
        showNote(u"Das Adressbuch ist nicht erreichbar."_s);
        return;
    }
    if (found.isEmpty()) {
        showNote(u"Kein Kontakt im Adressbuch enthält „%1“."_s.arg(text));
        return;
    }
    m_found = found.mid(0, Limit);
    for (qsizetype i = 0; i < m_found.size(); ++i) {
        auto* item = new QListWidgetItem(ContactLine(m_found[i]), lstKontakte);
        item->setData(FoundRole, int(i));
    }
    if (found.size() > Limit)
        showNote(u"Weitere Kontakte passen: bitte genauer suchen."_s);
    lstKontakte->setCurrentRow(0);
    updateState();
}

void formKontakt::accept()
{
    // Enter right after typing takes from what the typed text finds, not from the last list.
    if (m_pause.isActive())
        search();
    const QListWidgetItem* item = lstKontakte->currentItem();
    if (!item || !item->data(FoundRole).isValid())
        return;
    m_choice = m_found.value(item->data(FoundRole).toInt());
    QDialog::accept();
}

bool formKontakt::eventFilter(QObject* watched, QEvent* event)
{
    // The arrow keys walk the list while the typing stays in the search box; Enter takes the
    // contact even while OK still waits for the list to catch up with the typing.
    if (watched == txtSuche && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            accept();
            return true;
        }
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
            key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(lstKontakte, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void formKontakt::showNote(const QString& text)
{
    auto* item = new QListWidgetItem(text, lstKontakte);
    item->setFlags(Qt::NoItemFlags);
    QFont italic = item->font();
    italic.setItalic(true);
    item->setFont(italic);
    updateState();
}

void formKontakt::updateState()
{
    const QListWidgetItem* item = lstKontakte->currentItem();
    cmdOK->setEnabled(item && item->data(FoundRole).isValid());
    cmdOK->setDefault(true);
}

std::optional<dup::Match> ChooseContact(dup::ContactDirectory& directory, const QString& prompt,
                                        QWidget* parent)
{
    formKontakt dialog(directory, prompt, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.choice();
}

} // namespace zf::ui
