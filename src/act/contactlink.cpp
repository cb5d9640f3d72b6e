#include "contactlink.h"

#include "act/messages.h"
#include "analysis/fields.h"
#include "analysis/textutil.h"

using namespace Qt::StringLiterals;

namespace zf::act {

// Kept for the whole run; the database object only until the next successful load.
struct ContactLink::Objects {
    std::shared_ptr<ApplicationObject> app;
    std::shared_ptr<ViewsObject> views;
    std::shared_ptr<ContactViewObject> contactView;
    std::shared_ptr<DatabaseObject> database;
};

namespace {

template <typename Hook, typename... Args> auto call(const Hook& hook, Args&&... args)
{
    using Result = decltype(hook(std::forward<Args>(args)...));
    if (!hook)
        return Result();
    return hook(std::forward<Args>(args)...);
}

template <typename T> std::shared_ptr<T> required(std::shared_ptr<T> object, const char* member)
{
    if (!object)
        throw ActError(u"%1 returned no object"_s.arg(QLatin1StringView(member)));
    return object;
}

QString fieldName(qint32 id, const QString& label)
{
    if (!label.isEmpty())
        return label;
    return id == idOf(FieldId::EMail) ? u"eMail"_s : u"Feld %1"_s.arg(id);
}

} // namespace

ContactLink::ContactLink(std::shared_ptr<ObjectFactory> factory)
    : m_factory(std::move(factory)), m_objects(std::make_unique<Objects>())
{
}

ContactLink::~ContactLink()
{
    ReleaseActObjects();
}

void ContactLink::TransferContact(bool create, Session& session, const WindowHooks& hooks)
{
    if (Trim(session.clipText).isEmpty()) {
        call(hooks.showMessage, msg::NoData, MessageStyle::Exclamation);
        return;
    }
    call(hooks.setBusyCursor, true);
    try {
        Objects& o = *m_objects;
        if (!o.contactView) {
            o.app = createAs<ApplicationObject>(*m_factory, ProgIdApplication);
            o.views = required(o.app->Views(), "Views");
            o.contactView = required(o.views->Create(ContactViewType, ContactViewName), "Create");
        }
        QString contactName;
        QString firstName;
        QString lastName;
        if (create)
            o.contactView->AddNewContact();
        const FieldRows& rows = session.rows;
        for (int row = 0; row < FieldRows::RowCount; ++row) {
            const std::optional<qint32> id = rows.fieldId(row);
            if (!id)
                continue;
            o.contactView->SetField(*id, rows.value(row));
            if (*id == idOf(FieldId::Kontakt))
                contactName = rows.value(row);
            else if (*id == idOf(FieldId::Vorname))
                firstName = rows.value(row);
            else if (*id == idOf(FieldId::Nachname))
                lastName = rows.value(row);
        }
        if (!firstName.isEmpty() && !lastName.isEmpty() && contactName.isEmpty())
            o.contactView->SetField(idOf(FieldId::Kontakt), firstName + u' ' + lastName);
        if (session.state.ExtraDefinitionsLoaded) {
            for (const clsZusatzDefs& extra : session.state.ExtraFieldValues)
                if (extra.ID != -1)
                    o.contactView->SetField(extra.ID, extra.Wert);
        }
        o.contactView->EndTransfer();
    } catch (const std::exception& e) {
        m_lastError = QString::fromStdString(e.what());
        call(hooks.setBusyCursor, false);
        call(hooks.setTopMost, false);
        call(hooks.repaint);
        call(hooks.showMessage, create ? msg::CreateFailed : msg::EditFailed,
             MessageStyle::Exclamation);
        return;
    }
    m_lastError.clear();
    call(hooks.setBusyCursor, false);
    call(hooks.setTopMost, false);
    call(hooks.repaint);

    m_completionChoice = Completion::None;
    m_lastTransferCreated = create;
    // The prompt writes its answer only when a button closed it; the close box leaves None.
    m_completionChoice = call(hooks.showCompletionPrompt, create);
    if (m_completionChoice == Completion::Leave)
        call(hooks.closeProgram);
    else
        call(hooks.focusMainWindow);
}

bool ContactLink::OpenActDatabase(const WindowHooks& hooks)
{
    bool result = false;
    call(hooks.setBusyCursor, true);
    try {
        if (m_factory->eventControl().IsActRunning().value_or(false)) {
            Objects& o = *m_objects;
            if (!o.database) {
                o.database = createAs<DatabaseObject>(*m_factory, ProgIdDatabase);
                o.database->OpenEx(QString());
            }
            result = o.database->IsOpen().value_or(false);
            if (!result)
                m_lastError = u"no contact book is open"_s;
        } else {
            m_lastError = u"the contact manager is not running"_s;
        }
    } catch (const std::exception& e) {
        m_lastError = QString::fromStdString(e.what());
    }
    call(hooks.setBusyCursor, false);
    return result;
}

void ContactLink::LoadFieldList(Session& session, const WindowHooks& hooks)
{
    if (!OpenActDatabase(hooks)) {
        call(hooks.showMessage, msg::FieldsNotLoaded, MessageStyle::Exclamation);
        call(hooks.saveFieldCache);
        return;
    }
    try {
        call(hooks.setBusyCursor, true);
        Objects& o = *m_objects;
        const auto contact = required(o.database->Contact(), "Contact");
        const auto fields = required(contact->Fields(), "Fields");
        const qint16 count = contact->FieldCount();
        session.rows.clearFields();
        for (qint16 pos = 0; pos < count; ++pos) {
            const qint32 id = fields->FieldIdAt(pos);
            session.rows.addField(fieldName(id, fields->Label(id)), id);
        }
        o.database.reset();
        call(hooks.setBusyCursor, false);
        call(hooks.fetchClipboard);
        call(hooks.saveFieldCache);
        m_lastError.clear();
    } catch (const std::exception& e) {
        m_lastError = QString::fromStdString(e.what());
        call(hooks.showMessage, msg::FieldsNotLoaded, MessageStyle::Exclamation);
        call(hooks.setBusyCursor, false);
    }
}

void ContactLink::ReleaseActObjects()
{
    Objects& o = *m_objects;
    o.contactView.reset();
    o.views.reset();
    o.database.reset();
    o.app.reset();
}

} // namespace zf::act
