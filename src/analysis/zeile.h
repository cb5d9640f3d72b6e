#pragma once

#include <QList>
#include <QString>

#include <array>
#include <list>

namespace zf {

// One line of the analysed text and its twenty field scores. Scores only ever grow.
struct clsZeile {
    QString Text;
    qint16 Firma = 0;
    qint16 Kontakt = 0;
    qint16 Anrede = 0;
    qint16 NachName = 0;
    qint16 Vorname = 0;
    qint16 Postfach = 0;
    qint16 Adresse = 0;
    qint16 PLZ = 0;
    qint16 Ort = 0;
    qint16 Land = 0;
    qint16 Telefon = 0;
    qint16 Fax = 0;
    qint16 Mobil = 0;
    qint16 EMail = 0;
    qint16 Website = 0;
    qint16 Adresse2 = 0;
    qint16 Adresse3 = 0;
    qint16 Titel = 0;
    qint16 Telefon2 = 0;
    qint16 Telefon3 = 0;
};

struct ScoreMember {
    const char* name;
    qint16 clsZeile::*member;
};

// All twenty scores in declaration order, for generic readers (trace output, tests).
inline constexpr std::array<ScoreMember, 20> AllScores{{
    {"Firma", &clsZeile::Firma},       {"Kontakt", &clsZeile::Kontakt},
    {"Anrede", &clsZeile::Anrede},     {"NachName", &clsZeile::NachName},
    {"Vorname", &clsZeile::Vorname},   {"Postfach", &clsZeile::Postfach},
    {"Adresse", &clsZeile::Adresse},   {"PLZ", &clsZeile::PLZ},
    {"Ort", &clsZeile::Ort},           {"Land", &clsZeile::Land},
    {"Telefon", &clsZeile::Telefon},   {"Fax", &clsZeile::Fax},
    {"Mobil", &clsZeile::Mobil},       {"EMail", &clsZeile::EMail},
    {"Website", &clsZeile::Website},   {"Adresse2", &clsZeile::Adresse2},
    {"Adresse3", &clsZeile::Adresse3}, {"Titel", &clsZeile::Titel},
    {"Telefon2", &clsZeile::Telefon2}, {"Telefon3", &clsZeile::Telefon3},
}};

// The line list of one run: inserts at the front and behind a record, removal, and
// references that stay valid while other records come and go.
using LineList = std::list<clsZeile>;

// A configured label (Wert = label) or a value found for it (Wert = value), by field id.
struct clsZusatzDefs {
    qint16 ID = 0;
    QString Wert;
    friend bool operator==(const clsZusatzDefs&, const clsZusatzDefs&) = default;
};

} // namespace zf
