#include "formmain.h"

#include "act/messages.h"
#include "analysis/analyser.h"
#include "analysis/textutil.h"
#include "formadressbuch.h"
#include "formdublette.h"
#include "formfertigabfrage.h"
#include "forminfo.h"
#include "formkontakt.h"
#include "formtrenner.h"
#include "messages.h"
#include "settings/clsini.h"
#include "settings/settings.h"
#include "updatelaunch.h"
#include "version.h"
#include "windowhelpers.h"

#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

// Whether the settings file names the analysis itself; its choice then wins over the window's.
bool SettingsNameAnalysis(const QString& iniPath)
{
    // No value written by hand can hold a line break, so the default tells a missing key.
    const QString missing = u"\n"_s;
    clsINI ini;
    ini.setFileName(iniPath);
    return ini.ReadData(u"Config"_s, u"ErweiterteAnalyse"_s, missing) != missing;
}

} // namespace

QString ClipboardPlainText()
{
    // An image or an empty clipboard has no plain text: "".
    QString text = QGuiApplication::clipboard()->text();
    // Lines on this clipboard end in LF alone; the analysis and the separator chooser count
    // CR LF as the line break, as copied text elsewhere has it.
    text.replace(u"\r\n"_s, u"\n"_s);
    text.replace(u'\n', u"\r\n"_s);
    return text;
}

formMain::formMain(MainOptions options, QWidget* parent)
    : QWidget(parent), m_options(std::move(options)),
      m_showMessage(m_options.showMessage ? m_options.showMessage : messageBoxes(this)),
      m_link(std::make_unique<act::ContactLink>(m_options.contacts)),
      m_directory(m_options.directory)
{
    setObjectName(u"formMain"_s);
    setFixedSize(660, 535);
    setWindowIcon(QIcon(u":/icons/app.svg"_s));
    setFont(ClassicFont(8.25));

    buildRows();

    txtClipText = new QPlainTextEdit(this);
    txtClipText->setObjectName(u"txtClipText"_s);
    txtClipText->setGeometry(8, 392, 428, 137);
    txtClipText->setLineWrapMode(QPlainTextEdit::NoWrap);
    // Tab moves on along the tab order instead of typing a tab, which would re-analyse.
    txtClipText->setTabChangesFocus(true);
    connect(txtClipText, &QPlainTextEdit::textChanged, this, &formMain::clipBoxEdited);

    buildButtons();

    QWidget* previous = cmdUpdate;
    for (int row = 0; row < RowCount; ++row) {
        setTabOrder(previous, txtWert[row]);
        setTabOrder(txtWert[row], txtField[row]);
        previous = txtField[row];
    }
    setTabOrder(previous, txtClipText);
    cmdGetClipboard->setFocus();
}

formMain::~formMain()
{
    // A field list that has the focus finishes its editing while the window is torn down,
    // when the rows are already gone.
    for (QComboBox* field : txtField)
        field->lineEdit()->disconnect(this);
    ReleaseActObjects();
}

void formMain::buildRows()
{
    FieldRows& rows = m_session.rows;
    for (int row = 0; row < RowCount; ++row) {
        auto* value = new QLineEdit(this);
        value->setObjectName(u"txtWert_%1"_s.arg(row));
        value->setGeometry(8, 8 + 24 * row, 484, 20);
        connect(value, &QLineEdit::textEdited, this,
                [&rows, row](const QString& text) { rows.setValue(row, text); });
        txtWert[row] = value;

        // Editable for typing with completion; what is typed must end as an entry of the list.
        auto* field = new QComboBox(this);
        field->setObjectName(u"txtField_%1"_s.arg(row));
        field->setGeometry(496, 8 + 24 * row, 156, 20);
        field->setEditable(true);
        field->setInsertPolicy(QComboBox::NoInsert);
        field->setMaxVisibleItems(20);
        field->setModel(rows.fieldModel());
        field->completer()->setCompletionMode(QCompleter::InlineCompletion);
        field->completer()->setCaseSensitivity(Qt::CaseInsensitive);
        // The list's German order is not the code order a sorted search expects.
        field->completer()->setModelSorting(QCompleter::UnsortedModel);
        connect(field, &QComboBox::activated, this,
                [&rows, row](int pos) { rows.setSelected(row, pos); });
        connect(field->lineEdit(), &QLineEdit::editingFinished, this,
                [this, row] { commitRowField(row); });
        txtField[row] = field;
    }
    connect(&rows, &FieldRows::valueChanged, this, [this](int row) {
        if (txtWert[row]->text() != m_session.rows.value(row))
            txtWert[row]->setText(m_session.rows.value(row));
    });
    connect(&rows, &FieldRows::selectionChanged, this, &formMain::showRowField);
    // A combo box picks an entry by itself when its list fills; the rows decide instead.
    const auto showAll = [this] {
        for (int row = 0; row < RowCount; ++row)
            showRowField(row);
    };
    FieldList* model = rows.fieldModel();
    connect(model, &QAbstractItemModel::rowsInserted, this, showAll);
    connect(model, &QAbstractItemModel::rowsRemoved, this, showAll);
    connect(model, &QAbstractItemModel::modelReset, this, showAll);
}

