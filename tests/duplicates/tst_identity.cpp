#include "duplicates/identity.h"

#include "analysis/fields.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::dup;

Q_DECLARE_METATYPE(zf::dup::FieldValues)

namespace {

// "Firma=Muster GmbH|Mobil=0171 1" as field values.
FieldValues contact(const QString& pairs)
{
    FieldValues values;
    for (const QString& pair : pairs.split(u'|', Qt::SkipEmptyParts)) {
        const QString name = pair.section(u'=', 0, 0);
        const QString value = pair.section(u'=', 1);
        const auto it = std::find_if(StandardFields.begin(), StandardFields.end(),
                                     [&](const StandardField& f) { return fieldName(f) == name; });
        Q_ASSERT(it != StandardFields.end());
        values.append({idOf(it->id), value});
    }
    return values;
}

} // namespace

class TestIdentity : public QObject {
    Q_OBJECT
private slots:
    void phone_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("callingCode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("DE with (0) and separators") << "+49 (0)171 / 12 34-56"
                                                    << "49"
                                                    << "+49171123456";
        QTest::newRow("DE national") << "0171 123456"
                                     << "49"
                                     << "+49171123456";
        QTest::newRow("DE 0049") << "0049 171 123456"
                                 << "49"
                                 << "+49171123456";
        QTest::newRow("AT national, Austrian contact") << "0664 123 45 67"
                                                       << "43"
                                                       << "+436641234567";
        QTest::newRow("AT international") << "+43 (0) 664 1234567"
                                          << "49"
                                          << "+436641234567";
        QTest::newRow("CH national") << "079 123 45 67"
                                     << "41"
                                     << "+41791234567";
        QTest::newRow("CH with dots") << "+41 79.123.45.67"
                                      << "49"
                                      << "+41791234567";
        QTest::newRow("IT keeps its zero") << "06 1234 5678"
                                           << "39"
                                           << "+390612345678";
        QTest::newRow("IT international") << "+39 06 1234 5678"
                                          << "49"
                                          << "+390612345678";
        QTest::newRow("US") << "+1 (212) 555-0187"
                            << "49"
                            << "+12125550187";
        QTest::newRow("label in front") << "Mobil: 0171/123456"
                                        << "49"
                                        << "+49171123456";
        QTest::newRow("no area code") << "12 34 56"
                                      << "49"
                                      << "123456";
        QTest::newRow("empty") << ""
                               << "49"
                               << "";
    }
    void phone()
    {
        QFETCH(QString, number);
        QFETCH(QString, callingCode);
        QFETCH(QString, expected);
        QCOMPARE(normalisePhone(number, callingCode), expected);
    }

    void same_data()
    {
        QTest::addColumn<FieldValues>("a");
        QTest::addColumn<FieldValues>("b");
        QTest::addColumn<int>("reason"); // -1: not the same contact

        const int none = -1;
        const int email = int(Reason::EMail);
        const int name = int(Reason::Name);
        const int mobile = int(Reason::Mobile);
        const auto row = [](const char* tag, const QString& a, const QString& b, int reason) {
            QTest::newRow(tag) << contact(a) << contact(b) << reason;
        };
        row("e-mail, other case", "eMail=Hans.Meier@Muster.de",
            "eMail=hans.meier@muster.de|Kontakt=H. M.", email);
        row("e-mail differs", "eMail=hans@muster.de", "eMail=anna@muster.de", none);
        row("first and last name", "Vorname=Hans|Nachname=Meier", "Kontakt=Hans  Meier", name);
        row("name with salutation and degree", "Kontakt=Herr Dr. Hans Meier",
            "Vorname=hans|Nachname=MEIER", name);
        row("name, same company", "Kontakt=Hans Meier|Firma=Muster GmbH",
            "Kontakt=Hans Meier|Firma=muster gmbh", name);
        row("name, one without company", "Kontakt=Hans Meier|Firma=Muster GmbH",
            "Kontakt=Hans Meier", name);
        row("namesake at another firm", "Kontakt=Hans Meier|Firma=Muster GmbH",
            "Kontakt=Hans Meier|Firma=Beispiel AG", none);
        row("one word is no name", "Kontakt=Meier", "Kontakt=Meier", none);
        row("mobile, DE formats", "Mobil=+49 (0)171 / 12 34-56", "Mobil=0171 123456", mobile);
        row("mobile, Swiss contact", "Mobil=079 123 45 67|Land=Schweiz", "Mobil=+41 79 123 45 67",
            mobile);
        row("mobile as the analysis writes the home calling code", "Mobil=1702223334",
            "Mobil=0170 222 33 34", mobile);
        row("mobile as the analysis writes it, Austrian", "Mobil=6641234567|Land=Österreich",
            "Mobil=+43 664 1234567", mobile);
        row("same national digits, other countries", "Mobil=0664 1234567|Land=Österreich",
            "Mobil=0664 1234567|Land=Deutschland", none);
        row("colleagues share switchboard and fax",
            "Kontakt=Hans Meier|Firma=Muster GmbH|Telefon=0711 1234-0|Fax=0711 1234-99",
            "Kontakt=Anna Schmidt|Firma=Muster GmbH|Telefon=0711 1234-0|Fax=0711 1234-99", none);
        row("nothing to compare", "Firma=Muster GmbH", "Firma=Muster GmbH", none);
    }
    void same()
    {
        QFETCH(FieldValues, a);
        QFETCH(FieldValues, b);
        QFETCH(int, reason);
        const std::optional<Reason> got = sameContact(identityOf(a), identityOf(b));
        QCOMPARE(got ? int(*got) : -1, reason);
        // The relation does not depend on which contact is the new one.
        const std::optional<Reason> back = sameContact(identityOf(b), identityOf(a));
        QCOMPARE(back ? int(*back) : -1, reason);
    }
};

QTEST_GUILESS_MAIN(TestIdentity)
#include "tst_identity.moc"
