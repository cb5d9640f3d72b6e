#pragma once

// A recording stand-in for the contact manager's automation objects: every member call and
// every window hook lands, in order, in one call list; any automation call can be made to fail.

#include "act/contactlink.h"
#include "books/sqlite/sqlitebook.h"

#include <QMap>
#include <QStringList>

#include <optional>

namespace zf::act::test {

// The failure messages as the window hooks record them.
inline const QString CreateFailed = "message(Kontakt konnte nicht angelegt werden.,48)";
inline const QString EditFailed = "message(Kontakt konnte nicht bearbeitet werden.,48)";
inline const QString FieldsFailed =
    "message(Die Felder konnten nicht aus der Datenbank gelesen werden. "
    "Möglicherweise ist ACT! geschlossen.,48)";

struct Recorder {
    QStringList calls;
    int failAt = -1; // index among the automation calls (not the hooks) that throws
    int automationCalls = 0;

    std::optional<bool> running = true;
    std::optional<bool> open = true;
    QMap<qint32, QString> fields; // id and label; the positions follow the ids
    Completion completionChoice = Completion::Back;

    void automation(const QString& call)
    {
        calls << call;
        if (automationCalls++ == failAt)
            throw ActError("injected at " + call);
    }

    WindowHooks hooks()
    {
        WindowHooks h;
        h.setBusyCursor = [this](bool busy) { calls << QString("busy(%1)").arg(int(busy)); };
        h.setTopMost = [this](bool onTop) { calls << QString("topMost(%1)").arg(int(onTop)); };
        h.repaint = [this] { calls << "repaint"; };
        h.showMessage = [this](const QString& text, MessageStyle style) {
            calls << QString("message(%1,%2)").arg(text).arg(int(style));
            return MessageAnswer::Ok;
        };
        h.showCompletionPrompt = [this](bool created) {
            calls << QString("prompt(%1)").arg(int(created));
            return completionChoice;
        };
        h.fetchClipboard = [this] { calls << "fetchClipboard"; };
        h.saveFieldCache = [this] { calls << "saveFieldCache"; };
        h.closeProgram = [this] { calls << "closeProgram"; };
        h.focusMainWindow = [this] { calls << "focus"; };
        return h;
    }
};

// One class plays the factory and every automation object; each object records its release
// under the role it was made for, so the release order shows in the call list.
class FakeObject : public ApplicationObject,
                   public ViewsObject,
                   public ContactViewObject,
                   public DatabaseObject,
                   public ContactObject,
                   public FieldsObject,
                   public ObjectFactory,
                   public EventControl {
public:
    FakeObject(Recorder& r, const QString& role) : r(r), role(role) {}
    ~FakeObject() override
    {
        if (!role.isEmpty())
            r.calls << "~" + role;
    }
    std::shared_ptr<AutomationObject> CreateObject(const QString& progId) override
    {
        const bool app = progId == ProgIdApplication;
        return std::shared_ptr<ApplicationObject>(
            made(QString("CreateObject(%1)").arg(progId), app ? "Application" : "Database"));
    }
    EventControl& eventControl() override { return *this; }
    std::optional<bool> IsActRunning() override { return answer("IsActRunning()", r.running); }
    std::shared_ptr<ViewsObject> Views() override { return made("Views()", "Views"); }
    std::shared_ptr<ContactViewObject> Create(qint16 type, const QString& name) override
    {
        return made(QString("Create(%1,%2)").arg(type).arg(name), "ContactView");
    }
    void AddNewContact() override { r.automation("AddNewContact()"); }
    void EndTransfer() override { r.automation("EndTransfer()"); }
    void SetField(qint32 id, const QString& value) override
    {
        r.automation(QString("SetField(%1,%2)").arg(id).arg(value));
    }
    void OpenEx(const QString& path) override { r.automation(QString("OpenEx(%1)").arg(path)); }
    std::optional<bool> IsOpen() override { return answer("IsOpen()", r.open); }
    std::shared_ptr<ContactObject> Contact() override { return made("Contact()", ""); }
    std::shared_ptr<FieldsObject> Fields() override { return made("Fields()", ""); }
    qint16 FieldCount() override { return answer("FieldCount()", qint16(r.fields.size())); }
    qint32 FieldIdAt(qint16 pos) override
    {
        return answer(QString("FieldIdAt(%1)").arg(pos), r.fields.keys().value(pos));
    }
    QString Label(qint32 id) override
    {
        return answer(QString("Label(%1)").arg(id), r.fields.value(id));
    }

private:
    template <typename T> T answer(const QString& call, T value)
    {
        r.automation(call);
        return value;
    }
    std::shared_ptr<FakeObject> made(const QString& call, const QString& madeRole)
    {
        r.automation(call);
        return std::make_shared<FakeObject>(r, madeRole);
    }
    Recorder& r;
    QString role;
};

// A link on the stand-in, or on the contact book at bookPath, and a session whose rows are
// "id=value" from the top ("-=value": a row without a chosen field).
struct Rig {
    Recorder r;
    ContactLink link;
    Session s;

    explicit Rig(const QStringList& rows = {}, const QString& bookPath = {})
        : link(bookPath.isEmpty() ? std::make_shared<FakeObject>(r, "")
                                  : makeContactBookFactory(bookPath))
    {
        s.rows.FillDefaultFieldLists();
        s.clipText = "x";
        for (int row = 0; row < rows.size(); ++row) {
            s.rows.setValue(row, rows[row].section('=', 1));
            if (!rows[row].startsWith('-'))
                s.rows.SelectRowField(row, qint16(rows[row].section('=', 0, 0).toInt()));
        }
    }
    // The calls of this run only.
    QStringList transfer(bool create)
    {
        r.calls.clear();
        link.TransferContact(create, s, r.hooks());
        return r.calls;
    }
    QStringList load()
    {
        r.calls.clear();
        link.LoadFieldList(s, r.hooks());
        return r.calls;
    }
};

} // namespace zf::act::test
