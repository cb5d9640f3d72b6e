#include "vcard.h"

#include "analysis/fields.h"

#include <QMap>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace zf::act {

namespace {

// Short names for the fields the card is built from.
constexpr qint32 Firma = idOf(FieldId::Firma), Abteilung = idOf(FieldId::Abteilung),
                 Anrede = idOf(FieldId::Anrede), Kontakt = idOf(FieldId::Kontakt),
                 Nachname = idOf(FieldId::Nachname), Vorname = idOf(FieldId::Vorname),
                 Adresse = idOf(FieldId::Adresse), Plz = idOf(FieldId::Plz),
                 Ort = idOf(FieldId::Ort), Land = idOf(FieldId::Land),
                 Telefon = idOf(FieldId::Telefon), Fax = idOf(FieldId::Fax),
                 Mobil = idOf(FieldId::Mobil), EMail = idOf(FieldId::EMail),
                 Website = idOf(FieldId::Website), Titel = idOf(FieldId::Titel),
                 Adresse2 = idOf(FieldId::Adresse2), Adresse3 = idOf(FieldId::Adresse3),
                 Telefon2 = idOf(FieldId::Telefon2), Telefon3 = idOf(FieldId::Telefon3);

QString normaliseBreaks(const QString& value)
{
    QString out = value;
    out.replace(u"\r\n"_s, u"\n"_s);
    out.replace(u'\r', u'\n');
    return out;
}

QString escape(const QString& value, bool component)
{
    QString out;
    out.reserve(value.size());
    for (const QChar c : normaliseBreaks(value)) {
        if (c == u'\\' || c == u',' || (component && c == u';')) {
            out += u'\\';
            out += c;
        } else if (c == u'\n') {
            out += u"\\n"_s;
        } else {
            out += c;
        }
    }
    return out;
}

bool isContinuationByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

QString escapeVCardText(const QString& value)
{
    return escape(value, false);
}

QString escapeVCardComponent(const QString& value)
{
    return escape(value, true);
}

QString quoteVCardParameter(const QString& value)
{
    QString out = u"\""_s;
    for (const QChar c : normaliseBreaks(value)) {
        if (c == u'^')
            out += u"^^"_s;
        else if (c == u'"')
            out += u"^'"_s;
        else if (c == u'\n')
            out += u"^n"_s;
        else
            out += c;
    }
    return out + u'"';
}

QByteArray foldVCardLine(const QString& line)
{
    const QByteArray utf8 = line.toUtf8();
    QByteArray out;
    qsizetype pos = 0;
    // The first line holds 75 octets; every continuation line starts with a space.
    qsizetype room = 75;
    while (utf8.size() - pos > room) {
        qsizetype cut = pos + room;
        while (cut > pos && isContinuationByte(utf8[cut]))
            --cut;
        out += utf8.mid(pos, cut - pos);
        out += "\r\n ";
        pos = cut;
        room = 74;
    }
    out += utf8.mid(pos);
    out += "\r\n";
    return out;
}

QByteArray contactToVCard(const QList<BookValue>& values)
{
    QMap<qint32, QString> byId;
    for (const BookValue& v : values)
        if (!v.value.isEmpty())
            byId.insert(v.fieldId, v.value);
    const auto has = [&](qint32 id) { return byId.contains(id); };
    const auto value = [&](qint32 id) { return byId.value(id); };
    const auto component = [&](qint32 id) { return escapeVCardComponent(value(id)); };

    QByteArray card;
    const auto add = [&card](const QString& line) { card += foldVCardLine(line); };
    add(u"BEGIN:VCARD"_s);
    add(u"VERSION:4.0"_s);

    QString fullName = value(Kontakt);
    if (fullName.isEmpty())
        fullName = QStringList{value(Vorname), value(Nachname)}.join(u' ').trimmed();
    if (fullName.isEmpty())
        fullName = value(Firma);
    add(u"FN:"_s + escapeVCardText(fullName));
    if (has(Nachname) || has(Vorname) || has(Anrede))
        add(u"N:%1;%2;;%3;"_s.arg(component(Nachname), component(Vorname), component(Anrede)));
    if (has(Firma) || has(Abteilung)) {
        QString org = u"ORG:"_s + component(Firma);
        if (has(Abteilung))
            org += u';' + component(Abteilung);
        add(org);
    }
    if (has(Titel))
        add(u"TITLE:"_s + escapeVCardText(value(Titel)));
    if (has(Adresse) || has(Adresse2) || has(Adresse3) || has(Ort) || has(Plz) || has(Land)) {
        QStringList street;
        for (const qint32 id : {Adresse, Adresse2, Adresse3})
            if (has(id))
                street.append(component(id));
        add(u"ADR:;;%1;%2;;%3;%4"_s.arg(street.join(u','), component(Ort), component(Plz),
                                        component(Land)));
    }
    const std::pair<qint32, const char16_t*> phones[] = {
        {Telefon, u"voice"}, {Telefon2, u"voice"}, {Telefon3, u"voice"},
        {Mobil, u"cell"},    {Fax, u"fax"},
    };
    for (const auto& [id, type] : phones)
        if (has(id))
            add(u"TEL;TYPE=%1:%2"_s.arg(QString::fromUtf16(type), escapeVCardText(value(id))));
    if (has(EMail))
        add(u"EMAIL:"_s + escapeVCardText(value(EMail)));
    if (has(Website))
        add(u"URL:"_s + normaliseBreaks(value(Website)).remove(u'\n')); // a URI: no escapes
    for (const BookValue& v : values) {
        if (v.value.isEmpty() || standardField(v.fieldId))
            continue;
        QString line = u"X-ZETTELFISCHER-FIELD-%1"_s.arg(v.fieldId);
        if (!v.label.isEmpty())
            line += u";X-LABEL="_s + quoteVCardParameter(v.label);
        add(line + u':' + escapeVCardText(v.value));
    }
    add(u"END:VCARD"_s);
    return card;
}

} // namespace zf::act
