#include "lookup.h"

#include "analysis/fields.h"

using namespace Qt::StringLiterals;

namespace zf::dup {

Match matchOf(const QString& id, const FieldValues& values, Reason reason)
{
    const auto valueOf = [&values](FieldId field) {
        for (const auto& [fieldId, value] : values)
            if (fieldId == idOf(field))
                return value;
        return QString();
    };
    QString name = valueOf(FieldId::Kontakt);
    if (name.isEmpty())
        name =
            QStringList{valueOf(FieldId::Vorname), valueOf(FieldId::Nachname)}.join(u' ').trimmed();
    return Match{id, name, valueOf(FieldId::Firma), valueOf(FieldId::EMail), reason};
}

QString reasonName(Reason reason)
{
    switch (reason) {
    case Reason::EMail:
        return u"email"_s;
    case Reason::Name:
        return u"name"_s;
    case Reason::Mobile:
        return u"mobile"_s;
    }
    return {};
}

} // namespace zf::dup
