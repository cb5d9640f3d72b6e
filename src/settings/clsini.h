#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <utility>

namespace zf {

// One INI file: reads with a default, writes and removal of a section. Holds nothing of the
// file between calls; every call goes to the private-profile functions.
class clsINI {
public:
    static constexpr qsizetype BufferSize = 8192;

    clsINI();

    // The path is kept as given: no check, no normalisation.
    void setFileName(const QString& NewValue) { m_fileName = NewValue; }
    const QString& FileName() const { return m_fileName; }

    // True when a regular, visible file is found at FileName.
    bool FileAvailable() const;

    // The value of the key, or the default (converted to text) when file, section or key
    // are missing; a key present with an empty value gives "". At most 8191 characters.
    QString ReadData(const QString& SectionName, const QString& KeyName,
                     const QVariant& StandardValue = QString());

    // Creates file, section and key as needed. A write the system refuses is lost silently.
    void WriteData(const QString& SectionName, const QString& KeyName, const QString& Value);

    // Several keys of one section written with one rewrite of the file; the file ends up as
    // after one WriteData per key, in order.
    void WriteSection(const QString& SectionName,
                      const QList<std::pair<QString, QString>>& KeysAndValues);

    // Removes the section with all its keys.
    void DeleteSection(const QString& SectionName);

private:
    static bool FileExists(const QString& Path);

    QString m_buffer; // reused by every read
    QString m_fileName;
};

// True when the first-file search for Path finds a file: a regular file whose name does not
// start with "." (hidden). Wildcards "*" and "?" in the last part of the path match names in
// its folder. A folder, a path that cannot be searched or any other error gives false.
bool FileExists(const QString& Path);

} // namespace zf
