#pragma once

// The twenty standard fields of the contact manager: their ids, the names the built-in list
// shows, and where each lives in a vCard. Every other place takes them from here.

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace zf {

enum class FieldId : qint16 {
    Firma = 25,
    Kontakt = 26,
    Adresse = 27,
    Adresse2 = 28,
    Adresse3 = 29,
    Ort = 30,
    Plz = 32,
    Land = 33,
    Telefon = 35,
    Fax = 36,
    Mobil = 38,
    Anrede = 40,
    Titel = 46,
    Telefon2 = 74,
    Telefon3 = 77,
    Vorname = 78,
    Nachname = 79,
    Abteilung = 88,
    Website = 94,
    EMail = 200,
};

constexpr qint32 idOf(FieldId field)
{
    return qint32(field);
}

// Where a field goes in a vCard: a property, for structured properties (N, ADR, ORG) the
// component it fills, for TEL the type.
struct VCardSlot {
    std::u16string_view property;
    int component = -1; // -1: the whole value
    std::u16string_view type;
};

struct StandardField {
    FieldId id;
    std::u16string_view name;
    VCardSlot vcard;
};

// In the order of the built-in field list.
inline constexpr std::array<StandardField, 20> StandardFields{{
    {FieldId::Firma, u"Firma", {u"ORG", 0, {}}},
    {FieldId::Abteilung, u"Abteilung", {u"ORG", 1, {}}},
    {FieldId::Anrede, u"Anrede", {u"N", 3, {}}},
    {FieldId::Kontakt, u"Kontakt", {u"FN", -1, {}}},
    {FieldId::Nachname, u"Nachname", {u"N", 0, {}}},
    {FieldId::Vorname, u"Vorname", {u"N", 1, {}}},
    {FieldId::Adresse, u"Adresse", {u"ADR", 2, {}}},
    {FieldId::Plz, u"PLZ", {u"ADR", 5, {}}},
    {FieldId::Ort, u"Ort", {u"ADR", 3, {}}},
    {FieldId::Land, u"Land", {u"ADR", 6, {}}},
    {FieldId::Telefon, u"Telefon", {u"TEL", -1, u"voice"}},
    {FieldId::Fax, u"Fax", {u"TEL", -1, u"fax"}},
    {FieldId::Mobil, u"Mobil", {u"TEL", -1, u"cell"}},
    {FieldId::EMail, u"eMail", {u"EMAIL", -1, {}}},
    {FieldId::Website, u"Website", {u"URL", -1, {}}},
    {FieldId::Titel, u"Titel", {u"TITLE", -1, {}}},
    {FieldId::Adresse2, u"Adresse 2", {u"ADR", 2, {}}},
    {FieldId::Adresse3, u"Adresse 3", {u"ADR", 2, {}}},
    {FieldId::Telefon2, u"Telefon 2", {u"TEL", -1, u"voice"}},
    {FieldId::Telefon3, u"Telefon 3", {u"TEL", -1, u"voice"}},
}};

// The standard field with that id, if it is one.
constexpr const StandardField* standardField(qint32 id)
{
    for (const StandardField& f : StandardFields)
        if (idOf(f.id) == id)
            return &f;
    return nullptr;
}

// A field as a contact book defines it: its id and its label ("" when it has none).
struct BookField {
    qint32 id = 0;
    QString label;
    friend bool operator==(const BookField&, const BookField&) = default;
};

inline QString fieldName(const StandardField& field)
{
    return QString::fromUtf16(field.name.data(), qsizetype(field.name.size()));
}

} // namespace zf
