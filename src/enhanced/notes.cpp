#include "engine.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

const char* kindName(Kind k)
{
    switch (k) {
    case Kind::Blank:
        return "Leerzeile";
    case Kind::Unknown:
        return "unbestimmt";
    case Kind::Noise:
        return "Beiwerk";
    case Kind::Prose:
        return "Fließtext";
    case Kind::Closing:
        return "Grußformel";
    case Kind::Opening:
        return "Anrede im Text";
    case Kind::Cut:
        return "ältere Nachricht";
    case Kind::Heading:
        return "Überschrift";
    case Kind::LabelOnly:
        return "Etikett";
    case Kind::Company:
        return "Firma";
    case Kind::Department:
        return "Abteilung";
    case Kind::Job:
        return "Funktion";
    case Kind::Person:
        return "Person";
    case Kind::NamePart:
        return "Namensteil";
    case Kind::Salutation:
        return "Anrede";
    case Kind::Title:
        return "Titel";
    case Kind::Street:
        return "Straße";
    case Kind::Address2:
        return "Adresszusatz";
    case Kind::PoBox:
        return "Postfach";
    case Kind::PostcodeCity:
        return "PLZ und Ort";
    case Kind::Postcode:
        return "PLZ";
    case Kind::City:
        return "Ort";
    case Kind::Country:
        return "Land";
    case Kind::Phone:
        return "Rufnummer";
    case Kind::Email:
        return "E-Mail";
    case Kind::Website:
        return "Website";
    }
    return "";
}

QJsonArray Analysis::notes() const
{
    QJsonArray out;
    for (const Line& l : m_lines) {
        if (l.kind == Kind::Blank)
            continue;
        QJsonObject note{
            {u"line"_s, l.source},
            {u"text"_s, l.text},
            {u"kind"_s, QString::fromUtf8(kindName(l.kind))},
            {u"why"_s, l.why},
        };
        if (!l.taken.isEmpty())
            note.insert(u"fields"_s, QJsonArray::fromStringList(l.taken));
        if (l.skipped)
            note.insert(u"skipped"_s, l.skipWhy.isEmpty() ? u"übergangen"_s : l.skipWhy);
        if (l.quoted)
            note.insert(u"quoted"_s, true);
        out.append(note);
    }
    if (m_truncated)
        out.append(
            QJsonObject{{u"why"_s, u"Text nach %1 Zeilen nicht mehr untersucht"_s.arg(MaxLines)}});
    return out;
}

} // namespace zf::enhanced
