#include "analysis/fieldrows.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestFieldRows : public QObject {
    Q_OBJECT
private slots:
    void defaultListIsSorted()
    {
        FieldRows rows;
        rows.FillDefaultFieldLists();
        QStringList names;
        for (const FieldEntry& e : rows.fields().entries())
            names.append(e.name);
        QCOMPARE(names,
                 (QStringList{"Abteilung", "Adresse",   "Adresse 2", "Adresse 3", "Anrede",
                              "eMail",     "Fax",       "Firma",     "Kontakt",   "Land",
                              "Mobil",     "Nachname",  "Ort",       "PLZ",       "Telefon",
                              "Telefon 2", "Telefon 3", "Titel",     "Vorname",   "Website"}));
    }

    void selectRowField_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("shown");
        QTest::newRow("email") << 200 << "eMail";
        QTest::newRow("company") << 25 << "Firma";
        QTest::newRow("unknown id keeps the row") << 117 << "Ort";
    }
    void selectRowField()
    {
        QFETCH(int, id);
        QFETCH(QString, shown);
        FieldRows rows;
        rows.FillDefaultFieldLists();
        rows.SelectRowField(5, 30);
        rows.SelectRowField(5, qint16(id));
        QCOMPARE(rows.fields().nameAt(rows.selected(5)), shown);
        QCOMPARE(rows.selected(4), -1);
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

    void equalNamesKeepTheirOrder()
    {
        FieldRows rows;
        rows.addField(u"Feld"_s, 1);
        rows.addField(u"feld"_s, 2);
        rows.addField(u"Feld"_s, 3);
        QCOMPARE(rows.fields().idAt(0), 1);
        QCOMPARE(rows.fields().idAt(1), 2);
        QCOMPARE(rows.fields().idAt(2), 3);
        QCOMPARE(rows.fields().positionOf(3), 2);
    }

    void modelServesViews()
    {
        FieldRows rows;
        rows.addField(u"eMail"_s, 200);
        const QModelIndex i = rows.fieldModel()->index(0);
        QCOMPARE(i.data().toString(), u"eMail"_s);
        QCOMPARE(i.data(FieldList::IdRole).toInt(), 200);
    }
};

QTEST_GUILESS_MAIN(TestFieldRows)
#include "tst_fieldrows.moc"
