#include "vcard.h"

#include "books/vcard/vcardtext.h"

#include "analysis/fields.h"

#include <QMap>
#include <QStringList>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zf::act {

namespace {

// The card's properties in the order it lists them (FN comes first, on its own); for a
// structured property the number of components, 0 for "as many as are filled", -1 for a plain
// property with one line per field. The fields come from the standard field table.
struct Property {
    std::u16string_view name;
    int components;
};
constexpr Property CardOrder[] = {
    {u"N", 5}, {u"ORG", 0}, {u"TITLE", -1}, {u"ADR", 7}, {u"TEL", -1}, {u"EMAIL", -1}, {u"URL", -1},
};
// TEL lines by type, then in the table's order.
constexpr std::u16string_view TelTypeOrder[] = {u"voice", u"cell", u"fax"};
// A URI value: no text escapes, only line breaks are kept visible.
constexpr std::u16string_view UriProperty = u"URL";

QString toString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), qsizetype(text.size()));
}

QString escapeUri(const QString& value)
{
    return vcard::cleanControls(value).replace(u'\n', u"\\n"_s);
}

int telRank(std::u16string_view type)
{
    const auto* it = std::find(std::begin(TelTypeOrder), std::end(TelTypeOrder), type);
    return int(it - std::begin(TelTypeOrder));
}

} // namespace

QString escapeVCardText(const QString& value)
{
    return vcard::escapeValue(value, false);
}

QString escapeVCardComponent(const QString& value)
{
    return vcard::escapeValue(value, true);
}

QByteArray contactToVCard(const QList<BookValue>& values, const CardStamp& stamp)
{
    QMap<qint32, QString> byId;
    for (const BookValue& v : values)
        if (!v.value.isEmpty())
            byId.insert(v.fieldId, v.value);
    const auto value = [&](FieldId id) { return byId.value(idOf(id)); };

    QByteArray card;
    const auto add = [&card](const QString& line) { card += vcard::foldLine(line); };
    add(u"BEGIN:VCARD"_s);
    add(u"VERSION:4.0"_s);

    QString fullName;
    for (const StandardField& f : StandardFields)
        if (f.vcard.property == u"FN")
            fullName = value(f.id);
    if (fullName.isEmpty())
        fullName =
            QStringList{value(FieldId::Vorname), value(FieldId::Nachname)}.join(u' ').trimmed();
    if (fullName.isEmpty())
        fullName = value(FieldId::Firma);
    add(u"FN:"_s + escapeVCardText(fullName));

    for (const Property& property : CardOrder) {
        QList<const StandardField*> filled;
        for (const StandardField& f : StandardFields)
            if (f.vcard.property == property.name && byId.contains(idOf(f.id)))
                filled.append(&f);
        // Every card names its person, if only with empty components: importers insist on N.
        if (filled.isEmpty() && property.name != u"N")
            continue;
        const QString name = toString(property.name);
        if (property.components >= 0) {
            QList<QStringList> components(property.components);
            for (const StandardField* f : filled) {
                if (f->vcard.component >= components.size())
                    components.resize(f->vcard.component + 1);
                components[f->vcard.component].append(escapeVCardComponent(value(f->id)));
            }
            QStringList parts;
            for (const QStringList& c : components)
                parts.append(c.join(u','));
            add(name + u':' + parts.join(u';'));
            continue;
        }
        std::stable_sort(filled.begin(), filled.end(), [](const auto* a, const auto* b) {
            return telRank(a->vcard.type) < telRank(b->vcard.type);
        });
        for (const StandardField* f : filled) {
            QString line = name;
            if (!f->vcard.type.empty())
                line += u";TYPE="_s + toString(f->vcard.type);
            const QString v = value(f->id);
            add(line + u':' + (property.name == UriProperty ? escapeUri(v) : escapeVCardText(v)));
        }
    }

    for (const BookValue& v : values) {
        if (v.value.isEmpty() || standardField(v.fieldId))
            continue;
        QString line = u"X-ZETTELFISCHER-FIELD-%1"_s.arg(v.fieldId);
        if (!v.label.isEmpty())
            line += u";X-LABEL="_s + vcard::quoteParameter(v.label);
        add(line + u':' + escapeVCardText(v.value));
    }
    if (!stamp.uid.isEmpty())
        add(u"UID:"_s + vcard::cleanControls(stamp.uid).remove(u'\n'));
    if (stamp.revision.isValid())
        add(u"REV:"_s + stamp.revision.toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'"_s));
    add(u"END:VCARD"_s);
    return card;
}

} // namespace zf::act
