#include "books.h"

#include "books/sqlite/sqlitebook.h"
#include "davbook.h"

using namespace Qt::StringLiterals;

namespace zf::books {

bool isServerLocation(const QString& location)
{
    return location.startsWith(u"http://"_s, Qt::CaseInsensitive) ||
           location.startsWith(u"https://"_s, Qt::CaseInsensitive);
}

BookLocation bookLocation(const QString& explicitLocation, const SharedState& settings,
                          const BookLocation& remembered)
{
    BookLocation out;
    out.timeout =
        std::chrono::seconds(settings.KontakteTimeout > 0 ? settings.KontakteTimeout : 15);
    out.user = settings.KontakteBenutzer.isEmpty() ? remembered.user : settings.KontakteBenutzer;
    const QString fromEnvironment = qEnvironmentVariable("ZETTELFISCHER_CONTACTS");
    if (!explicitLocation.isEmpty())
        out.location = explicitLocation;
    else if (!fromEnvironment.isEmpty())
        out.location = fromEnvironment;
    else if (!settings.KontakteAdressbuch.isEmpty())
        out.location = settings.KontakteAdressbuch;
    else if (!remembered.location.isEmpty())
        out.location = remembered.location;
    else
        out.location = act::defaultContactBookPath();
    return out;
}

std::shared_ptr<act::ObjectFactory>
makeBookFactory(const BookLocation& location, std::shared_ptr<credentials::Credentials> credentials)
{
    if (!isServerLocation(location.location))
        return act::makeContactBookFactory(location.location);
    return makeDavBookFactory(std::make_shared<DavBook>(location, std::move(credentials)));
}

OpenedBook openBook(const BookLocation& location,
                    std::shared_ptr<credentials::Credentials> credentials)
{
    if (!isServerLocation(location.location)) {
        auto chosen = std::make_shared<act::ChosenContact>();
        return {act::makeContactBookFactory(location.location, {}, chosen),
                act::makeContactBookDirectory(location.location, chosen)};
    }
    return openDavBook(std::make_shared<DavBook>(location, std::move(credentials)));
}

} // namespace zf::books
