// The line store's heading removal and label taking, against the plain list algorithms they
// replace, on many generated texts.

#include "analysis/analyser.h"
#include "analysis/textutil.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

// Texts from a few letters, so that names occur in lines, in each other and in what a
// removal leaves.
QString randomWord(QRandomGenerator& rng, int maxLength)
{
    static const QString letters = u"ab c"_s;
    QString w;
    for (int n = rng.bounded(maxLength + 1); n > 0; --n)
        w += letters[rng.bounded(letters.size())];
    return w;
}

QStringList listOf(const LineStore& store)
{
    QStringList out;
    for (qsizetype pos = 0; pos < store.size(); ++pos)
        if (!store.isTaken(pos))
            out.append((store.isHeading(pos) ? u"*"_s : QString()) + store.text(pos).toString());
    return out;
}

// The list as built one line at a time: each heading edits every record already there.
QStringList plainHeadings(const QStringList& cleanLines)
{
    QStringList list;
    for (const QString& line : cleanLines) {
        if (!line.startsWith(u"Details der "_s) || !line.endsWith(u" schließen"_s)) {
            list.append(line);
            continue;
        }
        const QString name = line.mid(12, qMax<qsizetype>(0, line.size() - 22));
        for (QString& t : list) {
            const bool head = t.startsWith(u'*');
            QString text = head ? t.mid(1) : t;
            text = Trim(text.remove(name));
            t = (head ? u"*"_s : QString()) + text;
        }
        list.prepend(u'*' + name);
    }
    return list;
}

} // namespace

class TestLineStore : public QObject {
    Q_OBJECT
private slots:
    void headingsAsOneLineAtATime()
    {
        QRandomGenerator rng(7);
        for (int round = 0; round < 400; ++round) {
            QStringList lines;
            for (int n = rng.bounded(1, 30); n > 0; --n) {
                const QString word = randomWord(rng, 6);
                lines.append(rng.bounded(3) == 0 ? u"Details der "_s + word + u" schließen"_s
                                                 : word);
            }
            // Only lines that the cleaning leaves as they are.
            QStringList clean;
            for (const QString& l : lines) {
                const QString c = Trim(CollapseBlanks(l));
                if (!c.isEmpty())
                    clean.append(c);
            }
            LineStore store;
            stage::BuildLineList(clean.join(u'\n'), u"\n"_s, store, nullptr);
            QCOMPARE(listOf(store), plainHeadings(clean));
        }
    }

    // Many labels take the index; a label's first untaken line in list order, as with few.
    void manyLabelsAsFew()
    {
        QRandomGenerator rng(11);
        for (int round = 0; round < 200; ++round) {
            QStringList lines;
            for (int n = rng.bounded(1, 40); n > 0; --n)
                lines.append(Trim(CollapseBlanks(u"x"_s + randomWord(rng, 5)))); // as cleaned
            QList<clsZusatzDefs> defs;
            for (int n = rng.bounded(9, 30); n > 0; --n)
                defs.append(
                    {qint16(n), rng.bounded(8) == 0 ? QString() : u"x"_s + randomWord(rng, 3)});

            LineStore store;
            stage::BuildLineList(lines.join(u'\n'), u"\n"_s, store, nullptr);
            SharedState state;
            state.ExtraDefinitions = defs;
            stage::TakeExtraDefinitionLines(store, state);

            QStringList left = lines;
            QList<clsZusatzDefs> found;
            for (const clsZusatzDefs& d : defs)
                for (qsizetype i = 0; i < left.size(); ++i)
                    if (left[i].startsWith(d.Wert)) {
                        found.append({d.ID, Trim(QStringView(left[i]).mid(d.Wert.size()))});
                        left.removeAt(i);
                        break;
                    }
            QCOMPARE(state.ExtraFieldValues, found);
            QCOMPARE(listOf(store), left);
            QCOMPARE(store.untakenCount(), left.size());
        }
    }

    // Only as many records as the stages can reach become line records; the rest stay.
    void materialiseUpToALimit()
    {
        LineStore store;
        stage::BuildLineList(u"a\nDetails der x schließen\nb\nc\nd\n"_s, u"\n"_s, store, nullptr);
        store.take(2); // "b"
        LineList lines;
        QCOMPARE(store.materialise(lines, 2), 2); // the rest starts at the taken "b"
        QCOMPARE(lines.size(), 2u);
        QCOMPARE(lines.front().Text, u"x"_s);
        QCOMPARE(lines.front().Firma, 20);
        QCOMPARE(lines.back().Text, u"a"_s);
        QCOMPARE(lines.back().Firma, 0);
    }
};

QTEST_GUILESS_MAIN(TestLineStore)
#include "tst_linestore.moc"
