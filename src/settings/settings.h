#pragma once

#include "analysis/session.h"

#include <QString>

namespace zf {

// The settings file: zettelfischer.ini in the program's own folder.
QString settingsFilePath();

// Reads definitions, the field cache (when switched on) and the default countries.
// A missing or unreadable file leaves the built-in defaults; nothing is reported.
void LoadSettings(const QString& iniPath, SharedState& state, FieldRows& rows);

// Writes the rows' field list to the cache when the file switches the cache on.
void SaveFieldCache(const QString& iniPath, const FieldRows& rows);

} // namespace zf