void formMain::buildButtons()
{
    struct ButtonDef {
        QPushButton*& button;
        const char16_t* name;
        const char16_t* icon;
        QString caption;
        QString tooltip;
        QRect place;
        qreal points;
        bool bold;
    };
    const ButtonDef buttons[] = {
        {cmdGetClipboard,
         u"cmdGetClipboard",
         u":/icons/clipboard.svg",
         u"Hole aus Zwischenablage"_s,
         u"Holt den Textinhalt aus der Zwischenablage und analysiert ihn nach "
         u"Adressinformationen"_s,
         {442, 392, 209, 25},
         9.75,
         true},
        {cmdNeuanlageInACT,
         u"cmdNeuanlageInACT",
         u":/icons/new.svg",
         u"Neu Anlegen"_s,
         u"Legt den oben abgebildeten Satz in ACT! an."_s,
         {442, 420, 103, 25},
         8.25,
         true},
        {cmdBearbeitenInAct,
         u"cmdBearbeitenInAct",
         u":/icons/edit.svg",
         u"Bearbeiten"_s,
         u"Überschreibt den aktuellen Kontakt mit den oben abgebildeten Daten"_s,
         {548, 420, 103, 25},
         8.25,
         true},
        {cmdNeuerTrenner,
         u"cmdNeuerTrenner",
         u":/icons/separator.svg",
         u"Neuen Trenner wählen"_s,
         u"Ein neues Zeilentrennzeichen wählen falls die automatische Auswahl nicht korrekt "
         u"war."_s,
         {442, 448, 209, 25},
         9.75,
         false},
        {cmdAlleFelder,
         u"cmdAlleFelder",
         u":/icons/fields.svg",
         u"Felder aus ACT! DB laden"_s,
         u"Es werden alle Felder aus der aktuell geöffneten ACT! DB geladen und in die "
         u"Auswahlboxen eingefügt."_s,
         {442, 476, 209, 25},
         9.75,
         false},
        {cmdInfo,
         u"cmdInfo",
         u":/icons/info.svg",
         u"Über"_s,
         u"Über Zettelfischer"_s,
         {442, 504, 103, 25},
         9.75,
         false},
        {cmdUpdate,
         u"cmdUpdate",
         u":/icons/update.svg",
         u"Updaten"_s,
         u"Das Online Update starten"_s,
         {548, 504, 103, 25},
         9.75,
         false},
    };
    for (const ButtonDef& s : buttons) {
        auto* button = new QPushButton(QIcon(QString::fromUtf16(s.icon)), s.caption, this);
        button->setObjectName(QString::fromUtf16(s.name));
        button->setToolTip(s.tooltip);
        button->setGeometry(s.place);
        button->setIconSize({16, 16});
        // Enter presses the focused button, as Space does.
        button->setAutoDefault(true);
        FitButtonFonts({button}, ClassicFont(s.points, s.bold));
        s.button = button;
    }
    // The two bold buttons side by side share one font.
    FitButtonFonts({cmdNeuanlageInACT, cmdBearbeitenInAct}, ClassicFont(8.25, true));
    connect(cmdGetClipboard, &QPushButton::clicked, this, &formMain::FetchClipboard);
    connect(cmdNeuanlageInACT, &QPushButton::clicked, this, [this] { TransferContact(true); });
    connect(cmdBearbeitenInAct, &QPushButton::clicked, this, [this] { TransferContact(false); });
    connect(cmdNeuerTrenner, &QPushButton::clicked, this, &formMain::ChooseNewSeparator);
    connect(cmdAlleFelder, &QPushButton::clicked, this, &formMain::LoadFieldList);
    connect(cmdInfo, &QPushButton::clicked, this, &formMain::ShowInfo);
    connect(cmdUpdate, &QPushButton::clicked, this, &formMain::StartUpdate);
}

