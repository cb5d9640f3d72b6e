#pragma once

// Which contact book a program files into: the embedded SQLite book at a path, or a CardDAV
// address book at an http:// or https:// URL.

#include "act/automation.h"
#include "analysis/session.h"
#include "credentials/credentials.h"
#include "duplicates/directory.h"

#include <QString>

#include <chrono>
#include <memory>

namespace zf::books {

struct BookLocation {
    QString location; // a path, or the URL of a CardDAV book, account or server
    QString user;     // for a URL without a user part
    std::chrono::milliseconds timeout{15000}; // per request to a server
};

// An http:// or https:// address (any case) rather than a path.
bool isServerLocation(const QString& location);

// Where the book is, the first of: the explicit location (--contacts), $ZETTELFISCHER_CONTACTS,
// [Kontakte] Adressbuch= of the settings, the location the window remembered, the default
// SQLite book. The user is Benutzer= of the settings, else the remembered one; the timeout
// Timeout= (seconds).
BookLocation bookLocation(const QString& explicitLocation, const SharedState& settings,
                          const BookLocation& remembered = {});

// The automation objects of the book at that location. A CardDAV book logs in on its first
// use, with the password from credentials.
std::shared_ptr<act::ObjectFactory>
makeBookFactory(const BookLocation& location,
                std::shared_ptr<credentials::Credentials> credentials);

// A book opened for the window or a command: its automation objects and its directory, which
// share what this program chose as the current contact.
struct OpenedBook {
    std::shared_ptr<act::ObjectFactory> objects;
    std::shared_ptr<dup::ContactDirectory> directory;
};

OpenedBook openBook(const BookLocation& location,
                    std::shared_ptr<credentials::Credentials> credentials);

} // namespace zf::books
