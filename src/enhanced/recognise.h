#pragma once

// Recognisers for single pieces of address text: each looks at one line or value on its
// own and says what it is. The analysis (engine.h) puts them in context.

#include "knowledge.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

#include <optional>

namespace zf::enhanced {

struct PersonName {
    QString anrede;
    QString titel;
    QString vorname;
    QString nachname;
    bool addressee = false; // written as a letter's recipient ("Herrn")
    bool marked = false;    // a salutation or degree stands in front
    bool knownGiven = false;
    QString kontakt() const;
};

struct Place {
    QString plz;
    QString ort;
    QString land;   // named in the line (prefix or country name), German
    QString system; // "5", "4", "uk", "us", "nl", or the prefix's country
    // The postcode's shape is used by more countries than land.
    bool shared = false;
};

enum class PhoneRole { Direct, Plain, Second, Main, Fax, Mobile };

struct PhoneNumber {
    QString value;
    PhoneRole role = PhoneRole::Plain;
};

// Blank-separated words. A line has few: they stay on the stack, as most lines are split
// by several recognisers in turn.
using WordViews = QVarLengthArray<QStringView, 16>;
WordViews Words(QStringView text);
qsizetype WordCount(QStringView text);
// Lower-cased, without trailing , ; : characters.
QString Bare(QStringView word);
bool IsAllCaps(QStringView text);
int CountDigitsIn(QStringView text);

bool IsClosing(QStringView text);
bool IsOpening(QStringView text);
bool IsThreadCut(QStringView text);
bool IsNoise(QStringView text, QString* why);
bool IsDate(QStringView text);

// "Label: value" or a phone, mail or web label without colon. known = the label is in the
// list; an unknown label still splits the line (its value is then not used).
struct LabelHit {
    bool known = false;
    Label label;
    QString name; // the label as written
    QString rest;
};
std::optional<LabelHit> ParseLabel(QStringView text);

// The phone number a value starts with (OCR slips O/l fixed), its qualifier in brackets
// behind. strict: nothing but the number (and a bracketed note) may stand in the value.
std::optional<PhoneNumber> ParsePhone(QStringView value, bool strict);
// National mobile number? country = the contact's country, for numbers without a code.
bool IsMobileNumber(const QString& number, const QString& country);
// Country of a number written with its international code.
QString CountryOfNumber(const QString& number);

QString FindEMail(QStringView text);
// The host of a web address: no scheme, path or trailing slash. bare: a lone domain counts.
QString FindWebHost(QStringView text, bool bare);

std::optional<Place> ParsePostcodeCity(QStringView text);
// A postcode standing alone ("56751", "D-56751").
std::optional<Place> ParsePostcodeOnly(QStringView text);
// 0 none, 1 looks like a street ("Name 12"), 2 certainly a street (street word).
int StreetStrength(QStringView text, QString* value);
bool IsPoBox(QStringView text);
bool IsAddressExtra(QStringView text);
QString CountryName(QStringView text);

bool HasLegalForm(QStringView text);
// A register entry ("HRB 1234, AG Musterstadt", "FN 123456 a"), whose court may read as a firm.
bool IsRegisterLine(QStringView text);
// Without rating stars and similar ornaments ("Hotel Adler ★★★★").
QString WithoutDecoration(const QString& text);
// "Eva Roth e. K." without the sole trader's form behind the name, else empty.
QString WithoutSoleTraderForm(QStringView text);
bool IsCompanyWordLine(QStringView text);
bool IsDepartmentLine(QStringView text);
// "Abteilung Kundenservice" -> "Kundenservice": the unit's name without the generic word.
QString WithoutUnitWord(const QString& text);
bool IsJobLine(QStringView text);
// A slogan addressed to the reader ("Ihr Partner für Sanitär"), never a firm's name.
bool IsSloganLine(QStringView text);
bool IsKnownGivenName(QStringView word);
// Letters a-z of a name or an address's local part, for matching one to the other:
// "De Smet" and "de.smet" both give "desmet", "Müller" "mueller".
QString MailKey(QStringView text);
// An imprint's line naming the chair ("Präsident", "1. Vorsitzender", "Chairman").
bool IsChairLine(QStringView text);

// A person's name with what may stand in front (salutation, degrees, a job word, "Ihr").
// needMarker: only when a salutation or degree stands in front.
std::optional<PersonName> ParsePerson(QStringView text, bool needMarker);
// The name behind a proxy mark ("i. A. Eva Roth", "ppa. Eva Roth"), else empty.
QStringView WithoutProxyMark(QStringView text);
// A lone salutation ("Herr") or degree ("Dipl.-Kffr.") line.
QString SalutationOnly(QStringView text);
QString DegreeOnly(QStringView text);
// The owner named in a firm after its trade ("Malerbetrieb Hans Meier"), when the given name
// is a known one or a degree stands in front.
std::optional<PersonName> OwnerInFirmName(QStringView text);

} // namespace zf::enhanced
