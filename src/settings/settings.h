#pragma once

#include "analysis/session.h"

#include <QString>
#include <QStringView>

namespace zf {

// The settings file: zettelfischer.ini in the program's own folder.
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