Seams formMain::seams()
{
    Seams s;
    s.showMessage = m_showMessage;
    s.chooseSeparator = [this] { return ChooseSeparator(m_session.state, m_showMessage, this); };
    return s;
}

act::WindowHooks formMain::hooks()
{
    act::WindowHooks h;
    h.setBusyCursor = [](bool busy) { SetBusyCursor(busy); };
    h.setTopMost = [this](bool onTop) { SetTopMost(window(), onTop); };
    h.repaint = [this] { repaint(); };
    h.showMessage = m_showMessage;
    h.showCompletionPrompt = [this](bool created) { return ShowCompletionPrompt(created, this); };
    h.fetchClipboard = [this] { FetchClipboard(); };
    h.saveFieldCache = [this] { SaveFieldCache(m_options.iniPath, m_session.rows); };
    // Inside a frame window closing the form alone would only hide it.
    h.closeProgram = [this] { window()->close(); };
    h.focusMainWindow = [this] {
        activateWindow();
        raise();
    };
    return h;
}

void formMain::StartUp()
{
    setWindowTitle(u"Zettelfischer"_s + u" v."_s + QString::fromUtf16(Version));
    m_session.state.ChosenSeparator.clear();
    m_session.rows.FillDefaultFieldLists();
    LoadSettings(m_options.iniPath, m_session.state, m_session.rows);
    if (m_options.enhancedAnalysis && !SettingsNameAnalysis(m_options.iniPath))
        m_session.state.ErweiterteAnalyse = *m_options.enhancedAnalysis;
    LoadFieldList();
    m_analysisRunning = true;
    m_session.clipText.clear();
    setBoxText(QString());
    m_analysisRunning = false;
    SetTopMost(window(), true);
    SetTopMost(window(), false);
    m_silentFetch = true;
    FetchClipboard();
    m_silentFetch = false;
    cmdGetClipboard->setFocus();
}

void formMain::FetchClipboard()
{
    m_analysisRunning = true;
    setBoxText(QString());
    if (FetchClipboardTextIn(ModeOf(m_session.state), ClipboardPlainText(), m_session, seams(),
                             m_silentFetch))
        m_lastAnalysed = PrepareClipboardText(m_session.state.ClipboardText);
    setBoxText(m_session.clipText);
    m_analysisRunning = false;
}

void formMain::clipBoxEdited()
{
    if (m_analysisRunning)
        return;
    m_analysisRunning = true;
    const QString text = txtClipText->toPlainText();
    const int cursor = txtClipText->textCursor().position();
    setBoxText(QString());
    m_session.clipText.clear();
    AnalyseTextIn(ModeOf(m_session.state), text, m_session, seams());
    m_lastAnalysed = text;
    // Keep the caret where the user was typing, as far as the rewritten text allows.
    setBoxText(m_session.clipText, cursor);
    m_analysisRunning = false;
}

void formMain::SetEnhancedAnalysis(bool on)
{
    if (on == m_session.state.ErweiterteAnalyse)
        return;
    m_session.state.ErweiterteAnalyse = on;
    // A run still under way (its separator chooser open) is not started over; the next run
    // takes the new mode.
    if (!m_lastAnalysed || m_analysisRunning)
        return;
    m_analysisRunning = true;
    setBoxText(QString());
    m_session.clipText.clear();
    AnalyseTextIn(ModeOf(m_session.state), *m_lastAnalysed, m_session, seams());
    setBoxText(m_session.clipText);
    m_analysisRunning = false;
}

