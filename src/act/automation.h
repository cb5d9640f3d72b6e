#pragma once

// The contact manager's automation objects as the program uses them: created by ProgID
// through one factory, every member synchronous, every failure an ActError.

#include <QString>

#include <memory>
#include <optional>
#include <stdexcept>

namespace zf::act {

inline const QString ProgIdApplication = QStringLiteral("ACTOLE.APPOBJECT");
inline const QString ProgIdDatabase = QStringLiteral("ACTOLE.DATABASE");
inline const QString ContactViewName = QStringLiteral("ContactView");
constexpr qint16 ContactViewType = 1;

// Any failure of an automation call; the transfer and the field-list loading catch it.
class ActError : public std::runtime_error {
public:
    explicit ActError(const QString& what) : std::runtime_error(what.toStdString()) {}
    QString message() const { return QString::fromStdString(what()); }
};

// What CreateObject hands out; the caller asks for the interface it expects.
class AutomationObject {
public:
    virtual ~AutomationObject() = default;
};

// A transfer is AddNewContact (when creating), the SetField calls, then EndTransfer. The view
// keeps the contact it made or was given for the whole transfer; what the SetField calls
// stored lasts only once EndTransfer returns: a book may collect them and write them at that
// call. A transfer that ends without it (a failed call, the view released) leaves the book
// as it was, as far as the book can undo.
class ContactViewObject : public AutomationObject {
public:
    // A new, empty contact becomes the view's current contact.
    virtual void AddNewContact() = 0;
    // Stores the value in that field of the view's current contact.
    virtual void SetField(qint32 fieldId, const QString& value) = 0;
    // Ends the transfer: its contact, with every value, is stored and becomes the one shown.
    virtual void EndTransfer() = 0;
};

class ViewsObject : public AutomationObject {
public:
    virtual std::shared_ptr<ContactViewObject> Create(qint16 viewType, const QString& viewName) = 0;
};

class ApplicationObject : public AutomationObject {
public:
    virtual std::shared_ptr<ViewsObject> Views() = 0;
};

class FieldsObject : public AutomationObject {
public:
    virtual qint32 FieldIdAt(qint16 position) = 0;
    // "" when the field has no label.
    virtual QString Label(qint32 fieldId) = 0;
};

class ContactObject : public AutomationObject {
public:
    virtual std::shared_ptr<FieldsObject> Fields() = 0;
    virtual qint16 FieldCount() = 0;
};

class DatabaseObject : public AutomationObject {
public:
    // "" opens the book the contact manager has open.
    virtual void OpenEx(const QString& path) = 0;
    // Nothing when the answer is empty; callers count that as false.
    virtual std::optional<bool> IsOpen() = 0;
    virtual std::shared_ptr<ContactObject> Contact() = 0;
};

// The event control on the main window.
class EventControl {
public:
    virtual ~EventControl() = default;
    virtual std::optional<bool> IsActRunning() = 0;
};

// Creates the automation objects by ProgID and provides the window's event control.
class ObjectFactory {
public:
    virtual ~ObjectFactory() = default;
    virtual std::shared_ptr<AutomationObject> CreateObject(const QString& progId) = 0;
    virtual EventControl& eventControl() = 0;
};

// The object of that ProgID as the interface T; a missing or different object is an ActError.
template <typename T> std::shared_ptr<T> createAs(ObjectFactory& factory, const QString& progId)
{
    auto object = std::dynamic_pointer_cast<T>(factory.CreateObject(progId));
    if (!object)
        throw ActError(QStringLiteral("cannot create object \"%1\"").arg(progId));
    return object;
}

} // namespace zf::act
