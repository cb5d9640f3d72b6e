#include "knowledge.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

// The entries of one data file: comment and empty lines dropped, blanks trimmed.
QStringList entries(const QString& name)
{
    QFile file(u":/enhanced/"_s + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("enhanced analysis: data file %s is missing", qPrintable(name));
    QStringList out;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (!line.isEmpty() && !line.startsWith(u'#'))
            out.append(line);
    }
    return out;
}

WordList wordList(const QString& name)
{
    WordList list;
    for (const QString& e : entries(name)) {
        if (e.startsWith(u'-'))
            list.endings.append(e.mid(1).toLower());
        else if (!e.startsWith(u'<'))
            list.words.insert(e.toLower());
    }
    return list;
}

LabelKind labelKind(const QString& name)
{
    static const QHash<QString, LabelKind> kinds{
        {u"phone"_s, LabelKind::Phone},
        {u"email"_s, LabelKind::Email},
        {u"web"_s, LabelKind::Web},
        {u"company"_s, LabelKind::Company},
        {u"name"_s, LabelKind::Name},
        {u"firstname"_s, LabelKind::FirstName},
        {u"lastname"_s, LabelKind::LastName},
        {u"contact"_s, LabelKind::Contact},
        {u"role"_s, LabelKind::Role},
        {u"salutation"_s, LabelKind::Salutation},
        {u"title"_s, LabelKind::Title},
        {u"department"_s, LabelKind::Department},
        {u"street"_s, LabelKind::Street},
        {u"address2"_s, LabelKind::Address2},
        {u"postcode"_s, LabelKind::Postcode},
        {u"city"_s, LabelKind::City},
        {u"postcodecity"_s, LabelKind::PostcodeCity},
        {u"country"_s, LabelKind::Country},
        {u"job"_s, LabelKind::Job},
        {u"skipblock"_s, LabelKind::SkipBlock},
        {u"skipline"_s, LabelKind::SkipLine},
    };
    const auto it = kinds.constFind(name);
    if (it == kinds.cend())
        qFatal("enhanced analysis: unknown label kind %s", qPrintable(name));
    return *it;
}

