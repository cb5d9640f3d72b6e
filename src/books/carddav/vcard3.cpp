#include "vcard3.h"

#include "analysis/fields.h"
#include "books/vcard/vcardtext.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace zf::carddav {

using vcard::cleanControls;

namespace {

const QString UserFieldPrefix = u"X-ZETTELFISCHER-FIELD-"_s;

QString str(std::u16string_view s)
{
    return QString::fromUtf16(s.data(), qsizetype(s.size()));
}

// Splits at separators outside double quotes.
QStringList splitUnquoted(QStringView text, QChar separator)
{
    QStringList parts;
    bool quoted = false;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'"')
            quoted = !quoted;
        else if (text[i] == separator && !quoted) {
            parts.append(text.mid(start, i - start).toString());
            start = i + 1;
        }
    }
    parts.append(text.mid(start).toString());
    return parts;
}

VCard::Line parseLine(QList<QByteArray> physical)
{
    VCard::Line line;
    QByteArray joined = physical.value(0);
    for (qsizetype i = 1; i < physical.size(); ++i)
        joined += physical[i].mid(1);
    line.physical = std::move(physical);
    const QString text = QString::fromUtf8(joined);
    qsizetype colon = -1;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'"')
            quoted = !quoted;
        else if (text[i] == u':' && !quoted) {
            colon = i;
            break;
        }
    }
    if (colon <= 0)
        return line;
    const QStringView head = QStringView(text).left(colon);
    qsizetype semicolon = head.indexOf(u';');
    if (semicolon < 0)
        semicolon = head.size();
    const QStringView fullName = head.left(semicolon);
    const qsizetype dot = fullName.lastIndexOf(u'.');
    line.group = fullName.left(std::max<qsizetype>(dot, 0)).toString();
    line.name = fullName.mid(dot + 1).toString().toUpper();
    line.params = head.mid(semicolon).toString();
    line.value = text.mid(colon + 1);
    line.parsed = !line.name.isEmpty();
    return line;
}

// Which lines a slot type takes: a phone without a type is a voice phone.
bool typeMatches(const VCard::Line& line, const QString& type)
{
    if (type.isEmpty())
        return true;
    const QStringList types = line.types();
    if (types.contains(type))
        return true;
    return type == u"voice"_s && !types.contains(u"fax"_s) && !types.contains(u"cell"_s) &&
           !types.contains(u"pager"_s);
}

// For fields that share a slot (three streets, three voice phones): which of them this is.
int occurrenceOf(const StandardField& field)
{
    int n = 0;
    for (const StandardField& f : StandardFields) {
        if (&f == &field)
            return n;
        if (f.vcard.property == field.vcard.property &&
            f.vcard.component == field.vcard.component && f.vcard.type == field.vcard.type)
            ++n;
    }
    return n;
}

// Components a structured property is written with when new.
int componentCount(const QString& name)
{
    if (name == u"N"_s)
        return 5;
    if (name == u"ADR"_s)
        return 7;
    return 1;
}

} // namespace

QString escapeText(const QString& value)
{
    return vcard::escapeValue(value, true);
}

QString unescapeText(QStringView value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == u'\\' && i + 1 < value.size()) {
            const QChar next = value[++i];
            out += (next == u'n' || next == u'N') ? QChar(u'\n') : next;
        } else {
            out += value[i];
        }
    }
    return out;
}

QStringList splitEscaped(QStringView value, QChar separator)
{
    QStringList parts;
    qsizetype start = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == u'\\')
            ++i;
        else if (value[i] == separator) {
            parts.append(value.mid(start, i - start).toString());
            start = i + 1;
        }
    }
    parts.append(value.mid(start).toString());
    return parts;
}

QStringList VCard::Line::types() const
{
    QStringList out;
    const QStringList parts = splitUnquoted(params, u';');
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const qsizetype eq = parts[i].indexOf(u'=');
        if (eq < 0) {
            out.append(parts[i].toLower());
        } else if (QStringView(parts[i]).left(eq).compare(u"TYPE", Qt::CaseInsensitive) == 0) {
            for (const QString& t : splitUnquoted(QStringView(parts[i]).mid(eq + 1), u','))
                out.append(unquoteParameter(t).toLower());
        }
    }
    return out;
}

