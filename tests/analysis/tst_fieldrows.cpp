#include "analysis/fieldrows.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestFieldRows : public QObject {
    Q_OBJECT
private slots:
    // Sorted ignoring case; an equal name goes behind those already there.
    void defaultListIsSorted()
    {
        FieldRows rows;
        rows.FillDefaultFieldLists();
        rows.addField(u"firma"_s, 1);
        QStringList names;
        for (const FieldEntry& e : rows.fields().entries())
            names.append(e.name);
        QCOMPARE(names.join(u','),
                 u"Abteilung,Adresse,Adresse 2,Adresse 3,Anrede,eMail,Fax,Firma,firma,"
                 "Kontakt,Land,Mobil,Nachname,Ort,PLZ,Telefon,Telefon 2,"
                 "Telefon 3,Titel,Vorname,Website"_s);
    }

    // An unknown id leaves the row as it was.
    void selectRowField()
    {
        FieldRows rows;
        rows.FillDefaultFieldLists();
        rows.SelectRowField(5, 200);
        rows.SelectRowField(5, 117);
        QCOMPARE(rows.fieldId(5), std::optional<qint32>(200));
        QCOMPARE(rows.fieldId(4), std::nullopt);
    }

    // A chosen entry stays chosen when entries are added in front of it; clearing unchooses.
    void selectionFollowsItsEntry()
    {
        FieldRows rows;
        rows.addField(u"Ort"_s, 30);
        rows.SelectRowField(2, 30);
        QSignalSpy spy(&rows, &FieldRows::selectionChanged);
        rows.addField(u"Adresse"_s, 27);
        rows.addField(u"Zusatz"_s, 99);
        QCOMPARE(rows.fieldId(2), std::optional<qint32>(30));
        QCOMPARE(spy.count(), 1);
        rows.clearFields();
        QCOMPARE(rows.fieldId(2), std::nullopt);
        QCOMPARE(rows.fields().count(), 0);
    }
};

QTEST_GUILESS_MAIN(TestFieldRows)
#include "tst_fieldrows.moc"