Knowledge load()
{
    Knowledge k;
    for (const QString& e : entries(u"given_names.txt"_s))
        k.givenNames.insert(e.toLower());
    for (const QString& e : entries(u"salutations.txt"_s)) {
        const QStringList p = e.split(u'|');
        k.salutations.insert(p[0], Salutation{p.value(1), p.value(2) == u"addressee"_s});
    }
    for (const QString& e : entries(u"degrees.txt"_s)) {
        if (e.startsWith(u'>')) {
            k.postNominals.insert(e.mid(1));
            k.postNominals.insert(e.mid(1).toUpper());
            continue;
        }
        if (e.startsWith(u'+'))
            k.degreeFollows.insert(e.mid(1));
        else
            k.degrees.insert(e);
        k.degreesUpper.insert(e.mid(e.startsWith(u'+') ? 1 : 0).toUpper());
    }
    for (const QString& e : entries(u"legal_forms.txt"_s)) {
        k.legalForms.insert(e);
        k.legalFormsUpper.insert(e.toUpper());
    }
    k.companyWords = wordList(u"company_words.txt"_s);
    k.departmentWords = wordList(u"department_words.txt"_s);
    k.jobWords = wordList(u"job_words.txt"_s);
    k.streetWords = wordList(u"street_words.txt"_s);
    for (const QString& e : entries(u"street_words.txt"_s))
        if (e.startsWith(u'<'))
            k.streetLeadWords.insert(e.mid(1).toLower());
    for (const QString& e : entries(u"noise_words.txt"_s)) {
        if (e.contains(u' '))
            k.noisePhrases.append(e);
        else
            k.noiseWords.insert(e);
    }
    for (const QString& e : entries(u"place_hints.txt"_s)) {
        const qsizetype bar = e.indexOf(u'|');
        k.placeHints.insert(e.left(bar), e.mid(bar + 1));
    }
    for (const QString& e : entries(u"greetings.txt"_s)) {
        const qsizetype colon = e.indexOf(u':');
        const QString kind = e.left(colon);
        const QString text = e.mid(colon + 1);
        if (kind == u"close"_s)
            k.closings.insert(text);
        else if (kind == u"stem"_s)
            k.closingStems.append(text);
        else if (kind == u"open"_s)
            k.openings.append(text);
        else if (kind == u"sign"_s)
            k.signWords.append(text);
    }
    for (const QString& e : entries(u"labels.txt"_s)) {
        const QStringList p = e.split(u'|');
        const Label label{labelKind(p.value(1)), p.value(2)};
        if (p[0].endsWith(u'*'))
            k.labelPrefixes.append({p[0].chopped(1), label});
        k.labels.insert(p[0].endsWith(u'*') ? p[0].chopped(1) : p[0], label);
    }
    // A longer prefix is the more specific one.
    std::stable_sort(k.labelPrefixes.begin(), k.labelPrefixes.end(),
                     [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
    for (const QString& e : entries(u"countries.txt"_s)) {
        const QStringList p = e.split(u'|');
        k.countries.insert(p[0], p.value(1));
    }
    for (const QString& e : entries(u"postal.txt"_s)) {
        const qsizetype colon = e.indexOf(u':');
        const QString kind = e.left(colon);
        const QStringList p = e.mid(colon + 1).split(u'|');
        if (kind == u"prefix"_s)
            k.postalPrefixes.insert(p[0], PostalPrefix{p.value(1), p.value(2).toInt()});
        else if (kind == u"dial"_s)
            k.dialCodes.append(
                DialCode{p[0], p.value(1), p.value(2).split(u',', Qt::SkipEmptyParts)});
        else if (kind == u"tld"_s)
            k.topLevelDomains.insert(p[0], p.value(1));
        else if (kind == u"format"_s)
            k.postalFormats.append({p[0], p.mid(1).join(u'|')});
    }
    std::stable_sort(
        k.dialCodes.begin(), k.dialCodes.end(),
        [](const DialCode& a, const DialCode& b) { return a.code.size() > b.code.size(); });
    for (const QString& e : entries(u"us_states.txt"_s))
        for (const QString& s : e.split(u' ', Qt::SkipEmptyParts))
            k.usStates.insert(s);
    for (const QSet<QString>* set : {&k.companyWords.words, &k.jobWords.words, &k.streetWords.words,
                                     &k.departmentWords.words, &k.noiseWords})
        k.notNameWords.unite(*set);
    for (auto it = k.countries.cbegin(); it != k.countries.cend(); ++it)
        k.notNameWords.insert(it.key());
    for (auto it = k.salutations.cbegin(); it != k.salutations.cend(); ++it)
        k.notNameWords.insert(it.key());
    return k;
}

} // namespace

bool WordList::has(QStringView lowerWord) const
{
    // A look-up key over the view's characters, without a copy.
    if (words.contains(QString::fromRawData(lowerWord.data(), lowerWord.size())))
        return true;
    for (const QString& e : endings)
        if (lowerWord.size() > e.size() && (e.isEmpty() || lowerWord.back() == e.back()) &&
            lowerWord.endsWith(e))
            return true;
    return false;
}

const Label* Knowledge::label(const QString& lowerLabel) const
{
    const auto it = labels.constFind(lowerLabel);
    if (it != labels.cend())
        return &*it;
    // The first letter rules out nearly every prefix without a call.
    for (const auto& [prefix, label] : labelPrefixes)
        if (prefix.isEmpty() || (!lowerLabel.isEmpty() && lowerLabel.front() == prefix.front() &&
                                 lowerLabel.startsWith(prefix)))
            return &label;
    return nullptr;
}

const Knowledge& knowledge()
{
    static const Knowledge k = load();
    return k;
}

} // namespace zf::enhanced
