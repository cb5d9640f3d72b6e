#include "vcardtext.h"

using namespace Qt::StringLiterals;

namespace zf::vcard {

namespace {

bool isContinuationByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

QString cleanControls(const QString& value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t c = value[i].unicode();
        if (c == u'\r') {
            out += u'\n';
            if (i + 1 < value.size() && value[i + 1] == u'\n')
                ++i;
        } else if (c == u'\t') {
            out += u' ';
        } else if (c == u'\n' || (c >= 0x20 && c < 0x7F) || c > 0x9F) {
            out += value[i];
        }
    }
    return out;
}

QString escapeValue(const QString& value, bool semicolon)
{
    QString out;
    out.reserve(value.size());
    for (const QChar c : cleanControls(value)) {
        if (c == u'\\' || c == u',' || (semicolon && c == u';')) {
            out += u'\\';
            out += c;
        } else if (c == u'\n') {
            out += u"\\n"_s;
        } else {
            out += c;
        }
    }
    return out;
}

QString quoteParameter(const QString& value)
{
    QString out = u"\""_s;
    for (const QChar c : cleanControls(value)) {
        if (c == u'^')
            out += u"^^"_s;
        else if (c == u'"')
            out += u"^'"_s;
        else if (c == u'\n')
            out += u"^n"_s;
        else
            out += c;
    }
    return out + u'"';
}

QString unquoteParameter(QStringView value)
{
    if (value.size() >= 2 && value.front() == u'"' && value.back() == u'"')
        value = value.mid(1, value.size() - 2);
    QString out;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == u'^' && i + 1 < value.size()) {
            const QChar next = value[i + 1];
            if (next == u'^' || next == u'\'' || next == u'n') {
                out += next == u'^' ? u'^' : next == u'\'' ? u'"' : u'\n';
                ++i;
                continue;
            }
        }
        out += value[i];
    }
    return out;
}

QByteArray foldLine(const QString& line)
{
    const QByteArray utf8 = line.toUtf8();
    QByteArray out;
    qsizetype pos = 0;
    qsizetype room = 75; // continuation lines start with a space
    while (utf8.size() - pos > room) {
        qsizetype cut = pos + room;
        while (cut > pos && isContinuationByte(utf8[cut]))
            --cut;
        out += utf8.mid(pos, cut - pos);
        out += "\r\n ";
        pos = cut;
        room = 74;
    }
    out += utf8.mid(pos);
    out += "\r\n";
    return out;
}

} // namespace zf::vcard
