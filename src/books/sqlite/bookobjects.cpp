// The automation objects on the embedded contact book: what a fresh machine talks to.

#include "books/contactview.h"
#include "contactbook.h"
#include "sqlitebook.h"

#include <QDir>
#include <QStandardPaths>

#include <limits>
#include <utility>

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
using ChosenPtr = std::shared_ptr<ChosenContact>;

// One transaction at the end of a transfer, so that one running at the same time in another
// program never writes into this one's contact.
class BookContactView : public books::CollectingContactView<qint64> {
public:
    BookContactView(BookPtr book, TransferWritten written, ChosenPtr chosen)
        : m_book(std::move(book)), m_written(std::move(written)), m_chosen(std::move(chosen))
    {
    }

protected:
    // The contact this program chose, when it chose one, and never another in its place; else
    // the book's current contact: one chosen elsewhere (on the command line) is the one
    // "Bearbeiten" overwrites.
    qint64 editedContact() override
    {
        if (m_chosen && m_chosen->id) {
            if (!m_book->hasContact(*m_chosen->id))
                throw BookError(
                    BookError::NotFound,
                    u"the contact %1 chosen for editing no longer exists"_s.arg(*m_chosen->id));
            return *m_chosen->id;
        }
        const std::optional<qint64> current = m_book->currentContact();
        if (!current || !m_book->hasContact(*current))
            throw BookError(BookError::NotFound, u"the contact book has no current contact"_s);
        return *current;
    }
    void checkField(qint32 fieldId) override
    {
        if (!m_book->fieldLabel(fieldId))
            throw BookError(BookError::NotFound,
                            u"the contact book has no field %1"_s.arg(fieldId));
    }
    void file(const std::optional<qint64>& contact, QList<FieldValue> values) override
    {
        const qint64 id = m_book->writeContact(contact, values);
        if (m_chosen)
            m_chosen->id = id;
        if (m_written)
            m_written(id);
    }
    void guarded(const std::function<void()>& f) override { act::guarded(f); }

private:
    BookPtr m_book;
    TransferWritten m_written;
    ChosenPtr m_chosen;
};

class BookViews : public ViewsObject {
public:
    BookViews(BookPtr book, TransferWritten written, ChosenPtr chosen)
        : m_book(std::move(book)), m_written(std::move(written)), m_chosen(std::move(chosen))
    {
    }
    std::shared_ptr<ContactViewObject> Create(qint16 viewType, const QString& viewName) override
    {
        if (viewType != ContactViewType || viewName != ContactViewName)
            throw ActError(u"no view %1 \"%2\""_s.arg(viewType).arg(viewName));
        return std::make_shared<BookContactView>(m_book, m_written, m_chosen);
    }

private:
    BookPtr m_book;
    TransferWritten m_written;
    ChosenPtr m_chosen;
};

class BookApplication : public ApplicationObject {
public:
    BookApplication(BookPtr book, TransferWritten written, ChosenPtr chosen)
        : m_book(std::move(book)), m_written(std::move(written)), m_chosen(std::move(chosen))
    {
    }
    std::shared_ptr<ViewsObject> Views() override
    {
        return std::make_shared<BookViews>(m_book, m_written, m_chosen);
    }

private:
    BookPtr m_book;
    TransferWritten m_written;
    ChosenPtr m_chosen;
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
        m_book =
            guarded([&] { return std::make_shared<ContactBook>(file, ContactBook::Access::Read); });
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
            ContactBook book(m_path, ContactBook::Access::Read);
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
    BookFactory(QString path, TransferWritten written, ChosenPtr chosen)
        : m_path(std::move(path)), m_written(std::move(written)), m_chosen(std::move(chosen)),
          m_events(m_path)
    {
    }
    std::shared_ptr<AutomationObject> CreateObject(const QString& progId) override
    {
        if (progId == ProgIdApplication)
            return guarded([&] {
                return std::make_shared<BookApplication>(std::make_shared<ContactBook>(m_path),
                                                         m_written, m_chosen);
            });
        if (progId == ProgIdDatabase)
            return std::make_shared<BookDatabase>(m_path);
        throw ActError(u"cannot create object \"%1\""_s.arg(progId));
    }
    EventControl& eventControl() override { return m_events; }

private:
    QString m_path;
    TransferWritten m_written;
    ChosenPtr m_chosen;
    BookEvents m_events;
};

class BookDirectory : public dup::ContactDirectory {
public:
    BookDirectory(QString path, ChosenPtr chosen)
        : m_path(std::move(path)), m_chosen(std::move(chosen))
    {
    }
    QList<dup::Match> find(const dup::Identity& identity) override
    {
        return guarded([&] { return reader().findDuplicates(identity); });
    }
    QList<dup::Match> search(const QString& text, int limit) override
    {
        return guarded([&] {
            ContactBook& book = reader();
            QList<dup::Match> out;
            for (const qint64 id : book.findText(text)) {
                if (out.size() >= limit)
                    break;
                out.append(book.matchOf(id));
            }
            return out;
        });
    }
    std::optional<dup::Match> current() override
    {
        return guarded([&]() -> std::optional<dup::Match> {
            ContactBook& book = reader();
            const std::optional<qint64> id = m_chosen->id ? m_chosen->id : book.currentContact();
            if (!id || !book.hasContact(*id))
                return std::nullopt;
            return book.matchOf(*id);
        });
    }
    void setCurrent(const QString& id) override
    {
        bool ok = false;
        const qint64 contact = id.toLongLong(&ok);
        if (!ok || contact < 1)
            throw ActError(u"there is no contact %1"_s.arg(id));
        guarded([&] {
            ContactBook book(m_path);
            if (!book.hasContact(contact))
                throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(contact));
            book.setCurrentContact(contact);
        });
        m_chosen->id = contact;
    }

private:
    // One connection for the lookups: it sees what others write, at every statement.
    ContactBook& reader()
    {
        if (!m_reader)
            m_reader = std::make_unique<ContactBook>(m_path, ContactBook::Access::Read);
        return *m_reader;
    }
    QString m_path;
    ChosenPtr m_chosen;
    std::unique_ptr<ContactBook> m_reader;
};

} // namespace

std::shared_ptr<ObjectFactory> makeContactBookFactory(const QString& bookPath,
                                                      TransferWritten written,
                                                      std::shared_ptr<ChosenContact> chosen)
{
    return std::make_shared<BookFactory>(bookPath, std::move(written), std::move(chosen));
}

std::shared_ptr<dup::ContactDirectory>
makeContactBookDirectory(const QString& bookPath, std::shared_ptr<ChosenContact> chosen)
{
    return std::make_shared<BookDirectory>(bookPath, chosen ? std::move(chosen)
                                                            : std::make_shared<ChosenContact>());
}

QString defaultContactBookPath()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(u"zettelfischer/kontakte.sqlite"_s);
}

QString contactBookPath(const QString& explicitFile)
{
    if (!explicitFile.isEmpty())
        return explicitFile;
    const QString fromEnvironment = qEnvironmentVariable("ZETTELFISCHER_CONTACTS");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return defaultContactBookPath();
}

} // namespace zf::act
