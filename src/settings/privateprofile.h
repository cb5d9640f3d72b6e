#pragma once

// The private-profile functions that the settings class builds on: INI files read and
// written the way the desktop platform's own profile API does it, so that hand-edited
// files behave the same on every system.
//
// - Section and key names are found case-insensitively; blanks around names, values and
//   the "=" do not count; a value enclosed in matching quotes is read without them.
// - A missing file, section or key gives the default (its trailing blanks dropped); a key
//   present with an empty value gives the empty text.
// - A write creates file, section and key as needed, replaces an existing value in place
//   and changes nothing but its own line: comments, blank lines, other sections and the
//   order of everything else stay byte for byte.
// - The file's text is UTF-8 when it starts with a UTF-8 byte-order mark or is valid UTF-8
//   with at least one byte beyond ASCII (as a Linux editor saves it); any other file is
//   Windows-1252, one byte per character. Writes keep the file's encoding.
// - "\r\n" and "\n" are both accepted when read; written lines end as the file's first line
//   does, "\r\n" in a new file or one without a line break.
// - Every text goes through the file's encoding (what Windows-1252 cannot hold becomes "?")
//   and, as a C string, ends at its first NUL.
// - A file larger than MaxFileSize is not read: it counts as unreadable, so reads give the
//   default and writes leave it alone.
// - A write replaces the file as a whole: the new text goes to a temporary file in the same
//   folder, is flushed to disk and renamed over the old file, which keeps its permissions.
//   Whenever the program stops, the file holds either the old text or the new one.

#include "encoding.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

#include <functional>
#include <optional>
#include <utility>

namespace zf::profile {

// The settings file is small and edited by hand; anything beyond this is no settings file.
inline constexpr qint64 MaxFileSize = 4 * 1024 * 1024;

// Copies the value of the key (or the default) into buffer, cut to size - 1 characters
// and ended by a NUL; returns the number of characters copied.
qsizetype GetString(const QString& section, const QString& key, const QString& defaultValue,
                    QChar* buffer, qsizetype size, const QString& fileName);

// Writes key = value in section. A null key removes the whole section, a null value
// removes the key. Returns false when the file could not be read or written.
bool WriteString(const QString& section, const std::optional<QString>& key,
                 const std::optional<QString>& value, const QString& fileName);

// Several keys of one section with a single rewrite of the file; the result is the same as
// writing them one after the other.
bool WriteStrings(const QString& section, const QList<std::pair<QString, QString>>& values,
                  const QString& fileName);

// The steps of replacing a file, in order. PartWritten comes after each piece of the text.
enum class WriteStep { TempCreated, PartWritten, Synced, Closed, Renamed };

// For tests: called at every step of a file replacement; returning false before Renamed
// makes that step fail. An empty function (the default) lets every step pass.
void setWriteStepHook(std::function<bool(WriteStep)> hook);

} // namespace zf::profile
