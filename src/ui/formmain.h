#pragma once

#include "act/contactlink.h"
#include "analysis/session.h"
#include "books/books.h"
#include "duplicatecheck.h"
#include "enhanced/enhanced.h"

#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace zf::ui {

struct BookChoice;

// The clipboard's plain text with CR LF line breaks; "" when it holds no text.
QString ClipboardPlainText();

struct MainOptions {
    QString iniPath;    // the settings file
    QString programDir; // where the update program lies
    std::shared_ptr<act::ObjectFactory> contacts;
    MessageFunction showMessage = {}; // empty: message boxes on this window
    // The one place that turns a chosen address book into its objects and its directory; no
    // objects when it cannot.
    std::function<books::OpenedBook(const BookChoice&)> openBook = {};
    // The analysis the user chose last time; the settings file's ErweiterteAnalyse wins.
    std::optional<bool> enhancedAnalysis = {};
    // The contacts of the book behind contacts; none: no duplicate check, no choosing.
    std::shared_ptr<dup::ContactDirectory> directory = {};
    DuplicateQuestion askDuplicate = {}; // empty: the question as a dialog on this window
};

// The main window: sixteen field rows bound to the session's rows, the clipboard box and the
// seven commands. The analysis, the settings and the contact link do the work.
class formMain : public QWidget {
    Q_OBJECT
public:
    static constexpr int RowCount = FieldRows::RowCount;

    explicit formMain(MainOptions options, QWidget* parent = nullptr);
    ~formMain() override;

    // Title, default lists, settings, the field list of the contact book, a silent fetch.
    void StartUp();

    // The commands.
    void FetchClipboard();
    void TransferContact(bool create);
    void ChooseNewSeparator();
    void LoadFieldList();
    void ShowInfo();
    void StartUpdate();

    void ReleaseActObjects();

    // The enhanced analysis for every later run; switching analyses the last text again.
    bool EnhancedAnalysis() const { return m_session.state.ErweiterteAnalyse; }
    void SetEnhancedAnalysis(bool on);
    // Files contacts into that book from now on; false (and a message) when it cannot be
    // opened, the current book staying in use.
    bool UseBook(const BookChoice& choice);

    // The book's contacts; nullptr when the book offers none.
    dup::ContactDirectory* directory() const { return m_directory.get(); }
    // "Kontakt wählen …": true when a contact was taken and is now the one "Bearbeiten"
    // overwrites. prompt: the dialog's question, its own when empty.
    bool ChooseContact(const QString& prompt = {});

signals:
    // After every transfer, change of book and choice: "Bearbeiten" may overwrite another
    // contact now.
    void currentContactChanged();

public:
    Session& session() { return m_session; }
    act::ContactLink& contactLink() { return *m_link; }
    bool AnalysisRunning() const { return m_analysisRunning; }
    // What the contact link gets of the window.
    act::WindowHooks hooks();

    std::array<QLineEdit*, RowCount> txtWert{};
    std::array<QComboBox*, RowCount> txtField{};
    QPlainTextEdit* txtClipText = nullptr;
    QPushButton* cmdGetClipboard = nullptr;
    QPushButton* cmdNeuanlageInACT = nullptr;
    QPushButton* cmdBearbeitenInAct = nullptr;
    QPushButton* cmdNeuerTrenner = nullptr;
    QPushButton* cmdAlleFelder = nullptr;
    QPushButton* cmdInfo = nullptr;
    QPushButton* cmdUpdate = nullptr;

private:
    Seams seams();
    void buildRows();
    void buildButtons();
    void setBoxText(const QString& text, int cursorPosition = 0);
    void clipBoxEdited();
    void showRowField(int row);
    void commitRowField(int row);
    // Whether the book names a contact for "Bearbeiten"; true when it cannot be asked.
    bool hasCurrentContact();

    MainOptions m_options;
    MessageFunction m_showMessage;
    Session m_session;
    std::unique_ptr<act::ContactLink> m_link;
    std::shared_ptr<dup::ContactDirectory> m_directory;
    bool m_analysisRunning = false;
    bool m_silentFetch = false;
    // What the last analysis started from, for running it again in the other mode.
    std::optional<QString> m_lastAnalysed;
};

} // namespace zf::ui
