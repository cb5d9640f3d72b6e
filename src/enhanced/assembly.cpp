#include "engine.h"
#include "wordbits.h"

using namespace Qt::StringLiterals;

namespace zf::enhanced {

void Analysis::take(int line, const QString& field)
{
    if (line >= 0)
        m_lines[line].taken.append(field);
}

void Analysis::assemble()
{
    const auto usable = [this](int i) { return !m_lines[i].skipped; };
    const auto add = [this](FieldId f, const QString& v) {
        if (!v.trimmed().isEmpty())
            m_values.append({f, v});
    };
    const auto first = [&](auto pred) {
        for (int i = m_from; i < m_to; ++i)
            if (usable(i) && pred(m_lines[i]))
                return i;
        return -1;
    };
    const auto last = [&](auto pred) {
        for (int i = m_to - 1; i >= m_from; --i)
            if (usable(i) && pred(m_lines[i]))
                return i;
        return -1;
    };

    // The address: the first street, its postcode line, a PO box or building beside it.
    int street = first([](const Line& l) { return l.kind == Kind::Street && l.strength >= 2; });
    // A street with its postcode line beats one standing alone (a letter's subject).
    const auto placeAfter = [&](int s) {
        for (int i = s; i < m_to && i <= s + 4 && m_lines[i].block == m_lines[s].block; ++i)
            if (usable(i) && m_lines[i].kind == Kind::PostcodeCity)
                return true;
        return false;
    };
    if (street >= 0 && !placeAfter(street))
        for (int i = street + 1; i < m_to; ++i)
            if (usable(i) && m_lines[i].kind == Kind::Street && m_lines[i].strength >= 2 &&
                placeAfter(i)) {
                street = i;
                break;
            }
    int place = -1;
    if (street >= 0) {
        for (int i = street; i < m_to && i <= street + 4; ++i)
            if (usable(i) && m_lines[i].kind == Kind::PostcodeCity) {
                place = i;
                break;
            }
    }
    int poBox = first([](const Line& l) { return l.kind == Kind::PoBox; });
    if (place < 0 && street < 0 && poBox >= 0)
        for (int i = poBox; i < m_to && i <= poBox + 3; ++i)
            if (usable(i) && m_lines[i].kind == Kind::PostcodeCity) {
                place = i;
                break;
            }
    if (place < 0)
        place = first([](const Line& l) { return l.kind == Kind::PostcodeCity; });
    int extraLine = -1;
    if (street >= 0) {
        for (int d : {-1, 1, -2, 2}) {
            const int j = street + d;
            if (j >= m_from && j < m_to && usable(j) && m_lines[j].kind == Kind::Address2 &&
                m_lines[j].block == m_lines[street].block) {
                extraLine = j;
                break;
            }
        }
    }
    // "Unit 4, Ballybrit Business Park" over the town and no street: the unit is the address.
    if (street < 0 && poBox < 0 && place >= 0)
        for (int j = place - 1; j >= m_from && j >= place - 2; --j)
            if (usable(j) && m_lines[j].kind == Kind::Address2 && !m_lines[j].labelled &&
                m_lines[j].block == m_lines[place].block && CountDigitsIn(m_lines[j].text) > 0) {
                street = j;
                break;
            }

    // The person: a form's name, the signer under the closing, a marked name, an imprint's
    // first managing director.
    int person = -1;
    for (PersonSource s : {PersonSource::Form, PersonSource::Closing, PersonSource::Marked,
                           PersonSource::Evidence, PersonSource::Role}) {
        person =
            first([s](const Line& l) { return l.kind == Kind::Person && l.personSource == s; });
        // Among an imprint's people the chair comes before the managing directors.
        if (s == PersonSource::Role && person >= 0)
            if (const int chair = first([](const Line& l) {
                    return l.kind == Kind::Person && l.personSource == PersonSource::Role &&
                           IsChairLine(l.text);
                });
                chair >= 0)
                person = chair;
        if (person >= 0)
            break;
    }
    PersonName name = person >= 0 ? m_lines[person].person : PersonName();
    const int firstName = last([](const Line& l) {
        return l.kind == Kind::NamePart && l.labelKind == LabelKind::FirstName;
    });
    const int lastName = last([](const Line& l) {
        return l.kind == Kind::NamePart && l.labelKind == LabelKind::LastName && l.labelled;
    });
    if (firstName >= 0 && (person < 0 || m_lines[person].personSource != PersonSource::Form)) {
        name.vorname = m_lines[firstName].value;
        take(firstName, u"Vorname"_s);
    }
    if (lastName >= 0 && (person < 0 || m_lines[person].personSource != PersonSource::Form)) {
        name.nachname = m_lines[lastName].value;
        take(lastName, u"Nachname"_s);
    }
    if (const int s = last([](const Line& l) { return l.kind == Kind::Salutation && l.labelled; });
        s >= 0) {
        name.anrede = m_lines[s].value;
        take(s, u"Anrede"_s);
    }
    // "Bearbeiterin: Frau Meixner" in a letter's reference line names the signer's salutation.
    if (name.anrede.isEmpty() && person >= 0 && name.nachname.size() >= 2)
        for (int i = m_from; i < m_to && name.anrede.isEmpty(); ++i) {
            const Line& l = m_lines[i];
            if (!usable(i) || i == person ||
                (l.kind != Kind::Unknown && l.kind != Kind::Noise && l.kind != Kind::Person) ||
                !l.text.contains(name.nachname))
                continue;
            const WordViews w = Words(l.text);
            for (qsizetype j = 0; j + 1 < w.size(); ++j) {
                if (chopTrailing(w[j + 1], u",;") != name.nachname)
                    continue;
                const auto it = knowledge().salutations.constFind(BareKey(w[j]).str());
                if (it != knowledge().salutations.cend() && !it->german.isEmpty()) {
                    name.anrede = it->german;
                    break;
                }
            }
        }
    if (const int t = last([](const Line& l) { return l.kind == Kind::Title && l.labelled; });
        t >= 0) {
        name.titel = m_lines[t].value;
        take(t, u"Titel"_s);
    }

    // The firm: a heading, a label, a legal form, a firm word, else the line above the
    // address.
    int company =
        first([](const Line& l) { return l.kind == Kind::Heading && !l.value.isEmpty(); });
    QString companyText = company >= 0 ? m_lines[company].value : QString();
    if (company < 0) {
        for (int s : {4, 3, 2, 1}) {
            company =
                first([s](const Line& l) { return l.kind == Kind::Company && l.strength == s; });
            if (company >= 0)
                break;
        }
        if (company >= 0)
            companyText =
                m_lines[company].labelled ? m_lines[company].value : m_lines[company].text;
        // A logo's second line ("Rechtsanwälte mbB") is the tail of the full name in the
        // sender line or the footer.
        if (company >= 0 && m_lines[company].strength == 3 && !m_lines[company].labelled) {
            const QString tail = u' ' + companyText;
            const int full = first([&tail](const Line& l) {
                return l.kind == Kind::Company && l.strength == 3 && !l.labelled &&
                       l.text.size() > tail.size() && l.text.endsWith(tail) &&
                       WordCount(l.text) <= 8;
            });
            if (full >= 0) {
                company = full;
                companyText = m_lines[full].text;
            }
        }
    }
    int department = last([](const Line& l) { return l.kind == Kind::Department && l.labelled; });
    if (department < 0)
        department = first([](const Line& l) { return l.kind == Kind::Department; });
    if (company < 0) {
        const int anchor = street >= 0 ? street : place;
        for (int i = anchor - 1; anchor >= 0 && i >= m_from && i >= anchor - 4; --i) {
            if (!usable(i))
                continue;
            const Line& l = m_lines[i];
            if (l.kind == Kind::Address2 || l.kind == Kind::Noise || l.kind == Kind::Job ||
                l.kind == Kind::Blank || l.kind == Kind::Department || i == person ||
                IsSloganLine(l.text))
                continue;
            const bool loose =
                l.kind == Kind::Unknown ||
                (l.kind == Kind::Person && l.personSource == PersonSource::Evidence && i != person);
            if (loose && CountDigitsIn(l.text) == 0 && WordCount(l.text) <= 6) {
                company = i;
                companyText = l.text;
                m_lines[i].why += u"; über der Anschrift: Firma"_s;
            }
            break;
        }
    }
    // "Physiotherapie Kerstin Lammers": a one-person business carries its owner's name.
    if (person < 0 && name.kontakt().isEmpty() && company >= 0 &&
        m_lines[company].kind == Kind::Company && m_lines[company].strength == 2 &&
        !m_lines[company].labelled)
        if (const auto owner = OwnerInFirmName(companyText)) {
            name = *owner;
            m_lines[company].why += u"; der Name darin ist der Inhaber"_s;
        }
    if (company < 0 && department >= 0) {
        company = department;
        companyText =
            m_lines[department].labelled ? m_lines[department].value : m_lines[department].text;
        department = -1;
    }

    // The country: named with the address, or a country line, else from the postcode and
    // what the numbers and domains say.
    QString land;
    int countryLine = first([](const Line& l) { return l.kind == Kind::Country; });
    if (place >= 0 && !m_lines[place].place.land.isEmpty())
        land = m_lines[place].place.land;
    else if (countryLine >= 0)
        land = m_lines[countryLine].value;
    else if (place >= 0 || street >= 0 || poBox >= 0) {
        const QString system = place >= 0 ? m_lines[place].place.system : QString();
        QString hinted;
        for (int i = m_from; i < m_to && hinted.isEmpty(); ++i)
            if (usable(i) && m_lines[i].kind == Kind::Phone)
                hinted = CountryOfNumber(m_lines[i].value);
        if (hinted.isEmpty()) {
            for (int i = m_from; i < m_to && hinted.isEmpty(); ++i) {
                if (!usable(i) ||
                    (m_lines[i].kind != Kind::Email && m_lines[i].kind != Kind::Website))
                    continue;
                const QString host = m_lines[i].value.section(u'@', -1).toLower();
                hinted = knowledge().topLevelDomains.value(host.mid(host.lastIndexOf(u'.')));
            }
        }
        // Postcodes of one length are shared: the town, a canton code or the words say whose.
        if (hinted.isEmpty() && (system == u"4"_s || system == u"5"_s)) {
            const QHash<QString, QString>& hints = knowledge().placeHints;
            const QString ort = m_lines[place].place.ort;
            const WordViews townWords = Words(ort);
            hinted = hints.value(u"town:"_s + ort.toLower());
            if (hinted.isEmpty() && townWords.size() >= 2)
                hinted =
                    hints.value(u"canton:"_s + stripTrailing(townWords.back(), u")").remove(u'('));
            for (int i = m_from; i < m_to && hinted.isEmpty(); ++i)
                if (usable(i) && (m_lines[i].kind == Kind::Opening ||
                                  m_lines[i].kind == Kind::Closing || m_lines[i].labelled))
                    for (QStringView w : Words(m_lines[i].text))
                        if (hinted.isEmpty())
                            hinted = hints.value(u"word:"_s + Bare(w));
        }
        static const QSet<QString> fourDigit{u"Österreich"_s, u"Schweiz"_s,   u"Liechtenstein"_s,
                                             u"Belgien"_s,    u"Luxemburg"_s, u"Dänemark"_s,
                                             u"Norwegen"_s,   u"Ungarn"_s};
        static const QSet<QString> fiveDigit{u"Deutschland"_s, u"Frankreich"_s, u"Italien"_s,
                                             u"Spanien"_s,     u"Finnland"_s,   u"Polen"_s};
        if (system == u"4"_s)
            land = fourDigit.contains(hinted) ? hinted : m_state.StandardLand4PLZ;
        else if (system == u"5"_s)
            land = fiveDigit.contains(hinted) ? hinted : m_state.StandardLand5PLZ;
        else if (!system.isEmpty())
            land = m_lines[place].place.land;
    }
    // "110 00 Praha" has the shape of a Swedish postcode too: a country line or the phone
    // numbers tell which.
    if (place >= 0 && m_lines[place].place.shared) {
        if (countryLine >= 0)
            land = m_lines[countryLine].value;
        else
            for (int i = m_from; i < m_to; ++i)
                if (usable(i) && m_lines[i].kind == Kind::Phone &&
                    !CountryOfNumber(m_lines[i].value).isEmpty()) {
                    land = CountryOfNumber(m_lines[i].value);
                    break;
                }
    }

    // Phones: direct line first, then plain, secretariat or hotline, switchboard.
    struct Number {
        int line;
        PhoneRole role;
    };
    QList<Number> voice;
    int fax = -1;
    int mobile = -1;
    QList<int> mobileGuesses;
    for (int i = m_from; i < m_to; ++i) {
        if (!usable(i) || m_lines[i].kind != Kind::Phone)
            continue;
        const Line& l = m_lines[i];
        if (l.phone == PhoneRole::Fax) {
            if (fax < 0)
                fax = i;
        } else if (l.phone == PhoneRole::Mobile) {
            if (mobile < 0)
                mobile = i;
        } else if (l.phone == PhoneRole::Plain &&
                   IsMobileNumber(l.value, land.isEmpty() ? m_state.StandardLand5PLZ : land)) {
            mobileGuesses.append(i);
        } else {
            bool dup = voice.size() >= 8; // three are filed; more only cost time
            for (const Number& v : voice)
                dup = dup || m_lines[v.line].value == l.value;
            if (!dup)
                voice.append({i, l.phone});
        }
    }
    if (mobile < 0 && !mobileGuesses.isEmpty()) {
        mobile = mobileGuesses.takeFirst();
        m_lines[mobile].why += u"; Mobilfunkvorwahl"_s;
    }
    for (int g : mobileGuesses)
        if (voice.size() < 8)
            voice.append({g, PhoneRole::Plain});
    int plain = 0;
    for (const Number& v : voice)
        plain += v.role == PhoneRole::Plain;
    // A switchboard ("…-0") gives way to its own extension, not to another firm's number.
    const auto digitsOf = [this](int line, qsizetype upTo) {
        QString out;
        const QString& value = m_lines[line].value;
        for (qsizetype i = 0; i < upTo && i < value.size(); ++i)
            if (isDigit(value[i]))
                out.append(value[i]);
        return out;
    };
    if (plain >= 2)
        for (Number& v : voice) {
            const QString& value = m_lines[v.line].value;
            if (v.role != PhoneRole::Plain || !value.endsWith(u"-0"_s))
                continue;
            // The end of the stem: "+49 511 …" and "0511 …" write the same line.
            const QString stem = digitsOf(v.line, value.size() - 2).right(6);
            for (const Number& w : voice)
                if (w.line != v.line &&
                    digitsOf(w.line, m_lines[w.line].value.size()).contains(stem)) {
                    v.role = PhoneRole::Main;
                    break;
                }
        }
    const auto rank = [](PhoneRole r) {
        return r == PhoneRole::Direct   ? 0
               : r == PhoneRole::Plain  ? 1
               : r == PhoneRole::Second ? 2
                                        : 3;
    };
    std::stable_sort(voice.begin(), voice.end(), [&rank](const Number& a, const Number& b) {
        return rank(a.role) < rank(b.role);
    });

    int mail = first([](const Line& l) { return l.kind == Kind::Email; });
    // The signer's own address over the letterhead's "info@" or "secretariat@".
    if (mail >= 0 && name.nachname.size() >= 2)
        for (int i = mail + 1; i < m_to; ++i) {
            if (m_lines[i].kind != Kind::Email || !usable(i))
                continue;
            const QString family = MailKey(name.nachname);
            if (!family.isEmpty() &&
                !MailKey(m_lines[mail].value.section(u'@', 0, 0)).contains(family) &&
                MailKey(m_lines[i].value.section(u'@', 0, 0)).contains(family))
                mail = i;
            break;
        }
    QString mailValue = mail >= 0 ? m_lines[mail].value : QString();
    // A forwarded message without the address in its signature: its "Von:" line has it.
    if (mail < 0 && m_from < m_to && !name.nachname.isEmpty() &&
        m_lines[m_from].kind == Kind::Cut && m_lines[m_from].text.contains(name.nachname)) {
        mailValue = FindEMail(m_lines[m_from].text);
        mail = mailValue.isEmpty() ? -1 : m_from;
    }
    // A reply without it: the quoted message below was sent to the signer.
    for (int i = m_to; mail < 0 && !name.nachname.isEmpty() && i < m_to + 8 && i < m_lines.size();
         ++i) {
        const QString lower = m_lines[i].text.left(5).toLower();
        if (!lower.startsWith(u"an:"_s) && !lower.startsWith(u"to:"_s) &&
            !lower.startsWith(u"aan:"_s))
            continue;
        for (const QString& recipient : m_lines[i].text.split(u';'))
            if (recipient.contains(name.nachname) && !FindEMail(recipient).isEmpty()) {
                mailValue = FindEMail(recipient);
                mail = i;
                break;
            }
    }
    // No address of its own line: one inside a sentence ("Schreiben Sie uns an …").
    if (mail < 0) {
        mail = first([](const Line& l) {
            return (l.kind == Kind::Prose || l.kind == Kind::Unknown) && l.text.contains(u'@') &&
                   !FindEMail(l.text).isEmpty();
        });
        if (mail >= 0)
            mailValue = FindEMail(m_lines[mail].text);
    }
    const int web = first([](const Line& l) { return l.kind == Kind::Website; });

    // In field order; the rows are filled in this order.
    if (company >= 0) {
        add(FieldId::Firma, companyText);
        take(company, u"Firma"_s);
    }
    if (department >= 0) {
        add(FieldId::Abteilung, m_lines[department].labelled
                                    ? m_lines[department].value
                                    : WithoutUnitWord(m_lines[department].text));
        take(department, u"Abteilung"_s);
    }
    add(FieldId::Anrede, name.anrede);
    add(FieldId::Titel, name.titel);
    add(FieldId::Vorname, name.vorname);
    add(FieldId::Nachname, name.nachname);
    add(FieldId::Kontakt, name.kontakt());
    if (person >= 0)
        take(person, u"Kontakt"_s);
    QStringList secondLines;
    if (street >= 0) {
        const Line& s = m_lines[street];
        add(FieldId::Adresse,
            s.labelled && s.value.isEmpty() ? s.text : (s.value.isEmpty() ? s.text : s.value));
        take(street, u"Adresse"_s);
        if (extraLine >= 0) {
            secondLines.append(m_lines[extraLine].labelled ? m_lines[extraLine].value
                                                           : m_lines[extraLine].text);
            take(extraLine, u"Adresse 2"_s);
        }
        if (poBox >= 0) {
            secondLines.append(m_lines[poBox].value);
            take(poBox, u"Adresse 2"_s);
        }
    } else if (poBox >= 0) {
        add(FieldId::Adresse, m_lines[poBox].value);
        take(poBox, u"Adresse"_s);
    }
    if (!secondLines.isEmpty())
        add(FieldId::Adresse2, secondLines[0]);
    if (secondLines.size() > 1)
        add(FieldId::Adresse3, secondLines[1]);
    if (place >= 0) {
        add(FieldId::Plz, m_lines[place].place.plz);
        add(FieldId::Ort, m_lines[place].place.ort);
        take(place, u"PLZ/Ort"_s);
        // A form's "Postcode: M4 4FY" carries no town; its own city line does.
        if (const int city = last([](const Line& l) { return l.kind == Kind::City && l.labelled; });
            m_lines[place].place.ort.isEmpty() && city >= 0) {
            add(FieldId::Ort, m_lines[city].value);
            take(city, u"Ort"_s);
        }
    } else {
        // A form's separate postcode and city.
        const int pc = last([](const Line& l) { return l.kind == Kind::Postcode; });
        const int city = last([](const Line& l) { return l.kind == Kind::City && l.labelled; });
        if (pc >= 0) {
            add(FieldId::Plz, m_lines[pc].place.plz);
            take(pc, u"PLZ"_s);
        }
        if (city >= 0) {
            add(FieldId::Ort, m_lines[city].value);
            take(city, u"Ort"_s);
        }
        if (land.isEmpty() && pc >= 0)
            land = m_lines[pc].place.plz.size() == 4 ? m_state.StandardLand4PLZ
                                                     : m_state.StandardLand5PLZ;
    }
    add(FieldId::Land, land);
    if (countryLine >= 0)
        take(countryLine, u"Land"_s);
    const FieldId voiceFields[] = {FieldId::Telefon, FieldId::Telefon2, FieldId::Telefon3};
    for (qsizetype v = 0; v < voice.size() && v < 3; ++v) {
        add(voiceFields[v], m_lines[voice[v].line].value);
        take(voice[v].line, v == 0 ? u"Telefon"_s : u"Telefon %1"_s.arg(v + 1));
    }
    if (fax >= 0) {
        add(FieldId::Fax, m_lines[fax].value);
        take(fax, u"Fax"_s);
    }
    if (mobile >= 0) {
        add(FieldId::Mobil, m_lines[mobile].value);
        take(mobile, u"Mobil"_s);
    }
    if (mail >= 0) {
        add(FieldId::EMail, mailValue);
        take(mail, u"eMail"_s);
    }
    if (web >= 0) {
        add(FieldId::Website, m_lines[web].value);
        take(web, u"Website"_s);
    }
}

void Analysis::fillRows(FieldRows& rows) const
{
    // More values than rows: the least needed give way.
    QList<Value> values = m_values;
    for (FieldId drop : {FieldId::Adresse3, FieldId::Telefon3, FieldId::Abteilung, FieldId::Anrede,
                         FieldId::Titel, FieldId::Telefon2, FieldId::Adresse2, FieldId::Website}) {
        if (values.size() <= FieldRows::RowCount)
            break;
        values.removeIf([drop](const Value& v) { return v.field == drop; });
    }
    int row = 0;
    for (const Value& v : values) {
        if (row >= FieldRows::RowCount)
            return;
        rows.setValue(row, v.value);
        rows.SelectRowField(row, qint16(idOf(v.field)));
        ++row;
    }
    // What could not be placed is offered without a field, for the user to choose: first
    // the lines that were not understood, then those that read like a contact's data but
    // lost to another line, then short sentences ("Muster Sp. z o.o." ends like one).
    const auto offered = [](const Line& l, int pass) {
        switch (l.kind) {
        case Kind::Unknown:
            return pass == 0;
        case Kind::Company:
        case Kind::Department:
        case Kind::Job:
        case Kind::Person:
        case Kind::Street:
        case Kind::Address2:
        case Kind::PoBox:
        case Kind::PostcodeCity:
        case Kind::Phone:
        case Kind::Email:
        case Kind::Website:
            return pass == 1;
        case Kind::Prose:
            return pass == 2 && Words(l.text).size() <= 8;
        default:
            return false;
        }
    };
    for (int pass = 0; pass < 3; ++pass)
        for (int i = m_from; i < m_to && row < FieldRows::RowCount; ++i) {
            const Line& l = m_lines[i];
            if (l.skipped || !l.taken.isEmpty() || !offered(l, pass))
                continue;
            rows.setValue(row, l.text);
            rows.setSelected(row, -1);
            ++row;
        }
}

} // namespace zf::enhanced
