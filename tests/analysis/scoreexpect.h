#pragma once

#include "analysis/zeile.h"

#include <QString>
#include <QStringList>

// "Firma=3 Kontakt=4": the scores a record must have; every score not named must be 0.
// Returns "" when the record matches, else a description of the first difference.
inline QString scoreMismatch(const zf::clsZeile& z, const QString& expected)
{
    QMap<QString, int> want;
    for (const QString& item : expected.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList kv = item.split(u'=');
        want.insert(kv.value(0), kv.value(1).toInt());
    }
    for (const zf::ScoreMember& m : zf::AllScores) {
        const QString name = QString::fromLatin1(m.name);
        const int have = z.*m.member;
        const int should = want.take(name);
        if (have != should)
            return QStringLiteral("%1 is %2, expected %3").arg(name).arg(have).arg(should);
    }
    if (!want.isEmpty())
        return QStringLiteral("unknown score %1").arg(want.firstKey());
    return {};
}
