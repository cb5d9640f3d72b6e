#include "analyser.h"

#include "cleanup.h"
#include "failure.h"
#include "fields.h"
#include "messages.h"
#include "textutil.h"

#include <QStringList>

#include <iterator>
#include <new>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

// Keywords are compared against an upper-cased copy of the line, so they are upper-cased
// once, here, with the same per-character rule.
QStringList upperList(std::initializer_list<QString> words)
{
    QStringList out;
    for (const QString& w : words)
        out.append(UpperEach(w));
    return out;
}

// The working text of one line and its upper-cased twin, for the case-insensitive tests.
struct Probe {
    QString text;
    QString upper;
    Probe(QString t, QString u) : text(std::move(t)), upper(std::move(u)) {}
    explicit Probe(const QString& t) : text(t), upper(UpperEach(t)) {}
    // The same line with a blank at both ends, from what is already upper-cased.
    Probe padded() const { return Probe(u' ' + text + u' ', u' ' + upper + u' '); }

    bool contains(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (ContainsExact(upper, w))
                return true;
        return false;
    }
    bool startsWith(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (upper.startsWith(w))
                return true;
        return false;
    }
    bool endsWith(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (upper.endsWith(w))
                return true;
        return false;
    }
};

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

clsZeile makeRecord(const QString& text)
{
    clsZeile z;
    z.Text = text;
    return z;
}

} // namespace

