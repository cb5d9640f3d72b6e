#include "settings.h"

#include "clsini.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

// Numbered keys count with a 16-bit counter like every other counter of the program; this
// also keeps a huge hand-made file from stalling the start.
constexpr int LastNumber = std::numeric_limits<qint16>::max();

const QString SectionConfig = u"Config"_s;
const QString SectionBook = u"Kontakte"_s;
const QString SectionFields = u"Felder"_s;
const QString SectionDefinitions = u"Definitionen"_s;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

std::optional<qint16> toInt16(double value)
{
    if (!std::isfinite(value) || value < std::numeric_limits<qint16>::min() ||
        value > std::numeric_limits<qint16>::max())
        return std::nullopt;
    return qint16(value);
}

// A field id of the cache: a whole number, blanks around it allowed.
std::optional<qint16> wholeNumber(QStringView text)
{
    text = text.trimmed();
    qsizetype i = (!text.isEmpty() && (text[0] == u'-' || text[0] == u'+')) ? 1 : 0;
    if (i == text.size())
        return std::nullopt;
    for (qsizetype k = i; k < text.size(); ++k)
        if (!isDigit(text[k]))
            return std::nullopt;
    bool ok = false;
    const qlonglong value = text.toLongLong(&ok);
    return ok ? toInt16(double(value)) : std::nullopt;
}

} // namespace

double LeadingNumber(QStringView text)
{
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n')
            s.append(c);

    qsizetype i = 0;
    QString number;
    if (i < s.size() && (s[i] == u'-' || s[i] == u'+'))
        number.append(s[i++]);
    const qsizetype intStart = i;
    while (i < s.size() && isDigit(s[i]))
        ++i;
    QString digits = s.sliced(intStart, i - intStart);
    QString fraction;
    if (i < s.size() && s[i] == u'.') {
        const qsizetype fracStart = ++i;
        while (i < s.size() && isDigit(s[i]))
            ++i;
        fraction = s.sliced(fracStart, i - fracStart);
    }
    if (digits.isEmpty() && fraction.isEmpty())
        return 0;
    number +=
        (digits.isEmpty() ? u"0"_s : digits) + u'.' + (fraction.isEmpty() ? u"0"_s : fraction);
    if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
        qsizetype k = i + 1;
        if (k < s.size() && (s[k] == u'-' || s[k] == u'+'))
            ++k;
        if (k < s.size() && isDigit(s[k])) {
            while (k < s.size() && isDigit(s[k]))
                ++k;
            number += s.sliced(i, k - i);
        }
    }
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (ok)
        return value;
    // Out of the double range: an infinity of the right sign, which no id accepts.
    return number.startsWith(u'-') ? -HUGE_VAL : HUGE_VAL;
}

QStringList settingsFileCandidates(const QString& programDir)
{
    QStringList paths{programDir + u"/zettelfischer.ini"_s};
    for (const QString& dir :
         QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        paths.append(dir + u"/zettelfischer/zettelfischer.ini"_s);
    return paths;
}

QString settingsFilePath(const QString& programDir)
{
    const QStringList candidates = settingsFileCandidates(programDir);
    for (const QString& path : candidates)
        if (FileExists(path))
            return path;
    return candidates.front();
}

QString settingsFilePath()
{
    return settingsFilePath(
        QCoreApplication::instance()
            ? QCoreApplication::applicationDirPath()
            : QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).absolutePath());
}

void AddExtraDefinition(SharedState& state, qint16 ID, const QString& Wert)
{
    state.ExtraDefinitions.append(clsZusatzDefs{ID, Wert});
}