std::optional<QString> VCard::Line::param(QStringView name) const
{
    const QStringList parts = splitUnquoted(params, u';');
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const qsizetype eq = parts[i].indexOf(u'=');
        if (eq > 0 && QStringView(parts[i]).left(eq).compare(name, Qt::CaseInsensitive) == 0)
            return unquoteParameter(QStringView(parts[i]).mid(eq + 1));
    }
    return std::nullopt;
}

VCard VCard::parse(const QByteArray& data)
{
    VCard card;
    QList<QByteArray> physical;
    const auto flush = [&] {
        if (!physical.isEmpty())
            card.m_lines.append(parseLine(std::move(physical)));
        physical.clear();
    };
    for (QByteArray line : data.split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (!physical.isEmpty() && (line.startsWith(' ') || line.startsWith('\t'))) {
            physical.append(line);
            continue;
        }
        flush();
        if (!line.isEmpty())
            physical.append(line);
    }
    flush();
    return card;
}

VCard VCard::blank(const QString& uid)
{
    VCard card;
    const auto add = [&card](const QString& name, const QString& value) {
        Line line;
        line.name = name;
        line.value = value;
        line.parsed = true;
        card.m_lines.append(line);
    };
    add(u"BEGIN"_s, u"VCARD"_s);
    add(u"VERSION"_s, u"3.0"_s);
    add(u"UID"_s, escapeText(uid));
    add(u"FN"_s, QString());
    add(u"N"_s, u";;;;"_s);
    add(u"END"_s, u"VCARD"_s);
    return card;
}

QByteArray VCard::toBytes() const
{
    QByteArray out;
    for (const Line& line : m_lines) {
        if (!line.physical.isEmpty()) {
            for (const QByteArray& p : line.physical)
                out += p + "\r\n";
            continue;
        }
        QString text = line.group.isEmpty() ? line.name : line.group + u'.' + line.name;
        out += foldLine(text + line.params + u':' + line.value);
    }
    return out;
}

QString VCard::uid() const
{
    const qsizetype i = find(u"UID"_s, {}, 0);
    return i < 0 ? QString() : unescapeText(m_lines[i].value);
}

// The n-th ungrouped line of that name and type; a grouped line carries its own label and
// belongs to whoever gave it.
qsizetype VCard::find(const QString& name, const QString& type, int occurrence) const
{
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const Line& line = m_lines[i];
        if (line.parsed && line.group.isEmpty() && line.name == name && typeMatches(line, type) &&
            occurrence-- == 0)
            return i;
    }
    return -1;
}

qsizetype VCard::endIndex() const
{
    for (qsizetype i = m_lines.size() - 1; i >= 0; --i)
        if (m_lines[i].parsed && m_lines[i].name == u"END"_s)
            return i;
    return m_lines.size();
}

void VCard::setLine(qsizetype index, const QString& value)
{
    Line& line = m_lines[index];
    if (line.value == value)
        return;
    line.value = value;
    line.physical.clear();
}

void VCard::insertLine(const QString& name, const QString& params, const QString& value)
{
    Line line;
    line.name = name;
    line.params = params;
    line.value = value;
    line.parsed = true;
    m_lines.insert(endIndex(), line);
}

void VCard::setComponent(const QString& name, int component, int item, const QString& value)
{
    const qsizetype index = find(name, {}, 0);
    if (index < 0 && value.isEmpty())
        return;
    QStringList components = index < 0 ? QStringList() : splitEscaped(m_lines[index].value, u';');
    while (components.size() < std::max(component + 1, componentCount(name)))
        components.append(QString());
    QStringList items = splitEscaped(components[component], u',');
    while (items.size() <= item)
        items.append(QString());
    items[item] = escapeText(value);
    while (items.size() > 1 && items.back().isEmpty())
        items.removeLast();
    components[component] = items.join(u',');
    while (components.size() > componentCount(name) && components.back().isEmpty())
        components.removeLast();
    const QString joined = components.join(u';');
    if (index < 0) {
        insertLine(name, {}, joined);
    } else if (name != u"N"_s && joined.count(u';') == joined.size()) {
        m_lines.removeAt(index); // nothing left of the address or company
    } else {
        setLine(index, joined);
    }
}