namespace stage {

std::optional<QString> ChooseSeparator(const QString& text, SharedState& state, const Seams& seams)
{
    if (!state.ChosenSeparator.isEmpty())
        return state.ChosenSeparator;
    static const QStringList candidates{u"\r\n"_s, u"\n"_s, u"\t"_s, u";"_s, u"#"_s};
    for (const QString& c : candidates)
        if (text.contains(c))
            return c;
    if (seams.showMessage)
        seams.showMessage(msg::NoSeparator, MessageStyle::Exclamation);
    state.ChosenSeparator = seams.chooseSeparator ? seams.chooseSeparator() : QString();
    if (state.ChosenSeparator.isEmpty())
        return std::nullopt;
    return state.ChosenSeparator;
}

void BuildLineList(const QString& text, const QString& separator, LineList& lines,
                   QString& clipText)
{
    static const QString headStart = u"Details der "_s;
    static const QString headEnd = u" schließen"_s;

    QString whole = text;
    whole.replace(u"\r\n"_s, separator);
    whole.append(separator);
    const QStringList pieces = whole.split(separator, Qt::KeepEmptyParts);

    // The last piece is the empty rest behind the appended separator.
    for (qsizetype p = 0; p + 1 < pieces.size(); ++p) {
        QString line = Trim(CollapseBlanks(pieces[p]));
        if (line.isEmpty())
            continue;

        if (line.startsWith(headStart) && line.endsWith(headEnd)) {
            // The markers may share their blank ("Details der schließen"): no name then.
            const qsizetype nameLength = line.size() - headStart.size() - headEnd.size();
            const QString company = StripControlChars(
                QStringView(line).mid(headStart.size(), qMax<qsizetype>(0, nameLength)));
            if (!company.isEmpty())
                for (clsZeile& z : lines)
                    z.Text = Trim(z.Text.remove(company));
            clsZeile head = makeRecord(company);
            head.Firma = 20;
            lines.push_front(std::move(head));
            continue;
        }

        if (line.startsWith(u'>')) // quoted mail: drop every quote mark
            line = Trim(line.remove(u'>'));
        line = StripControlChars(line);
        clipText.append(line);
        clipText.append(u"\r\n"_s);
        lines.push_back(makeRecord(line));
    }
}

void TakeExtraDefinitionLines(LineList& lines, SharedState& state)
{
    state.ExtraFieldValues.clear();
    for (const clsZusatzDefs& def : state.ExtraDefinitions) {
        for (auto it = lines.begin(); it != lines.end(); ++it) {
            if (!it->Text.startsWith(def.Wert))
                continue;
            state.ExtraFieldValues.append(
                clsZusatzDefs{def.ID, Trim(QStringView(it->Text).mid(def.Wert.size()))});
            lines.erase(it);
            break;
        }
    }
}

void RecogniseCountryPostcodes(LineList& lines)
{
    struct Country {
        QString spacedPrefix;
        qsizetype normalisedChars; // characters whose blanks are removed
        QString letters;
        qint16 digits;
        QString name;
    };
    static const Country countries[] = {
        {u"D -"_s, 4, u"D"_s, 5, u"Deutschland"_s},
        {u"CH -"_s, 5, u"CH"_s, 4, u"Schweiz"_s},
        {u"A -"_s, 4, u"A"_s, 4, u"Österreich"_s},
    };

    for (const Country& c : countries) {
        const std::size_t count = lines.size();
        qint16 pos = 0;
        for (auto it = lines.begin(); std::size_t(pos) < count; ++it) {
            addChecked(pos, 1);
            // Only a line with the spaced prefix needs a normalised copy.
            QString copy = it->Text;
            if (copy.startsWith(c.spacedPrefix))
                copy = copy.left(c.normalisedChars).remove(u' ') + copy.mid(c.normalisedChars);
            // Upper-casing and trimming the copy matter only for its first letters, and
            // digits are the same in either case.
            QStringView trimmed(copy);
            while (!trimmed.isEmpty() && trimmed.front() == u' ')
                trimmed = trimmed.mid(1);
            if (!StartsWith(trimmed, c.letters) || CountDigits(trimmed.left(7)) != c.digits)
                continue;

            qsizetype firstDigit = 0;
            while (firstDigit < copy.size() &&
                   !(copy[firstDigit] >= u'0' && copy[firstDigit] <= u'9'))
                ++firstDigit;
            it->Text = copy.mid(firstDigit);
            clsZeile country = makeRecord(c.name);
            country.Land = 10;
            lines.insert(std::next(it), std::move(country));
            break;
        }
    }
}

void ScoreLabelsAndPosition(clsZeile& z, int pos)
{
    struct LabelGroup {
        QStringList labels;
        std::initializer_list<std::pair<qint16 clsZeile::*, int>> points;
    };
    static const LabelGroup groups[] = {
        {{u"Firma:"_s, u"Company:"_s}, {{&clsZeile::Firma, 15}}},
        {{u"Name:"_s}, {{&clsZeile::NachName, 10}, {&clsZeile::Kontakt, 5}}},
        {{u"Nachname:"_s, u"Surname:"_s, u"lastname:"_s}, {{&clsZeile::NachName, 10}}},
        {{u"Kontakt:"_s, u"Contact:"_s}, {{&clsZeile::Kontakt, 15}}},
        {{u"Vorname:"_s, u"Firstname:"_s}, {{&clsZeile::Vorname, 15}}},
        {{u"Strasse:"_s, u"Straße:"_s, u"Adresse:"_s, u"address:"_s}, {{&clsZeile::Adresse, 15}}},
        {{u"PLZ:"_s, u"Postleitzahl:"_s, u"ZIP:"_s, u"ZIP-Code:"_s, u"ZIPCode:"_s},
         {{&clsZeile::PLZ, 15}}},
        {{u"PLZ/Ort:"_s}, {{&clsZeile::PLZ, 5}, {&clsZeile::Ort, 5}}},
        {{u"Stadt:"_s, u"Ort:"_s, u"City:"_s}, {{&clsZeile::Ort, 15}}},
        {{u"Land:"_s, u"Country:"_s}, {{&clsZeile::Land, 15}}},
        {{u"Titel:"_s}, {{&clsZeile::Titel, 15}}},
        {{u"Anrede:"_s}, {{&clsZeile::Anrede, 15}}},
        {{u"Inhaber:"_s}, {{&clsZeile::Kontakt, 15}}},
    };

    QString w = z.Text;
    for (const LabelGroup& g : groups) {
        bool hit = false;
        for (const QString& label : g.labels)
            hit = hit || StartsWith(w, label);
        if (!hit)
            continue;
        w = w.mid(w.indexOf(u':') + 1);
        for (const auto& [member, points] : g.points)
            addChecked(z.*member, points);
    }
    w = Trim(w);
    z.Text = w;

    if (pos == 1) {
        addChecked(z.Firma, 3);
        addChecked(z.Kontakt, 3);
    } else if (pos == 2) {
        addChecked(z.Firma, 3);
        addChecked(z.Kontakt, 4);
    }
    if (pos >= 3 && pos <= 5)
        addChecked(z.Adresse, 3);
    if (pos == 4 || pos == 5) {
        addChecked(z.Ort, 2);
        addChecked(z.PLZ, 1);
    }

    // Words: pieces between single blanks; empty pieces between two blanks count too.
    if (!w.isEmpty()) {
        const qsizetype pieces = w.count(u' ') + 1;
        if (pieces == 2) {
            addChecked(z.Kontakt, 2);
        } else if (pieces >= 3) {
            addChecked(z.Kontakt, 1);
            addChecked(z.Firma, 2);
        }
    }

    // Two ASCII capitals in a row look like an acronym or a legal form: a company hint.
    const auto isAsciiCapital = [](QChar c) { return c >= u'A' && c <= u'Z'; };
    for (qsizetype k = 1; k < w.size(); ++k)
        if (isAsciiCapital(w[k]) && isAsciiCapital(w[k - 1])) {
            addChecked(z.Firma, 3);
            break;
        }
}

void ScoreKeywords(LineList& lines, LineList::iterator cur, int pos, PassFlags& flags)
{
    static const QStringList companySigns = upperList({u"*"_s, u"!"_s, u"+"_s, u"?"_s, u"&"_s});
    static const QStringList legalForms =
        upperList({u" gmbh "_s, u" ohg "_s, u" ag "_s, u" firma "_s});
    static const QStringList countryWords =
        upperList({u"deutschland"_s, u"germany"_s, u"Österreich"_s, u"oesterreich"_s, u"Schweiz"_s,
                   u"USA"_s});
    static const QStringList land = upperList({u"land"_s});
    static const QStringList salutations = upperList({u"Herr"_s, u"Frau"_s});
    static const QStringList titles = upperList(
        {u"Doktor"_s, u"Professor"_s, u"Dipl.Ing."_s, u"Dipl. Ing."_s, u"Dr."_s, u"Prof."_s});
    static const QStringList closingTitles = upperList(
        {u"Dr."_s, u"Prof."_s, u"Dipl.Ing."_s, u"Dipl. Ing."_s, u"Doktor"_s, u"Professor"_s});
    static const QStringList streetWords = upperList(
        {u"Strasse"_s, u"Straße"_s, u"weg"_s, u"allee"_s, u"platz"_s, u"gasse"_s, u"str."_s});
    static const QStringList placePrepositions =
        upperList({u"In "_s, u"Im "_s, u"Am "_s, u"An "_s});
    static const QStringList placeWords = upperList({u"garten"_s, u"park"_s, u"platz"_s});
    static const QStringList poBox = upperList({u"postfach"_s});
    static const QStringList phoneLabels = upperList({u"Telefon"_s, u"Phone"_s, u"Tel"_s});
    static const QStringList faxLabels = upperList({u"Fax"_s, u"Telefax"_s});
    static const QStringList mobileLabels = upperList({u"Mobil"_s, u"Handy"_s});
    static const QStringList webMarks = upperList({u"www"_s, u"http://"_s});
    static const QStringList at = upperList({u"@"_s});
    static const QStringList domainEndings =
        upperList({u".biz"_s, u".com"_s, u".de"_s, u".net"_s, u".at"_s, u".eu"_s, u".org"_s});

    clsZeile& z = *cur;
    const Probe w(z.Text);
    const qsizetype n = qsizetype(lines.size());
    const qint16 d = CountDigits(w.text);

    if (d > 0) // rule 1
        addChecked(z.Firma, 1);
    if (w.upper.contains(u'-')) // rule 2
        addChecked(z.Firma, 1);
    if (pos > 3) { // rule 3: behind a short number (a split-off postcode) comes the city
        const QString& p = std::prev(cur)->Text;
        if (p.size() < 6 && CountDigits(p) > 3 && d <= 5)
            addChecked(z.Ort, 10);
    }
    if (pos < n) { // rule 4: the same in front of one
        const QString& q = std::next(cur)->Text;
        if (q.size() < 6 && CountDigits(q) > 3 && d <= 5)
            addChecked(z.Ort, 10);
    }
    const Probe padded = w.padded();
    if (w.contains(companySigns) || padded.contains(legalForms)) { // rule 5
        addChecked(z.Firma, 3);
        if (pos == 2)
            addChecked(lines.front().Kontakt, 1);
        if (pos == 1 && n > 1)
            addChecked(std::next(lines.begin())->Kontakt, 1);
    }
    if (w.contains(countryWords)) // rule 6
        addChecked(z.Land, 6);
    if (w.contains(land) && pos > 3) // rule 7
        addChecked(z.Land, 3);
    if (w.contains(salutations)) { // rule 8
        addChecked(z.Anrede, 10);
        if (w.text.size() > 4 && !w.endsWith(closingTitles)) {
            addChecked(z.Kontakt, 11); // salutation and name on one line
        } else {
            if (pos + 1 <= n)
                addChecked(std::next(cur)->Kontakt, 10);
            addChecked(z.Anrede, 3);
        }
    }
    if (w.contains(titles)) { // rule 9
        addChecked(z.Kontakt, 4);
        addChecked(z.Titel, 3);
    }
    if (w.contains(streetWords)) // rule 10
        addChecked(z.Adresse, 10);
    if (w.startsWith(placePrepositions) && w.contains(placeWords)) // rule 11
        addChecked(z.Adresse, 5);
    if (w.contains(poBox)) // rule 12
        addChecked(z.Postfach, 10);
    if (w.startsWith(phoneLabels)) { // rule 13
        addChecked(z.Telefon, 10);
        flags.phoneLabel = true;
    }
    if (w.startsWith(faxLabels)) { // rule 14
        addChecked(z.Fax, 10);
        flags.faxLabel = true;
    }
    if (w.startsWith(mobileLabels)) // rule 15
        addChecked(z.Mobil, 10);
    if (w.contains(webMarks)) { // rule 16
        addChecked(z.Website, 10);
        addChecked(z.EMail, 2);
        addChecked(z.Firma, 1);
    }
    if (w.contains(at)) { // rule 17
        addChecked(z.EMail, 10);
        addChecked(z.Firma, 2);
    }
    if (w.endsWith(domainEndings)) { // rule 18
        addChecked(z.EMail, 7);
        addChecked(z.Website, 7);
    }
    if (d > 5) { // rule 19: a long number; a label seen earlier makes the other kinds likelier
        addChecked(z.Telefon, flags.phoneLabel ? 3 : 5);
        addChecked(z.Fax, flags.faxLabel ? 3 : 5);
        addChecked(z.Telefon, flags.phoneLabel ? 3 : 5);
        addChecked(z.Fax, 5);
        addChecked(z.Mobil, 5);
        addChecked(z.Postfach, 3);
    }
    if (d >= 1 && d <= 5) { // rule 20
        if (d <= 3)
            addChecked(z.Adresse, 1);
        addChecked(z.Adresse, 3);
        addChecked(z.Postfach, 3);
        if (d == 4)
            addChecked(z.PLZ, 2);
        addChecked(z.PLZ, 3);
        addChecked(z.Firma, 2);
        addChecked(z.EMail, 1);
    }
    if (w.text.size() >= 4 && d <= 6) { // rule 21: split a leading postcode from its city
        for (const qsizetype len : {5, 4}) {
            if (CountDigits(Left(w.text, len)) != len)
                continue;
            addChecked(z.PLZ, 8);
            if (w.text.size() > len) {
                clsZeile city = makeRecord(Trim(Mid(w.text, len + 1)));
                city.Ort = 11;
                lines.insert(std::next(cur), std::move(city));
                z.Text = Left(w.text, len);
            }
            break;
        }
    }
}

void ScoreLines(LineList& lines)
{
    PassFlags flags;
    qint16 pos = 0;
    // Records inserted behind the current one are visited in their turn.
    for (auto it = lines.begin(); it != lines.end(); ++it) {
        addChecked(pos, 1);
        ScoreLabelsAndPosition(*it, pos);
        ScoreKeywords(lines, it, pos, flags);
    }
}

void AssembleRows(LineList& lines, FieldRows& rows, const SharedState& state)
{
    // A tie between company and contact on the first two lines goes against the other line.
    if (lines.size() >= 2) {
        clsZeile& first = lines.front();
        clsZeile& second = *std::next(lines.begin());
        if (first.Firma == first.Kontakt)
            addChecked(second.Firma > second.Kontakt ? first.Kontakt : first.Firma, 1);
        if (second.Firma == second.Kontakt)
            addChecked(first.Firma > first.Kontakt ? second.Kontakt : second.Firma, 1);
    }

    enum Kind { Fixed, PoBox, Address, Phone, Postcode, Country };
    struct Choice {
        qint16 clsZeile::*score;
        Kind kind;
        FieldId id;
        QString (*clean)(QStringView);
    };
    static const Choice order[] = {
        {&clsZeile::Firma, Fixed, FieldId::Firma, nullptr},
        {&clsZeile::Anrede, Fixed, FieldId::Anrede, nullptr},
        {&clsZeile::Kontakt, Fixed, FieldId::Kontakt, nullptr},
        {&clsZeile::Postfach, PoBox, {}, nullptr},
        {&clsZeile::Adresse, Address, {}, nullptr},
        {&clsZeile::PLZ, Postcode, FieldId::Plz, nullptr},
        {&clsZeile::Ort, Fixed, FieldId::Ort, nullptr},
        {&clsZeile::Land, Country, FieldId::Land, nullptr},
        {&clsZeile::Telefon, Phone, {}, &CleanPhoneNumber},
        {&clsZeile::Fax, Fixed, FieldId::Fax, &CleanPhoneNumber},
        {&clsZeile::Mobil, Fixed, FieldId::Mobil, &CleanPhoneNumber},
        {&clsZeile::EMail, Fixed, FieldId::EMail, &ExtractEMailAddress},
        {&clsZeile::Website, Fixed, FieldId::Website, &ExtractWebAddress},
        {&clsZeile::NachName, Fixed, FieldId::Nachname, nullptr},
        {&clsZeile::Vorname, Fixed, FieldId::Vorname, nullptr},
        {&clsZeile::Titel, Fixed, FieldId::Titel, nullptr},
    };
    static const FieldId addressIds[] = {FieldId::Adresse, FieldId::Adresse2, FieldId::Adresse3};
    static const FieldId phoneIds[] = {FieldId::Telefon, FieldId::Telefon2, FieldId::Telefon3};

    int addressesWritten = 0;
    int phonesWritten = 0;
    bool countryMissing = true;
    qsizetype postcodeLength = 0;
    const qsizetype n = qsizetype(lines.size());

    // Writes the value and takes the next of up to three ids, or leaves the field unchosen.
    const auto writeNumbered = [&rows](int row, const QString& value, const FieldId(&ids)[3],
                                       int& written) {
        rows.setValue(row, value);
        if (written < 3)
            rows.SelectRowField(row, ids[written++]);
        else
            rows.setSelected(row, -1);
    };

    int row = 0;
    for (const clsZeile& z : lines) {
        if (row >= FieldRows::RowCount)
            break;
        const Choice* best = nullptr;
        int bestScore = -1;
        for (const Choice& c : order)
            if (z.*c.score > bestScore) {
                bestScore = z.*c.score;
                best = &c;
            }

        const QString value = best->clean ? best->clean(z.Text) : z.Text;
        switch (best->kind) {
        case Fixed:
            rows.setValue(row, value);
            rows.SelectRowField(row, best->id);
            break;
        case PoBox:
            break;
        case Address:
            writeNumbered(row, value, addressIds, addressesWritten);
            break;
        case Phone:
            writeNumbered(row, value, phoneIds, phonesWritten);
            break;
        case Postcode:
            postcodeLength = value.size();
            rows.setValue(row, value);
            rows.SelectRowField(row, best->id);
            break;
        case Country: {
            countryMissing = false;
            QString country = replaceGermany(value);
            if (Trim(country).isEmpty())
                country = state.StandardLand5PLZ;
            rows.setValue(row, country);
            rows.SelectRowField(row, best->id);
            break;
        }
        }
        ++row;
    }

    if (countryMissing && n < FieldRows::RowCount) {
        const int free = int(n);
        rows.setValue(free, postcodeLength == 4 ? state.StandardLand4PLZ : state.StandardLand5PLZ);
        rows.SelectRowField(free, FieldId::Land);
    }
}

} // namespace stage

