// The enhanced analysis on invented blocks it was not written against (heldout/; fresh/,
// heldout4/ to heldout11/ each by another author): every block through the real command
// line, scored as the transfer files the contact. The floors sit a little under the figures
// reached; falling below them is a regression.

#include "clirun.h"

#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTest>

namespace {

// National digits: "+49 (0)711 / 12 34-56" and "0711 123456" are one number.
QString phoneKey(QString s)
{
    s.remove(QStringLiteral("(0)"));
    static const QRegularExpression lead(QStringLiteral("^\\s*(\\+|00)"));
    const bool international = lead.match(s).hasMatch();
    s.remove(QRegularExpression(QStringLiteral("\\D")));
    if (international)
        s.remove(QRegularExpression(QStringLiteral("^(00)?(49|43|41|44|1|33|39|31|32|423)")));
    while (s.startsWith(u'0'))
        s.remove(0, 1);
    return s;
}

bool same(const QString& key, const QString& a, const QString& b)
{
    static const QStringList phones{QStringLiteral("Telefon"), QStringLiteral("Telefon2"),
                                    QStringLiteral("Telefon3"), QStringLiteral("Fax"),
                                    QStringLiteral("Mobil")};
    if (phones.contains(key))
        return !phoneKey(a).isEmpty() && phoneKey(a) == phoneKey(b);
    return a.simplified() == b.simplified();
}

// Field -> value as filed: the last row with a non-blank value wins.
QJsonObject filed(const QJsonObject& result)
{
    QJsonObject out;
    for (const QJsonValue& row : result[QStringLiteral("rows")].toArray()) {
        QString field = row[QStringLiteral("field")].toString();
        const QString value = row[QStringLiteral("value")].toString();
        if (field.isEmpty() || value.trimmed().isEmpty())
            continue;
        field.remove(u' '); // "Adresse 2" -> "Adresse2"
        out.insert(field, value);
    }
    return out;
}

} // namespace

class TestEnhancedHeldout : public QObject {
    Q_OBJECT

private slots:
    void staysAboveItsFloors_data()
    {
        QTest::addColumn<QString>("set");
        QTest::addColumn<int>("minContacts");
        QTest::addColumn<double>("floorIntent");        // hits over intended plus spurious
        QTest::addColumn<double>("ceilingCorrections"); // per contact
        QTest::addColumn<double>("floorPerfect");       // contacts without a single correction
        QTest::newRow("heldout") << QStringLiteral("heldout") << 40 << 0.98 << 0.08 << 0.95;
        QTest::newRow("fresh") << QStringLiteral("fresh") << 30 << 0.98 << 0.10 << 0.90;
        QTest::newRow("heldout4") << QStringLiteral("heldout4") << 40 << 0.98 << 0.10 << 0.90;
        QTest::newRow("heldout5") << QStringLiteral("heldout5") << 40 << 0.98 << 0.10 << 0.90;
        QTest::newRow("heldout6") << QStringLiteral("heldout6") << 40 << 0.98 << 0.12 << 0.88;
        QTest::newRow("heldout7") << QStringLiteral("heldout7") << 40 << 0.98 << 0.12 << 0.88;
        QTest::newRow("heldout8") << QStringLiteral("heldout8") << 40 << 0.98 << 0.10 << 0.90;
        QTest::newRow("heldout9") << QStringLiteral("heldout9") << 40 << 0.98 << 0.10 << 0.90;
        // Not tuned on: their floors sit under the figures they gave as unseen text.
        QTest::newRow("heldout10") << QStringLiteral("heldout10") << 40 << 0.94 << 0.60 << 0.80;
        QTest::newRow("heldout11") << QStringLiteral("heldout11") << 40 << 0.97 << 0.20 << 0.85;
    }

    void staysAboveItsFloors()
    {
        QFETCH(QString, set);
        QFETCH(int, minContacts);
        QFETCH(double, floorIntent);
        QFETCH(double, ceilingCorrections);
        QFETCH(double, floorPerfect);
        const QString folder = QStringLiteral(ZF_SETS_DIR "/") + set;
        QFile truth(folder + QStringLiteral("/truth.jsonl"));
        QVERIFY(truth.open(QIODevice::ReadOnly));
        int contacts = 0, perfect = 0, intended = 0, hits = 0, spurious = 0;
        for (const QByteArray& line : truth.readAll().split('\n')) {
            if (line.trimmed().isEmpty())
                continue;
            const QJsonObject t = QJsonDocument::fromJson(line).object();
            const QString file = folder + QStringLiteral("/blocks/") + t[u"file"].toString();
            QVERIFY2(QFile::exists(file), qPrintable(file));
            const CliRun run = runCli({QStringLiteral("analyse"), QStringLiteral("--enhanced"),
                                       QStringLiteral("--file"), file});
            QCOMPARE(run.exitCode, 0);
            const QJsonObject got = filed(run.json());
            const QJsonObject want = t[u"intended"].toObject();
            QStringList errors;
            for (auto it = want.begin(); it != want.end(); ++it) {
                ++intended;
                if (got.contains(it.key()) &&
                    same(it.key(), got[it.key()].toString(), it.value().toString()))
                    ++hits;
                else
                    errors.append(
                        QStringLiteral("%1: want \"%2\", got \"%3\"")
                            .arg(it.key(), it.value().toString(), got[it.key()].toString()));
            }
            for (auto it = got.begin(); it != got.end(); ++it)
                if (!want.contains(it.key())) {
                    ++spurious;
                    errors.append(QStringLiteral("%1: want nothing, got \"%2\"")
                                      .arg(it.key(), it.value().toString()));
                }
            ++contacts;
            perfect += errors.isEmpty();
            for (const QString& e : errors)
                qInfo("%s: %s", qPrintable(t[u"file"].toString()), qPrintable(e));
        }
        QVERIFY2(contacts >= minContacts, "the set is incomplete");
        const double intent = double(hits) / (intended + spurious);
        const double corrections = double(intended - hits + spurious) / contacts;
        const double perfectShare = double(perfect) / contacts;
        qInfo("intent %d/%d (%.1f %%), corrections per contact %.2f, perfect %d/%d", hits,
              intended + spurious, 100 * intent, corrections, perfect, contacts);
        QVERIFY2(intent >= floorIntent, "intent below its floor");
        QVERIFY2(corrections <= ceilingCorrections, "corrections per contact above the ceiling");
        QVERIFY2(perfectShare >= floorPerfect, "share of perfect contacts below its floor");
    }
};

QTEST_GUILESS_MAIN(TestEnhancedHeldout)
#include "tst_enhanced_heldout.moc"
