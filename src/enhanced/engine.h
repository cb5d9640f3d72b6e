#pragma once

// The enhanced analysis inside: the lines of a text with what each was taken for, and the
// steps that fill them in (cutting, classifying one by one, context, assembly).

#include "analysis/analyser.h"
#include "analysis/fields.h"
#include "recognise.h"

#include <QJsonArray>

namespace zf::enhanced {

// Beyond these a text is no longer an address block; the rest is cut off (and noted) so
// that time and memory stay bounded.
constexpr int MaxLines = 4000;
constexpr qsizetype MaxLineLength = 600;

enum class Kind {
    Blank,
    Unknown,
    Noise,
    Prose,
    Closing,
    Opening,
    Cut,
    Heading,
    LabelOnly,
    Company,
    Department,
    Job,
    Person,
    NamePart,
    Salutation,
    Title,
    Street,
    Address2,
    PoBox,
    PostcodeCity,
    Postcode,
    City,
    Country,
    Phone,
    Email,
    Website,
};

const char* kindName(Kind k);

// How a person was found, strongest first.
enum class PersonSource { Form, Closing, Marked, Evidence, Role, None };

struct Line {
    QString text;
    int source = 0; // 1-based line of the text
    int block = 0;  // blank lines separate blocks
    bool quoted = false;
    Kind kind = Kind::Unknown;
    QString value;
    QString why;
    int strength = 0;
    bool labelled = false;
    LabelKind labelKind = LabelKind::SkipLine;
    PersonName person;
    bool nameShaped = false;
    PersonSource personSource = PersonSource::None;
    Place place;
    PhoneRole phone = PhoneRole::Plain;
    bool skipped = false;
    QString skipWhy;
    QStringList taken;
};

// Lines that are cut into parts at these characters.
inline bool isDivider(QChar c)
{
    return c == u'\t' || c == u'|' || c == u'·' || c == u'•' || c == u'∙' || c == QChar(0x1f);
}

// Control and invisible characters go; odd blanks become blanks; tabs stay as dividers.
QString cleaned(QStringView raw);
// Markdown emphasis, code marks and angle brackets around a lone address.
QString withoutMarkup(QString s);

class Analysis {
public:
    Analysis(const SharedState& state) : m_state(state) {}

    void cut(const QString& text, const QString& separator);
    void takeDefinitions(const QList<clsZusatzDefs>& definitions);
    void classifyAll();
    void context();
    void assemble();
    void fillRows(FieldRows& rows) const;
    QJsonArray notes() const;

private:
    void classifyInto(Line line, QList<Line>& out, int depth);
    // known: ParseLabel of the line's text when the caller has it already.
    bool classifyOne(Line& l, const std::optional<LabelHit>* known = nullptr);
    void applyLabel(Line& l, const Label& label, const QString& value, QList<Line>* extra,
                    int depth);
    bool hasContactData(int from, int to) const;
    int nextInBlock(int i) const;
    int prevInBlock(int i) const;
    void take(int line, const QString& field);

    const SharedState& m_state;
    QList<Line> m_raw;
    QList<Line> m_lines;
    bool m_truncated = false;
    int m_from = 0;
    int m_to = 0;

public:
    struct Value {
        FieldId field;
        QString value;
    };
    QList<Value> m_values;
};

} // namespace zf::enhanced
