#include "engine.h"
#include "wordbits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

int Analysis::nextInBlock(int i) const
{
    for (int j = i + 1; j < m_to; ++j) {
        if (m_lines[j].kind == Kind::Blank)
            return -1;
        if (!m_lines[j].skipped)
            return j;
    }
    return -1;
}

int Analysis::prevInBlock(int i) const
{
    for (int j = i - 1; j >= m_from; --j) {
        if (m_lines[j].kind == Kind::Blank)
            return -1;
        if (!m_lines[j].skipped)
            return j;
    }
    return -1;
}

bool Analysis::hasContactData(int from, int to) const
{
    for (int i = from; i < to; ++i) {
        const Kind k = m_lines[i].kind;
        if (!m_lines[i].skipped &&
            (k == Kind::Email || k == Kind::Phone || k == Kind::PostcodeCity ||
             (k == Kind::Street && m_lines[i].strength >= 2)))
            return true;
    }
    return false;
}

void Analysis::context()
{
    const int n = int(m_lines.size());
    // Delivery and former addresses: their block is not the contact's.
    for (int i = 0; i < n; ++i) {
        Line& l = m_lines[i];
        if (!(l.labelled && l.labelKind == LabelKind::SkipBlock))
            continue;
        l.skipped = true;
        if (!l.value.isEmpty())
            continue; // "Alte Anschrift: Weg 2, 12345 Ort" ends on its own line
        for (int j = i + 1; j < n && m_lines[j].kind != Kind::Blank; ++j) {
            m_lines[j].skipped = true;
            m_lines[j].skipWhy = u"gehört zu \"%1\""_s.arg(l.text);
        }
    }

    // Mails: the topmost message that carries contact data. A second "Details der"
    // heading starts another contact.
    QList<int> starts{0};
    bool heading = false;
    for (int i = 0; i < n; ++i) {
        if (m_lines[i].kind == Kind::Cut ||
            (m_lines[i].kind == Kind::Heading && std::exchange(heading, true)))
            starts.append(i);
    }
    starts.append(n);
    m_from = 0;
    m_to = starts.size() > 1 ? starts[1] : n;
    for (qsizetype r = 0; r + 1 < starts.size(); ++r)
        if (hasContactData(starts[r], starts[r + 1])) {
            m_from = starts[r];
            m_to = starts[r + 1];
            break;
        }
    for (int i = 0; i < n; ++i)
        if (i < m_from || i >= m_to) {
            m_lines[i].skipped = true;
            if (m_lines[i].skipWhy.isEmpty())
                m_lines[i].skipWhy = u"andere Nachricht oder anderer Kontakt"_s;
        }

    // A letter's recipient block ("Herrn", "z. Hd.", "Firma" on a line of its own) is not
    // the sender, as long as the sender's address is in the text too.
    {
        // A lone "Frau" opens the recipient's block only under the sender's own address line.
        const auto senderAbove = [this](int start) {
            for (int i = m_from; i < start; ++i)
                if (!m_lines[i].skipped && m_lines[i].kind == Kind::PostcodeCity)
                    return true;
            return false;
        };
        QList<int> recipientBlocks;
        int blockStart = m_from;
        for (int i = m_from; i <= m_to; ++i) {
            if (i < m_to && m_lines[i].kind != Kind::Blank)
                continue;
            bool recipient = false;
            for (int j = blockStart; j < i; ++j) {
                const Line& l = m_lines[j];
                const LowerKey lowerKey(l.text);
                const QString& lower = lowerKey.str();
                if (l.person.addressee || lower.startsWith(u"z. hd"_s) ||
                    lower.startsWith(u"z.hd"_s) || lower.startsWith(u"zu händen"_s) ||
                    lower.startsWith(u"attn"_s) ||
                    (j == blockStart &&
                     ((lower == u"firma"_s && l.kind != Kind::LabelOnly) || lower == u"an"_s ||
                      lower == u"an die"_s || lower == u"an den"_s || lower == u"an das"_s)) ||
                    (j == blockStart && l.kind == Kind::Salutation && !l.labelled &&
                     senderAbove(blockStart)))
                    recipient = true;
                // "Madame Hélène Garnier" over her own address, under the letterhead's.
                if (j == blockStart && l.kind == Kind::Person && !l.labelled &&
                    !l.person.anrede.isEmpty() && senderAbove(blockStart))
                    for (int k = j + 1; k < i && !recipient; ++k)
                        recipient = m_lines[k].kind == Kind::PostcodeCity;
            }
            if (recipient)
                recipientBlocks.append(blockStart);
            blockStart = i + 1;
        }
        const auto isAddress = [this](int i) {
            return !m_lines[i].skipped &&
                   (m_lines[i].kind == Kind::PostcodeCity ||
                    (m_lines[i].kind == Kind::Street && m_lines[i].strength >= 2));
        };
        int addresses = 0;
        for (int i = m_from; i < m_to; ++i)
            addresses += isAddress(i);
        for (int start : recipientBlocks) {
            int end = start;
            int own = 0;
            for (; end < m_to && m_lines[end].kind != Kind::Blank; ++end)
                own += isAddress(end);
            if (addresses - own <= 0)
                continue; // no sender's address: the recipient is the contact
            addresses -= own;
            for (int i = start; i < end; ++i) {
                m_lines[i].skipped = true;
                m_lines[i].skipWhy = u"Empfänger eines Briefs"_s;
            }
        }
    }

    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped)
            continue;
        const int next = nextInBlock(i);
        // A US form's "City: Portland" over "State: ME" files "Portland, ME".
        if (l.kind == Kind::Noise && l.labelled && l.labelKind == LabelKind::City) {
            const int prev = prevInBlock(i);
            const QString state = l.value.trimmed().toUpper();
            if (prev >= 0 && m_lines[prev].kind == Kind::City && m_lines[prev].labelled &&
                !m_lines[prev].value.isEmpty() && !m_lines[prev].value.contains(u',') &&
                knowledge().usStates.contains(state))
                m_lines[prev].value += u", "_s + state;
            continue;
        }
        // "Herr" / "Dipl.-Kffr." on their own lines, the name behind them.
        if (l.kind == Kind::Salutation || l.kind == Kind::Title) {
            int j = next;
            QString anrede = l.kind == Kind::Salutation ? l.value : QString();
            QString titel = l.kind == Kind::Title ? l.value : QString();
            if (j >= 0 && m_lines[j].kind == Kind::Title && titel.isEmpty()) {
                titel = m_lines[j].value;
                m_lines[j].why += u"; gehört zur Person"_s;
                j = nextInBlock(j);
            }
            if (j < 0)
                continue;
            Line& name = m_lines[j];
            if (name.kind == Kind::Person || name.nameShaped) {
                if (name.person.anrede.isEmpty())
                    name.person.anrede = anrede;
                if (name.person.titel.isEmpty())
                    name.person.titel = titel;
                name.kind = Kind::Person;
                if (name.personSource == PersonSource::None)
                    name.personSource = PersonSource::Marked;
                name.why = u"Name unter Anrede oder Titel"_s;
                continue;
            }
            const int k = nextInBlock(j);
            const auto single = [](const Line& x) {
                return x.kind == Kind::Unknown && WordCount(x.text) == 1 &&
                       CountDigitsIn(x.text) == 0;
            };
            if (k >= 0 && single(name) && single(m_lines[k])) {
                if (auto p = ParsePerson(name.text + u' ' + m_lines[k].text, false)) {
                    p->anrede = anrede;
                    p->titel = titel;
                    name.kind = Kind::Person;
                    name.person = *p;
                    name.personSource = PersonSource::Marked;
                    name.why = u"Vorname; der Nachname folgt in der nächsten Zeile"_s;
                    m_lines[k].kind = Kind::NamePart;
                    m_lines[k].labelKind = LabelKind::LastName;
                    m_lines[k].value = m_lines[k].text;
                    m_lines[k].why = u"Nachname zur Zeile davor"_s;
                    m_lines[k].skipped = true;
                    m_lines[k].skipWhy = u"im Namen der Zeile davor enthalten"_s;
                }
            }
        }
        // A postcode alone, the city on the next line.
        if (l.kind == Kind::Postcode && next >= 0) {
            Line& city = m_lines[next];
            if (city.kind == Kind::City ||
                (city.kind == Kind::Unknown && WordCount(city.text) <= 3 &&
                 CountDigitsIn(city.text) == 0)) {
                l.kind = Kind::PostcodeCity;
                l.place.ort = city.kind == Kind::City ? city.value : city.text;
                l.why += u"; Ort aus der nächsten Zeile"_s;
                city.kind = Kind::City;
                city.skipped = true;
                city.skipWhy = u"Ort zur Postleitzahl davor"_s;
            }
        }
        // UK: town on its own line, county in front of the postcode.
        if (l.kind == Kind::PostcodeCity && l.place.system == u"uk"_s) {
            const int prev = prevInBlock(i);
            if (prev >= 0 && m_lines[prev].kind == Kind::Unknown &&
                CountDigitsIn(m_lines[prev].text) == 0 && WordCount(m_lines[prev].text) <= 3) {
                const int before = prevInBlock(prev);
                if (before >= 0 && m_lines[before].kind == Kind::Street) {
                    l.place.ort = m_lines[prev].text;
                    l.why += u"; Ort aus der Zeile davor, vor der Postleitzahl die Grafschaft"_s;
                    m_lines[prev].kind = Kind::City;
                    m_lines[prev].skipped = true;
                    m_lines[prev].skipWhy = u"Ort zur Postleitzahl danach"_s;
                }
            }
        }
    }

    // A plain "Name 12" is a street when its postcode follows, maybe behind a PO box or
    // building line.
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Street || l.strength != 1)
            continue;
        int next = nextInBlock(i);
        for (int hop = 0;
             hop < 2 && next >= 0 &&
             (m_lines[next].kind == Kind::PoBox || m_lines[next].kind == Kind::Address2);
             ++hop)
            next = nextInBlock(next);
        const bool sameLineNext = i + 1 < m_to && m_lines[i + 1].source == l.source &&
                                  m_lines[i + 1].kind == Kind::PostcodeCity;
        if (sameLineNext || (next >= 0 && (m_lines[next].kind == Kind::PostcodeCity ||
                                           m_lines[next].kind == Kind::Postcode))) {
            l.strength = 2;
            l.why += u"; die Postleitzahl folgt"_s;
        }
    }

    // "Geschäftsführer:" over several names: the ones below the first are further members of
    // the same list, however well marked, not a contact of their own.
    for (int i = m_from; i < m_to; ++i) {
        if (m_lines[i].skipped || m_lines[i].kind != Kind::Person ||
            m_lines[i].personSource != PersonSource::Role)
            continue;
        if (const int label = prevInBlock(i); label < 0 || m_lines[label].kind != Kind::LabelOnly)
            continue; // "Inhaber: Eva Roth" over the firm is no list
        for (int j = nextInBlock(i); j >= 0; j = nextInBlock(j)) {
            Line& c = m_lines[j];
            if (c.labelled)
                break;
            if (c.kind == Kind::Job && c.source == m_lines[j - 1].source)
                continue; // "Thomas Imhof, CFO"
            const bool person =
                c.nameShaped &&
                (c.kind == Kind::Unknown ||
                 (c.kind == Kind::Person && c.personSource == PersonSource::Marked));
            if (!person)
                break;
            c.kind = Kind::Person;
            c.personSource = PersonSource::Role;
            c.why = u"weitere Person der Aufzählung darüber"_s;
            i = j;
        }
    }

    // "Hoffstätter Raumausstattung" over "Inh. Lena Hoffstätter": the owner's firm.
    for (int i = m_from; i < m_to; ++i) {
        const Line& owner = m_lines[i];
        if (owner.skipped || owner.kind != Kind::Person || owner.personSource != PersonSource::Role)
            continue;
        const QString lower = owner.text.left(12).toLower();
        if (!lower.startsWith(u"inh"_s) && !lower.startsWith(u"owner"_s) &&
            !lower.startsWith(u"propriétaire"_s) && !lower.startsWith(u"titolare"_s))
            continue;
        const int prev = prevInBlock(i);
        if (prev < 0)
            continue;
        Line& firm = m_lines[prev];
        if (firm.kind == Kind::Unknown && CountDigitsIn(firm.text) == 0 &&
            Words(firm.text).size() <= 6 && firm.text[0].isUpper()) {
            firm.kind = Kind::Company;
            firm.strength = 1;
            firm.why = u"über dem Inhaber: Firma"_s;
        }
    }

    // People: behind a closing formula, or a name with more evidence.
    QStringList mailLocals;
    QStringList domains;
    for (int i = m_from; i < m_to; ++i) {
        const Line& l = m_lines[i];
        if (l.skipped || (l.kind != Kind::Email && l.kind != Kind::Website))
            continue;
        if (l.kind == Kind::Email && mailLocals.size() < 8)
            mailLocals.append(l.value.section(u'@', 0, 0).toLower());
        if (domains.size() < 8)
            domains.append(l.value.section(u'@', -1).toLower());
    }
    const auto fold = [](const QString& s) {
        QString out;
        for (QChar c : s.toLower()) {
            switch (c.unicode()) {
            case u'ä':
                out += u"ae"_s;
                break;
            case u'ö':
                out += u"oe"_s;
                break;
            case u'ü':
                out += u"ue"_s;
                break;
            case u'ß':
                out += u"ss"_s;
                break;
            default: {
                const QString d = QString(c).normalized(QString::NormalizationForm_D);
                if (!d.isEmpty() && d[0].isLetter())
                    out += d[0];
            }
            }
        }
        return out;
    };
    // The surname in a mail address ("j.tannhaeuser@") speaks for a person; a first word
    // alone does not, firms are named after their owners too.
    const auto inMail = [&](const PersonName& p) {
        const QString last = fold(p.nachname.section(u' ', -1));
        // "ayse.demir-schulte@" for Demir-Schulte: both without their dots and hyphens.
        for (const QString& local : mailLocals)
            if (last.size() >= 3 && (local.contains(last) || fold(local).contains(last)))
                return true;
        return false;
    };
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Closing)
            continue;
        int seen = 0;
        for (int j = i + 1; j < m_to && seen < 4; ++j) {
            Line& c = m_lines[j];
            if (c.kind == Kind::Blank || c.skipped || c.kind == Kind::Closing)
                continue;
            ++seen;
            if ((c.kind == Kind::Unknown || c.kind == Kind::Noise) && WordCount(c.text) == 1)
                continue; // a first name alone ("Florian"), then the full name
            if (c.kind == Kind::Person || c.nameShaped) {
                if (c.person.addressee)
                    break;
                c.kind = Kind::Person;
                c.personSource = PersonSource::Closing;
                c.why = u"Name unter der Grußformel"_s;
            }
            break;
        }
    }
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Unknown || !l.nameShaped)
            continue;
        int evidence = 0;
        QStringList reasons;
        if (l.person.knownGiven) {
            evidence += 2;
            reasons.append(u"bekannter Vorname"_s);
        }
        if (inMail(l.person)) {
            evidence += 2;
            reasons.append(u"Name in der E-Mail-Adresse"_s);
        }
        // An owner's firm carries the surname in its domain ("glaserei-wollny.de").
        const QString surname = fold(l.person.nachname.section(u' ', -1));
        if (surname.size() >= 4 && !l.person.vorname.isEmpty() &&
            std::any_of(domains.cbegin(), domains.cend(),
                        [&surname](const QString& d) { return d.contains(surname); })) {
            evidence += 1;
            reasons.append(u"Nachname in der Domain"_s);
        }
        const int next = nextInBlock(i);
        if (next >= 0 && m_lines[next].kind == Kind::Job) {
            evidence += 1;
            reasons.append(u"Funktion darunter"_s);
        }
        if (evidence >= 2) {
            l.kind = Kind::Person;
            l.personSource = PersonSource::Evidence;
            l.why = u"wie ein Name gebaut: "_s + reasons.join(u", "_s);
        }
    }

    // A firm's name over two lines: "RAMMELSBERG" / "BRÜCKENBAU GMBH",
    // "Ingenieurbüro für Tragwerksplanung" / "Beckenbauer-Sailer".
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Company || l.labelled)
            continue;
        const int prev = prevInBlock(i);
        // "ARCHITEKTURBÜRO" / "FALKENRATH + NIES": a trade word alone over the names.
        if (prev >= 0 && l.strength <= 2 && m_lines[prev].kind == Kind::Unknown &&
            Words(m_lines[prev].text).size() == 1 && CountDigitsIn(m_lines[prev].text) == 0 &&
            knowledge().companyWords.has(Bare(m_lines[prev].text))) {
            Line& p = m_lines[prev];
            l.text = p.text + u' ' + l.text;
            l.strength = 2;
            l.why += u"; mit dem Gewerbe in der Zeile davor ein Name"_s;
            p.skipped = true;
            p.skipWhy = u"Teil des Firmennamens darunter"_s;
            continue;
        }
        if (l.strength == 3 && prev >= 0) {
            Line& p = m_lines[prev];
            const bool letters =
                std::any_of(p.text.cbegin(), p.text.cend(), [](QChar c) { return c.isLetter(); });
            // A heading that is a label ("Kontaktadresse") names no firm.
            if (p.kind == Kind::Unknown && !p.nameShaped && CountDigitsIn(p.text) == 0 && letters &&
                (WordCount(p.text) == 1 || IsAllCaps(p.text)) && WordCount(p.text) <= 5 &&
                !knowledge().label(LowerKey(p.text).str())) {
                l.text = p.text + u' ' + l.text;
                l.why += u"; mit der Zeile davor ein Name"_s;
                p.skipped = true;
                p.skipWhy = u"Teil des Firmennamens darunter"_s;
                continue;
            }
        }
        const int next = nextInBlock(i);
        if (l.strength == 2 && next >= 0) {
            Line& x = m_lines[next];
            if (x.kind == Kind::Unknown && WordCount(x.text) == 1 && CountDigitsIn(x.text) == 0 &&
                x.text[0].isUpper() && !IsKnownGivenName(x.text)) {
                l.text += u' ' + x.text;
                l.why += u"; mit der Zeile darunter ein Name"_s;
                x.skipped = true;
                x.skipWhy = u"Teil des Firmennamens darüber"_s;
            }
        }
    }
}

} // namespace zf::enhanced