QString VCard::field(qint32 fieldId) const
{
    const StandardField* standard = standardField(fieldId);
    if (!standard) {
        const qsizetype i = find(UserFieldPrefix + QString::number(fieldId), {}, 0);
        return i < 0 ? QString() : unescapeText(m_lines[i].value);
    }
    const QString name = str(standard->vcard.property);
    const int occurrence = occurrenceOf(*standard);
    if (standard->vcard.component < 0) {
        const qsizetype i = find(name, str(standard->vcard.type), occurrence);
        if (i < 0)
            return {};
        return unescapeText(m_lines[i].value);
    }
    const qsizetype i = find(name, {}, 0);
    if (i < 0)
        return {};
    const QStringList components = splitEscaped(m_lines[i].value, u';');
    if (standard->vcard.component >= components.size())
        return {};
    return unescapeText(
        splitEscaped(components[standard->vcard.component], u',').value(occurrence));
}

void VCard::setField(const FieldValue& field)
{
    const StandardField* standard = standardField(field.fieldId);
    if (!standard) {
        const QString name = UserFieldPrefix + QString::number(field.fieldId);
        const qsizetype i = find(name, {}, 0);
        if (i >= 0 && field.value.isEmpty())
            m_lines.removeAt(i);
        else if (i >= 0)
            setLine(i, escapeText(field.value));
        else if (!field.value.isEmpty())
            insertLine(name,
                       field.label.isEmpty() ? QString()
                                             : u";X-LABEL="_s + quoteParameter(field.label),
                       escapeText(field.value));
        return;
    }
    const QString name = str(standard->vcard.property);
    const QString type = str(standard->vcard.type);
    const int occurrence = occurrenceOf(*standard);
    if (standard->vcard.component >= 0) {
        setComponent(name, standard->vcard.component, occurrence, field.value);
        return;
    }
    // A URL too is escaped as text: servers that parse 3.0 cards split it at bare commas.
    const QString value = escapeText(field.value);
    const qsizetype i = find(name, type, occurrence);
    if (name == u"FN"_s && i >= 0)
        setLine(i, value); // required: emptied, then filled again by finish()
    else if (i >= 0 && value.isEmpty())
        m_lines.removeAt(i);
    else if (i >= 0)
        setLine(i, value);
    else if (!value.isEmpty())
        insertLine(name, type.isEmpty() ? QString() : u";TYPE="_s + type, value);
}

void VCard::finish(const QDateTime& revision)
{
    if (find(u"UID"_s, {}, 0) < 0)
        insertLine(u"UID"_s, {}, escapeText(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    if (find(u"N"_s, {}, 0) < 0)
        insertLine(u"N"_s, {}, u";;;;"_s);
    qsizetype fn = find(u"FN"_s, {}, 0);
    if (fn < 0) {
        insertLine(u"FN"_s, {}, QString());
        fn = find(u"FN"_s, {}, 0);
    }
    if (m_lines[fn].value.isEmpty()) {
        QString name = QStringList{field(idOf(FieldId::Vorname)), field(idOf(FieldId::Nachname))}
                           .join(u' ')
                           .trimmed();
        if (name.isEmpty())
            name = field(idOf(FieldId::Firma));
        setLine(fn, escapeText(name));
    }
    const QString rev = revision.toUTC().toString(u"yyyy-MM-dd'T'HH:mm:ss'Z'"_s);
    const qsizetype i = find(u"REV"_s, {}, 0);
    if (i < 0)
        insertLine(u"REV"_s, {}, rev);
    else
        setLine(i, rev);
}

QList<BookField> VCard::userFields() const
{
    QList<BookField> out;
    for (const Line& line : m_lines) {
        if (!line.parsed || !line.name.startsWith(UserFieldPrefix))
            continue;
        bool ok = false;
        const qint32 id = QStringView(line.name).mid(UserFieldPrefix.size()).toInt(&ok);
        if (ok && !standardField(id))
            out.append({id, line.param(u"X-LABEL").value_or(QString())});
    }
    return out;
}

} // namespace zf::carddav