void LoadSettings(const QString& iniPath, SharedState& state, FieldRows& rows)
{
    state.ExtraDefinitionsLoaded = false;
    state.ExtraDefinitions.clear();
    clsINI ini;
    ini.setFileName(iniPath);

    if (ini.FileAvailable()) {
        for (int n = 1; n <= LastNumber; ++n) {
            const QString id =
                ini.ReadData(SectionDefinitions, u"ID"_s + QString::number(n), u""_s);
            const QString wert =
                ini.ReadData(SectionDefinitions, u"Wert"_s + QString::number(n), u""_s);
            if (id.isEmpty() || wert.isEmpty())
                break;
            // The default rounding mode sends halves to the even neighbour.
            if (const auto value = toInt16(std::nearbyint(LeadingNumber(id))))
                AddExtraDefinition(state, *value, wert);
        }
        state.ExtraDefinitionsLoaded = !state.ExtraDefinitions.isEmpty();

        if (ini.ReadData(SectionConfig, u"CacheFelder"_s, u"0"_s) == u"1"_s) {
            QList<FieldEntry> entries;
            bool cached = false;
            for (int n = 1; n <= LastNumber; ++n) {
                const QString line =
                    ini.ReadData(SectionFields, u"Zeile"_s + QString::number(n), u""_s);
                if (line.isEmpty())
                    break;
                cached = true;
                const qsizetype semicolon = line.indexOf(u';');
                if (semicolon < 0)
                    continue;
                if (const auto id = wholeNumber(QStringView(line).first(semicolon)))
                    entries.append({line.mid(semicolon + 1), *id});
            }
            // A non-empty first line replaces the built-in lists, even when no line of the
            // cache can be used: the rows then offer no field at all.
            if (cached) {
                // Added in display order, each entry lands at the end of the sorted list;
                // the stable sort keeps the order of equal names as they were added.
                std::stable_sort(entries.begin(), entries.end(),
                                 [](const FieldEntry& a, const FieldEntry& b) {
                                     return FieldNameLess(a.name, b.name);
                                 });
                rows.clearFields();
                for (const FieldEntry& e : entries)
                    rows.addField(e.name, e.id);
            }
        }
    }

    state.StandardLand4PLZ = ini.ReadData(SectionConfig, u"StandardLand4PLZ"_s, u"Österreich"_s);
    state.StandardLand5PLZ = ini.ReadData(SectionConfig, u"StandardLand5PLZ"_s, u"Deutschland"_s);
    state.ErweiterteAnalyse = ini.ReadData(SectionConfig, u"ErweiterteAnalyse"_s, u"0"_s) == u"1"_s;

    state.KontakteAdressbuch = ini.ReadData(SectionBook, u"Adressbuch"_s, u""_s).trimmed();
    state.KontakteBenutzer = ini.ReadData(SectionBook, u"Benutzer"_s, u""_s).trimmed();
    // A timeout that is no whole number of seconds from 1 to a day keeps the default.
    bool ok = false;
    const int timeout = ini.ReadData(SectionBook, u"Timeout"_s, u""_s).trimmed().toInt(&ok);
    state.KontakteTimeout = ok && timeout >= 1 && timeout <= 86400 ? timeout : 15;
    state.KontakteDublettenpruefung =
        ini.ReadData(SectionBook, u"Dublettenpruefung"_s, u"1"_s).trimmed() != u"0"_s;
}

void SaveFieldCache(const QString& iniPath, const FieldRows& rows)
{
    clsINI ini;
    ini.setFileName(iniPath);
    if (ini.ReadData(SectionConfig, u"CacheFelder"_s, u"0"_s) != u"1"_s)
        return;
    const FieldList& list = rows.fields();
    QList<std::pair<QString, QString>> lines;
    lines.reserve(list.count() + 1);
    for (int k = 0; k < list.count(); ++k) {
        QString value = QString::number(list.idAt(k)) + u';' + list.nameAt(k);
        // Reading drops blanks at the end of a value but keeps them inside quotes.
        if (value.back() == u' ' || value.back() == u'\t')
            value = u'"' + value + u'"';
        lines.append({u"Zeile"_s + QString::number(k + 1), value});
    }
    // The empty end marker stops the loader before keys of an earlier, longer list.
    lines.append({u"Zeile"_s + QString::number(list.count() + 1), QString()});
    ini.WriteSection(SectionFields, lines);
}

} // namespace zf
