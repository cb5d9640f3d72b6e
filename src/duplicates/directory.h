#pragma once

// What the window and the command line need of a book beyond filing into it: its contacts
// found by person or by text, and the contact that "Bearbeiten" overwrites, shown and chosen.

#include "lookup.h"

#include <QList>
#include <QString>

#include <optional>

namespace zf::dup {

class ContactDirectory : public DuplicateLookup {
public:
    // The contacts whose name, company, e-mail address or phone number holds the text (as
    // "contacts find"), at most limit of them, in the book's order.
    virtual QList<Match> search(const QString& text, int limit) = 0;

    // The contact the next edit ("Bearbeiten") of this program overwrites: the one chosen
    // through setCurrent or last filed by this program, else the book's current contact;
    // nothing when there is none or it no longer exists.
    virtual std::optional<Match> current() = 0;

    // Makes that contact the one this program's next edits overwrite, whatever other programs
    // make current meanwhile, and the book's current contact. An act::ActError when the book
    // has no such contact or cannot be reached.
    virtual void setCurrent(const QString& id) = 0;
};

} // namespace zf::dup
