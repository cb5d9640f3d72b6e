#pragma once

// Finding the contacts of a book that are the same person as a contact about to be filed.

#include "identity.h"

#include <QList>
#include <QString>

namespace zf::dup {

// A contact of the book that is the same person, and why.
struct Match {
    QString id; // the book's contact id: a number, or a CardDAV resource name
    QString name;
    QString company;
    QString email;
    Reason reason = Reason::EMail;
    friend bool operator==(const Match&, const Match&) = default;
};

// The match for a contact of that id and those values: its name (Kontakt, else Vorname and
// Nachname), company and e-mail.
Match matchOf(const QString& id, const FieldValues& values, Reason reason = Reason::EMail);

// "email", "name", "mobile": how scripts read a reason.
QString reasonName(Reason reason);

class DuplicateLookup {
public:
    virtual ~DuplicateLookup() = default;
    // The book's contacts that are the same person, each once, in the book's order.
    virtual QList<Match> find(const Identity& identity) = 0;
};

} // namespace zf::dup
