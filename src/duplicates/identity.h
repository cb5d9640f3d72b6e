#pragma once

// What makes two contacts the same person: the same e-mail address, the same name (at the
// same company when both name one), or the same mobile number. Switchboard and fax numbers
// are shared by colleagues, so they never make a match.

#include "analysis/fieldrows.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace zf::dup {

// A contact's values by field id, as the rows or a book hold them.
using FieldValues = QList<std::pair<qint32, QString>>;

// The comparable parts of one contact, normalised.
struct Identity {
    QString person;      // given and family name, else the contact name; folded
    QString company;     // folded
    QStringList emails;  // lower case
    QStringList mobiles; // "+" and digits
    bool isEmpty() const { return person.isEmpty() && emails.isEmpty() && mobiles.isEmpty(); }
};

Identity identityOf(const FieldValues& values);

// The person a transfer of these rows would file (a later row of the same field wins).
Identity identityOfRows(const FieldRows& rows);

enum class Reason { EMail, Name, Mobile };

// Why the two are the same person, or nothing.
std::optional<Reason> sameContact(const Identity& a, const Identity& b);

// The number as "+" and digits, with the calling code of the number's own prefix, else the
// given one; "(0)" after a calling code and all punctuation dropped. A number without an
// area code stays its plain digits.
QString normalisePhone(QStringView number, QStringView callingCode = u"49");

// The calling code for a country as the rows name it ("Österreich" -> "43"); "" if unknown.
QString callingCodeOf(QStringView country);

} // namespace zf::dup
