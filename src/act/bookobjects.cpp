// The automation objects on the embedded contact book: what a fresh machine talks to.

#include "contactbook.h"
#include "contactlink.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zf::act {

namespace {

// Every book failure reaches the caller as the one automation error.
template <typename F> auto guarded(F&& f)
{
    try {
        return f();
    } catch (const BookError& e) {
        throw ActError(e.message());
    }
}

using BookPtr = std::shared_ptr<ContactBook>;

class BookContactView : public ContactViewObject {
public:
    explicit BookContactView(BookPtr book) : m_book(std::move(book)) {}
    void AddNewContact() override
    {
        guarded([&] { return m_book->addContact(); });
    }
    // Writes into the book's current contact, so that a contact chosen elsewhere (on the
    // command line) is the one that "Bearbeiten" overwrites.
    void SetField(qint32 fieldId, const QString& value) override
    {
        guarded([&] {
            const std::optional<qint64> current = m_book->currentContact();
            if (!current)
                throw BookError(BookError::NotFound, u"the contact book has no current contact"_s);
            m_book->setField(*current, fieldId, value);
        });
    }

private:
    BookPtr m_book;
};

class BookViews : public ViewsObject {
public:
    explicit BookViews(BookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<ContactViewObject> Create(qint16 viewType, const QString& viewName) override
    {
        if (viewType != ContactViewType || viewName != ContactViewName)
            throw ActError(u"no view %1 \"%2\""_s.arg(viewType).arg(viewName));
        return std::make_shared<BookContactView>(m_book);
    }

private:
    BookPtr m_book;
};

class BookApplication : public ApplicationObject {
public:
    explicit BookApplication(BookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<ViewsObject> Views() override { return std::make_shared<BookViews>(m_book); }

private:
    BookPtr m_book;
};

class BookFields : public FieldsObject {
public:
    explicit BookFields(BookPtr book) : m_book(std::move(book)) {}
    qint32 FieldIdAt(qint16 position) override
    {
        const auto id = guarded([&] { return m_book->fieldIdAt(position); });
        if (!id)
            throw ActError(u"no field at position %1"_s.arg(position));
        return *id;
    }
    QString Label(qint32 fieldId) override
    {
        const auto label = guarded([&] { return m_book->fieldLabel(fieldId); });
        if (!label)
            throw ActError(u"no field %1"_s.arg(fieldId));
        return *label;
    }

private:
    BookPtr m_book;
};

class BookContact : public ContactObject {
public:
    explicit BookContact(BookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<FieldsObject> Fields() override { return std::make_shared<BookFields>(m_book); }
    qint16 FieldCount() override
    {
        const int count = guarded([&] { return m_book->fieldCount(); });
        if (count > std::numeric_limits<qint16>::max())
            throw ActError(u"too many fields (%1)"_s.arg(count));
        return qint16(count);
    }

private:
    BookPtr m_book;
};

class BookDatabase : public DatabaseObject {
public:
    explicit BookDatabase(QString configuredPath) : m_configuredPath(std::move(configuredPath)) {}
    void OpenEx(const QString& path) override
    {
        const QString file = path.isEmpty() ? m_configuredPath : path;
        m_book = guarded([&] { return std::make_shared<ContactBook>(file); });
    }
    std::optional<bool> IsOpen() override { return m_book != nullptr; }
    std::shared_ptr<ContactObject> Contact() override
    {
        if (!m_book)
            throw ActError(u"no contact book is open"_s);
        return std::make_shared<BookContact>(m_book);
    }

private:
    QString m_configuredPath;
    BookPtr m_book;
};

// "Running" means the book can be opened: there is no separate program to wait for.
class BookEvents : public EventControl {
public:
    explicit BookEvents(QString path) : m_path(std::move(path)) {}
    std::optional<bool> IsActRunning() override
    {
        try {
            ContactBook book(m_path);
            return true;
        } catch (const BookError&) {
            return false;
        }
    }

private:
    QString m_path;
};

class BookFactory : public ObjectFactory {
public:
    explicit BookFactory(QString path) : m_path(std::move(path)), m_events(m_path) {}
    std::shared_ptr<AutomationObject> CreateObject(const QString& progId) override
    {
        if (progId == ProgIdApplication)
            return guarded([&] {
                return std::make_shared<BookApplication>(std::make_shared<ContactBook>(m_path));
            });
        if (progId == ProgIdDatabase)
            return std::make_shared<BookDatabase>(m_path);
        throw ActError(u"cannot create object \"%1\""_s.arg(progId));
    }
    EventControl& eventControl() override { return m_events; }

private:
    QString m_path;
    BookEvents m_events;
};

} // namespace

std::shared_ptr<ObjectFactory> makeContactBookFactory(const QString& bookPath)
{
    return std::make_shared<BookFactory>(bookPath);
}

} // namespace zf::act
