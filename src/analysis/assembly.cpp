// The result assembly: every line gets its best field and fills the row of its position.

#include "analyser.h"

#include "cleanup.h"
#include "failure.h"
#include "fields.h"
#include "textutil.h"

#include <iterator>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

// Every "GERMANY", in any case, becomes "Deutschland".
QString replaceGermany(const QString& value)
{
    static const QString germany = u"GERMANY"_s;
    const QString upper = UpperEach(value);
    QString out;
    qsizetype from = 0;
    for (qsizetype at = upper.indexOf(germany); at >= 0; at = upper.indexOf(germany, from)) {
        out += QStringView(value).mid(from, at - from);
        out += u"Deutschland"_s;
        from = at + germany.size();
    }
    out += QStringView(value).mid(from);
    return out;
}

// A tie between company and contact on the first two lines goes against the other line.
void breakCompanyContactTie(LineList& lines)
{
    if (lines.size() < 2)
        return;
    clsZeile& first = lines.front();
    clsZeile& second = *std::next(lines.begin());
    if (first.Firma == first.Kontakt)
        addChecked(second.Firma > second.Kontakt ? first.Kontakt : first.Firma, 1);
    if (second.Firma == second.Kontakt)
        addChecked(first.Firma > first.Kontakt ? second.Kontakt : second.Firma, 1);
}

enum class Kind { Fixed, PoBox, Address, Phone, Postcode, Country };

struct Choice {
    qint16 clsZeile::*score;
    Kind kind;
    FieldId id;
    QString (*clean)(QStringView);
};

// The fields a line can get, in the order that also breaks ties.
const Choice Choices[] = {
    {&clsZeile::Firma, Kind::Fixed, FieldId::Firma, nullptr},
    {&clsZeile::Anrede, Kind::Fixed, FieldId::Anrede, nullptr},
    {&clsZeile::Kontakt, Kind::Fixed, FieldId::Kontakt, nullptr},
    {&clsZeile::Postfach, Kind::PoBox, {}, nullptr},
    {&clsZeile::Adresse, Kind::Address, {}, nullptr},
    {&clsZeile::PLZ, Kind::Postcode, FieldId::Plz, nullptr},
    {&clsZeile::Ort, Kind::Fixed, FieldId::Ort, nullptr},
    {&clsZeile::Land, Kind::Country, FieldId::Land, nullptr},
    {&clsZeile::Telefon, Kind::Phone, {}, &CleanPhoneNumber},
    {&clsZeile::Fax, Kind::Fixed, FieldId::Fax, &CleanPhoneNumber},
    {&clsZeile::Mobil, Kind::Fixed, FieldId::Mobil, &CleanPhoneNumber},
    {&clsZeile::EMail, Kind::Fixed, FieldId::EMail, &ExtractEMailAddress},
    {&clsZeile::Website, Kind::Fixed, FieldId::Website, &ExtractWebAddress},
    {&clsZeile::NachName, Kind::Fixed, FieldId::Nachname, nullptr},
    {&clsZeile::Vorname, Kind::Fixed, FieldId::Vorname, nullptr},
    {&clsZeile::Titel, Kind::Fixed, FieldId::Titel, nullptr},
};

// The strictly highest score wins; all scores 0 still beat the start below 0 (a company).
const Choice& bestChoice(const clsZeile& z)
{
    const Choice* best = nullptr;
    int bestScore = -1;
    for (const Choice& c : Choices)
        if (z.*c.score > bestScore) {
            bestScore = z.*c.score;
            best = &c;
        }
    return *best;
}

// Writes the rows one line at a time, keeping what later rows depend on: how many address
// and phone rows were written, whether a country was, and the last postcode's length.
class RowWriter {
public:
    RowWriter(FieldRows& rows, const SharedState& state) : m_rows(rows), m_state(state) {}

    void write(int row, const clsZeile& z)
    {
        const Choice& best = bestChoice(z);
        const QString value = best.clean ? best.clean(z.Text) : z.Text;
        switch (best.kind) {
        case Kind::Fixed:
            setRow(row, value, best.id);
            break;
        case Kind::PoBox:
            break;
        case Kind::Address:
            writeNumbered(row, value, AddressIds, m_addresses);
            break;
        case Kind::Phone:
            writeNumbered(row, value, PhoneIds, m_phones);
            break;
        case Kind::Postcode:
            m_postcodeLength = value.size();
            setRow(row, value, best.id);
            break;
        case Kind::Country: {
            m_countryMissing = false;
            QString country = replaceGermany(value);
            if (Trim(country).isEmpty())
                country = m_state.StandardLand5PLZ;
            setRow(row, country, best.id);
            break;
        }
        }
    }

    // Without a country line, the first free row gets the default for the postcode's length.
    void addDefaultCountry(qsizetype lineCount)
    {
        if (!m_countryMissing || lineCount >= FieldRows::RowCount)
            return;
        setRow(int(lineCount),
               m_postcodeLength == 4 ? m_state.StandardLand4PLZ : m_state.StandardLand5PLZ,
               FieldId::Land);
    }

private:
    static constexpr FieldId AddressIds[] = {FieldId::Adresse, FieldId::Adresse2,
                                             FieldId::Adresse3};
    static constexpr FieldId PhoneIds[] = {FieldId::Telefon, FieldId::Telefon2, FieldId::Telefon3};

    void setRow(int row, const QString& value, FieldId id)
    {
        m_rows.setValue(row, value);
        m_rows.SelectRowField(row, id);
    }
    // The next of up to three ids; a fourth such line keeps its value without a field.
    void writeNumbered(int row, const QString& value, const FieldId (&ids)[3], int& written)
    {
        m_rows.setValue(row, value);
        if (written < 3)
            m_rows.SelectRowField(row, ids[written++]);
        else
            m_rows.setSelected(row, -1);
    }

    FieldRows& m_rows;
    const SharedState& m_state;
    int m_addresses = 0;
    int m_phones = 0;
    bool m_countryMissing = true;
    qsizetype m_postcodeLength = 0;
};

} // namespace

namespace stage {

void AssembleRows(LineList& lines, FieldRows& rows, const SharedState& state)
{
    breakCompanyContactTie(lines);
    RowWriter writer(rows, state);
    int row = 0;
    for (auto it = lines.begin(); it != lines.end() && row < FieldRows::RowCount; ++it, ++row)
        writer.write(row, *it);
    writer.addDefaultCountry(qsizetype(lines.size()));
}

} // namespace stage

} // namespace zf