bool formMain::UseBook(const BookChoice& choice)
{
    books::OpenedBook book = m_options.openBook ? m_options.openBook(choice) : books::OpenedBook{};
    if (!book.objects) {
        m_showMessage(msg::BookNotOpened, MessageStyle::Exclamation);
        return false;
    }
    ReleaseActObjects();
    m_link = std::make_unique<act::ContactLink>(std::move(book.objects));
    m_directory = std::move(book.directory);
    emit currentContactChanged();
    return true;
}

bool formMain::ChooseContact(const QString& prompt)
{
    if (!m_directory)
        return false;
    const std::optional<dup::Match> chosen = ui::ChooseContact(*m_directory, prompt, this);
    if (!chosen)
        return false;
    try {
        m_directory->setCurrent(chosen->id);
    } catch (const std::exception&) {
        m_showMessage(msg::ContactNotChosen, MessageStyle::Exclamation);
        emit currentContactChanged();
        return false;
    }
    emit currentContactChanged();
    return true;
}

void formMain::setBoxText(const QString& text, int cursorPosition)
{
    txtClipText->setPlainText(text);
    QTextCursor cursor = txtClipText->textCursor();
    cursor.setPosition(qMin(cursorPosition, txtClipText->document()->characterCount() - 1));
    txtClipText->setTextCursor(cursor);
}

void formMain::showRowField(int row)
{
    QComboBox* field = txtField[row];
    const int pos = m_session.rows.selected(row);
    if (field->currentIndex() != pos)
        field->setCurrentIndex(pos);
    const QString name = pos < 0 ? QString() : m_session.rows.fields().nameAt(pos);
    if (field->currentText() != name)
        field->setEditText(name);
}

void formMain::commitRowField(int row)
{
    QComboBox* field = txtField[row];
    const QString typed = field->currentText();
    if (typed.isEmpty()) {
        m_session.rows.setSelected(row, -1);
    } else {
        const int pos = field->findText(typed, Qt::MatchFixedString);
        if (pos >= 0)
            m_session.rows.setSelected(row, pos);
    }
    // Anything typed that is no entry gives way to the chosen entry.
    showRowField(row);
}

void formMain::TransferContact(bool create)
{
    if (create) {
        const DuplicateQuestion ask =
            m_options.askDuplicate
                ? m_options.askDuplicate
                : [this](const QList<dup::Match>& matches) { return AskDuplicate(matches, this); };
        switch (CheckBeforeCreate(m_session, m_directory.get(), ask, m_showMessage)) {
        case TransferPlan::Nothing:
            return;
        case TransferPlan::Edit:
            create = false;
            break;
        case TransferPlan::Create:
            break;
        }
    } else if (m_directory && !Trim(m_session.clipText).isEmpty() && !hasCurrentContact()) {
        // Rather than fail for want of a contact to overwrite, let the user name one.
        if (!ChooseContact(msg::NoCurrentContact))
            return;
    }
    act::WindowHooks h = hooks();
    // The menu names the contact just written while the prompt asks what comes next.
    bool named = false;
    h.showCompletionPrompt = [this, &named](bool created) {
        named = true;
        emit currentContactChanged();
        return ShowCompletionPrompt(created, this);
    };
    m_link->TransferContact(create, m_session, h);
    // A failed edit into a match chosen above leaves that match current all the same.
    if (!named)
        emit currentContactChanged();
}

bool formMain::hasCurrentContact()
{
    try {
        return m_directory->current().has_value();
    } catch (const std::exception&) {
        // Unknown: the transfer tries, and says so when it cannot.
        return true;
    }
}

void formMain::ChooseNewSeparator()
{
    if (Trim(txtClipText->toPlainText()).isEmpty()) {
        m_showMessage(msg::NoData, MessageStyle::Exclamation);
        return;
    }
    if (!ChooseSeparator(m_session.state, m_showMessage, this).isEmpty())
        FetchClipboard();
}

void formMain::LoadFieldList()
{
    m_link->LoadFieldList(m_session, hooks());
}

void formMain::ShowInfo()
{
    formInfo info(this);
    info.exec();
}

void formMain::StartUpdate()
{
    if (LaunchUpdate(m_options.programDir, m_showMessage) == UpdateOutcome::Started)
        window()->close();
}

void formMain::ReleaseActObjects()
{
    m_link->ReleaseActObjects();
}

} // namespace zf::ui
