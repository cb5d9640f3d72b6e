#pragma once

#include "act/automation.h"
#include "analysis/seams.h"
#include "analysis/session.h"

#include <QString>

#include <functional>
#include <memory>

namespace zf::act {

// The completion prompt's answer; None when it was closed without one.
enum class Completion : quint8 { None = 0, Leave = 1, Back = 2 };

// What the contact link needs of the main window; the window fills these in, tests record.
struct WindowHooks {
    std::function<void(bool busy)> setBusyCursor;
    std::function<void(bool onTop)> setTopMost;
    std::function<void()> repaint;
    MessageFunction showMessage;
    // Shows the completion prompt modally and returns its answer.
    std::function<Completion(bool created)> showCompletionPrompt;
    std::function<void()> fetchClipboard; // FetchClipboard of the window
    std::function<void()> saveFieldCache; // SaveFieldCache of the settings
    std::function<void()> closeProgram;   // unload the main window and end the program
    std::function<void()> focusMainWindow;
};

// The program's side of the contact manager: the objects it keeps for the whole run, the
// contact transfer and the field-list loading.
class ContactLink {
public:
    explicit ContactLink(std::shared_ptr<ObjectFactory> factory);
    ~ContactLink();
    ContactLink(const ContactLink&) = delete;
    ContactLink& operator=(const ContactLink&) = delete;

    // "Neu Anlegen" (create) and "Bearbeiten".
    void TransferContact(bool create, Session& session, const WindowHooks& hooks);
    // True when a database object is open on a contact book.
    bool OpenActDatabase(const WindowHooks& hooks);
    // "Felder aus ACT! DB laden": fills every row's list from the open book.
    void LoadFieldList(Session& session, const WindowHooks& hooks);
    // Releases the kept objects (at shutdown).
    void ReleaseActObjects();

    // The completion prompt's hand-over: its answer and the mode of the transfer that opened it.
    Completion CompletionChoice() const { return m_completionChoice; }
    bool LastTransferCreated() const { return m_lastTransferCreated; }
    // Why the last failed call failed, for logs and the command line; "" after a success.
    const QString& lastError() const { return m_lastError; }

private:
    struct Objects;
    std::shared_ptr<ObjectFactory> m_factory;
    std::unique_ptr<Objects> m_objects;
    Completion m_completionChoice = Completion::None;
    bool m_lastTransferCreated = false;
    QString m_lastError;
};

} // namespace zf::act
