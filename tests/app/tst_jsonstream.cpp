// The streamed JSON against QJsonDocument's indented layout, for nesting and for every kind
// of character a text can carry.

#include "app/jsonstream.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Writes through a JsonStream into a temporary file and returns the bytes.
template <typename Write> QByteArray streamed(Write write)
{
    QTemporaryFile file;
    if (!file.open())
        return {};
    std::FILE* out = std::fopen(qPrintable(file.fileName()), "wb");
    {
        JsonStream json(out);
        write(json);
    }
    std::fclose(out);
    return file.readAll();
}

} // namespace

class TestJsonStream : public QObject {
    Q_OBJECT
private slots:
    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QString controls;
        for (char16_t c = 0; c < 0x20; ++c)
            controls += QChar(c);
        QTest::newRow("empty") << QString();
        QTest::newRow("controls") << controls;
        QTest::newRow("quote, backslash, slash, DEL") << u"\"\\/\x7f"_s;
        QTest::newRow("two- and three-byte") << u"Grüße € \u07ff\u0800\uffff"_s;
        QTest::newRow("surrogate pair") << u"a\U0001F600b"_s;
        QTest::newRow("lone high surrogate") << u"a"_s + QChar(0xd800) + u"b"_s;
        QTest::newRow("lone low surrogate") << u"a"_s + QChar(0xdc00) + u"b"_s;
        QTest::newRow("high surrogate at the end") << u"a"_s + QChar(0xdbff);
        QTest::newRow("two high surrogates")
            << QString(QChar(0xd800)) + QChar(0xd801) + QChar(0xdc01);
    }
    void texts()
    {
        QFETCH(QString, text);
        const QJsonObject object{{u"k"_s, text}, {u"l"_s, QJsonArray{text, text}}};
        qsizetype half = text.size() / 2; // the parts must not split a surrogate pair
        if (half > 0 && text[half - 1].isHighSurrogate() && text[half].isLowSurrogate())
            ++half;
        const QByteArray got = streamed([&](JsonStream& json) {
            json.beginObject();
            json.key(u"k");
            json.value(text);
            json.key(u"l");
            json.beginArray();
            json.value(text);
            json.beginString(); // in two parts
            json.appendString(QStringView(text).left(half));
            json.appendString(QStringView(text).mid(half));
            json.endString();
            json.endArray();
            json.endObject();
        });
        QCOMPARE(got, QJsonDocument(object).toJson(QJsonDocument::Indented));
    }

    void nesting()
    {
        const QJsonObject object{
            {u"a"_s, QJsonArray{}},
            {u"b"_s, QJsonObject{}},
            {u"c"_s, QJsonArray{QJsonObject{{u"n"_s, -1}, {u"t"_s, true}}, QJsonValue::Null,
                                QJsonArray{32767, false}}},
            {u"d"_s, 200},
        };
        const QByteArray got = streamed([](JsonStream& json) {
            json.beginObject();
            json.key(u"a");
            json.beginArray();
            json.endArray();
            json.key(u"b");
            json.beginObject();
            json.endObject();
            json.key(u"c");
            json.beginArray();
            json.beginObject();
            json.key(u"n");
            json.value(qint64(-1));
            json.key(u"t");
            json.value(true);
            json.endObject();
            json.null();
            json.beginArray();
            json.value(qint64(32767));
            json.value(false);
            json.endArray();
            json.endArray();
            json.key(u"d");
            json.value(qint64(200));
            json.endObject();
        });
        QCOMPARE(got, QJsonDocument(object).toJson(QJsonDocument::Indented));
    }
};

QTEST_GUILESS_MAIN(TestJsonStream)
#include "tst_jsonstream.moc"
