#include "clsini.h"

#include "privateprofile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <optional>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

bool isVisibleRegularFile(const QString& path)
{
    if (QFileInfo(path).fileName().startsWith(u'.'))
        return false;
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISREG(st.st_mode);
}

} // namespace

bool FileExists(const QString& Path)
{
    if (Path.isEmpty() || Path.contains(QChar(0)) || Path.endsWith(u'/'))
        return false;
    if (isVisibleRegularFile(Path))
        return true;
    const QFileInfo info(Path);
    const QString pattern = info.fileName();
    if (!pattern.contains(u'*') && !pattern.contains(u'?'))
        return false;
    const QDir dir = info.dir();
    const QStringList names = dir.entryList({pattern}, QDir::Files | QDir::CaseSensitive);
    for (const QString& name : names)
        if (isVisibleRegularFile(dir.filePath(name)))
            return true;
    return false;
}

clsINI::clsINI() : m_buffer(BufferSize, u' ') {}

bool clsINI::FileAvailable() const
{
    return FileExists(m_fileName);
}

bool clsINI::FileExists(const QString& Path)
{
    return zf::FileExists(Path);
}

QString clsINI::ReadData(const QString& SectionName, const QString& KeyName,
                         const QVariant& StandardValue)
{
    m_buffer.fill(u' ', BufferSize);
    profile::GetString(SectionName, KeyName, StandardValue.toString(), m_buffer.data(), BufferSize,
                       m_fileName);
    const qsizetype nul = m_buffer.indexOf(QChar(0));
    return nul < 0 ? m_buffer : m_buffer.left(nul);
}

void clsINI::WriteData(const QString& SectionName, const QString& KeyName, const QString& Value)
{
    profile::WriteString(SectionName, KeyName, Value, m_fileName);
}

void clsINI::WriteSection(const QString& SectionName,
                          const QList<std::pair<QString, QString>>& KeysAndValues)
{
    profile::WriteStrings(SectionName, KeysAndValues, m_fileName);
}

void clsINI::DeleteSection(const QString& SectionName)
{
    profile::WriteString(SectionName, std::nullopt, std::nullopt, m_fileName);
}

} // namespace zf