AnalysisResult AnalyseText(const QString& text, Session& session, const Seams& seams)
{
    AnalysisResult result;
    try {
        session.rows.clearRows();
        const std::optional<QString> separator = stage::ChooseSeparator(text, session.state, seams);
        if (!separator)
            return result;
        stage::BuildLineList(text, *separator, result.lines, session.clipText);
        if (session.state.ExtraDefinitionsLoaded)
            stage::TakeExtraDefinitionLines(result.lines, session.state);
        stage::RecogniseCountryPostcodes(result.lines);
        stage::ScoreLines(result.lines);
        stage::AssembleRows(result.lines, session.rows, session.state);
    } catch (const AnalysisFailure&) {
        result.completed = false;
    } catch (const std::bad_alloc&) {
        result.completed = false;
    }
    return result;
}

QString PrepareClipboardText(const QString& clipboard)
{
    QString copy = clipboard;
    return copy.replace(u" . \r\n"_s, u"\r\n"_s);
}

std::optional<AnalysisResult> FetchClipboardText(const QString& clipboard, Session& session,
                                                 const Seams& seams, bool silent)
{
    session.clipText.clear();
    session.state.ClipboardText = clipboard;
    const QString prepared = PrepareClipboardText(clipboard);
    if (Trim(prepared).isEmpty()) {
        if (!silent && seams.showMessage)
            seams.showMessage(msg::ClipboardEmpty, MessageStyle::Information);
        return std::nullopt;
    }
    return AnalyseText(prepared, session, seams);
}

} // namespace zf
