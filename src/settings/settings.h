#pragma once

#include "analysis/session.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace zf {

// Where zettelfischer.ini is looked for, in order: beside the program (a portable copy), in
// the user's config folder ($XDG_CONFIG_HOME/zettelfischer/, ~/.config/zettelfischer/ when
// unset), in the system's config folders ($XDG_CONFIG_DIRS, /etc/xdg when unset).
QStringList settingsFileCandidates(const QString& programDir);

// The first candidate that is a file (as clsINI::FileAvailable sees it), else the one beside
// the program. Reading and the field cache's writes both use this one file.
QString settingsFilePath(const QString& programDir);
// The same for this program's own folder.
QString settingsFilePath();

// Reads definitions, the field cache (when switched on) and the default countries.
// A missing or unreadable file leaves the built-in defaults; nothing is reported.
void LoadSettings(const QString& iniPath, SharedState& state, FieldRows& rows);

// Appends a definition (field id and label) to the state's ExtraDefinitions.
void AddExtraDefinition(SharedState& state, qint16 ID, const QString& Wert);

// The number that a text starts with: blanks anywhere are skipped, "." is the decimal
// point, an exponent may follow; a text without a leading number gives 0.
double LeadingNumber(QStringView text);

// Writes the rows' field list to the cache when the file switches the cache on.
void SaveFieldCache(const QString& iniPath, const FieldRows& rows);

} // namespace zf
