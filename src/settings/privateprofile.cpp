#include "privateprofile.h"

#include "encoding.h"

#include <QFile>
#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace zf::profile {

namespace {

// Files up to this size are compared byte by byte on every access, so that a quick
// rewrite within one tick of the file clock is never missed; larger files are trusted by
// their status (size, times, inode), which keeps numbered-key loops over them linear.
constexpr qsizetype CompareLimit = 16 * 1024;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f' || c == '\x1a';
}

QByteArrayView trimmed(QByteArrayView v)
{
    while (!v.isEmpty() && isBlank(v.front()))
        v = v.sliced(1);
    while (!v.isEmpty() && isBlank(v.back()))
        v.chop(1);
    return v;
}

QString trimmedText(QStringView s)
{
    qsizetype b = 0;
    qsizetype e = s.size();
    const auto blank = [](QChar c) { return c.unicode() < 0x80 && isBlank(char(c.unicode())); };
    while (b < e && blank(s[b]))
        ++b;
    while (e > b && blank(s[e - 1]))
        --e;
    return s.sliced(b, e - b).toString();
}

// What an ANSI C string made of the text holds.
QString cString(const QString& s)
{
    const qsizetype nul = s.indexOf(QChar(0));
    return nul < 0 ? s : s.left(nul);
}

struct Line {
    qsizetype start = 0;
    qsizetype end = 0;  // past the text, before the line break
    qsizetype next = 0; // start of the following line
    qsizetype eq = -1;  // the "=" of a key line
};

struct Section {
    qsizetype header = 0; // line index of "[name]"
    qsizetype end = 0;    // line index past the section
    QHash<QString, qsizetype> keys;
};

struct Document {
    QByteArray data;
    bool utf8 = false;
    QByteArray lineBreak = "\r\n"; // as the file's first line ends; CR LF for a new file
    QList<Line> lines;
    QList<Section> sections;
    QHash<QString, qsizetype> sectionIndex; // the first section of each name

    QString decode(QByteArrayView v) const { return utf8 ? QString::fromUtf8(v) : DecodeAnsi(v); }
    QByteArray encode(const QString& s) const { return utf8 ? s.toUtf8() : EncodeAnsi(s); }
    // The name as the file would hold it, folded for comparison.
    QString lookupName(const QString& name) const
    {
        return trimmedText(utf8 ? cString(name) : DecodeAnsi(EncodeAnsi(cString(name))))
            .toCaseFolded();
    }
    QByteArrayView lineText(const Line& l) const
    {
        return QByteArrayView(data).sliced(l.start, l.end - l.start);
    }
};

void parse(Document& doc)
{
    const QByteArray& d = doc.data;
    const char* const base = d.constData();
    const qsizetype size = d.size();
    qsizetype pos = 0;
    if (d.startsWith("\xEF\xBB\xBF")) {
        doc.utf8 = true;
        pos = 3;
    } else {
        doc.utf8 = IsUtf8Text(d);
    }
    if (const qsizetype nl = d.indexOf('\n'); nl >= 0)
        doc.lineBreak = nl > 0 && d[nl - 1] == '\r' ? "\r\n" : "\n";
    Section* current = nullptr;
    while (pos < size) {
        Line line;
        line.start = pos;
        const void* nl = std::memchr(base + pos, '\n', size_t(size - pos));
        line.next = nl ? static_cast<const char*>(nl) - base + 1 : size;
        line.end = nl ? line.next - 1 : size;
        if (line.end > line.start && base[line.end - 1] == '\r')
            --line.end;
        pos = line.next;

        const QByteArrayView text = trimmed(doc.lineText(line));
        const qsizetype index = doc.lines.size();
        if (text.startsWith('[')) {
            const qsizetype close = text.indexOf(']');
            if (close > 0) {
                if (current)
                    current->end = index;
                doc.sections.append(Section{index, index, {}});
                current = &doc.sections.back();
                const QString name = doc.decode(trimmed(text.sliced(1, close - 1))).toCaseFolded();
                if (!doc.sectionIndex.contains(name))
                    doc.sectionIndex.insert(name, doc.sections.size() - 1);
                doc.lines.append(line);
                continue;
            }
        }
        const qsizetype eq = doc.lineText(line).indexOf('=');
        if (eq >= 0 && current) {
            line.eq = line.start + eq;
            const QString key =
                doc.decode(trimmed(QByteArrayView(d).sliced(line.start, eq))).toCaseFolded();
            if (!current->keys.contains(key))
                current->keys.insert(key, index);
        }
        doc.lines.append(line);
    }
    if (current)
        current->end = doc.lines.size();
}

enum class Status { Ok, Missing, Unusable };

struct Loaded {
    Status status = Status::Missing;
    std::shared_ptr<const Document> doc;
};

struct FileStamp {
    dev_t dev = 0;
    ino_t ino = 0;
    off_t size = 0;
    timespec mtime{};
    timespec ctime{};
    bool operator==(const FileStamp& o) const
    {
        return dev == o.dev && ino == o.ino && size == o.size && mtime.tv_sec == o.mtime.tv_sec &&
               mtime.tv_nsec == o.mtime.tv_nsec && ctime.tv_sec == o.ctime.tv_sec &&
               ctime.tv_nsec == o.ctime.tv_nsec;
    }
};

// The last file used, parsed: the platform keeps its profile files cached the same way.
struct Cache {
    QMutex mutex;
    QString path;
    FileStamp stamp;
    std::shared_ptr<const Document> doc;
};

Cache& cache()
{
    static Cache c;
    return c;
}

std::optional<FileStamp> stampOf(const QString& fileName, Status& status)
{
    struct stat st {};
    if (::stat(QFile::encodeName(fileName).constData(), &st) != 0) {
        status = errno == ENOENT ? Status::Missing : Status::Unusable;
        return std::nullopt;
    }
    if (!S_ISREG(st.st_mode)) {
        status = Status::Unusable;
        return std::nullopt;
    }
    status = Status::Ok;
    return FileStamp{st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim};
}

// Caller holds the cache mutex.
Loaded load(const QString& fileName)
{
    if (fileName.isEmpty())
        return {Status::Unusable, nullptr};
    Cache& c = cache();
    Status status = Status::Ok;
    const std::optional<FileStamp> stamp = stampOf(fileName, status);
    if (!stamp)
        return {status, nullptr};
    if (stamp->size > MaxFileSize)
        return {Status::Unusable, nullptr};
    const bool samePath = c.doc && c.path == fileName;
    if (samePath && c.stamp == *stamp && stamp->size > CompareLimit)
        return {Status::Ok, c.doc};

    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {Status::Unusable, nullptr};
    // The file may have grown since its status was taken. Read in pieces: asking for the
    // limit at once allocates all of it on every read of a key.
    QByteArray data;
    data.reserve(qsizetype(stamp->size));
    while (data.size() <= MaxFileSize) {
        const QByteArray piece = file.read(qMin<qint64>(64 * 1024, MaxFileSize + 1 - data.size()));
        if (piece.isEmpty())
            break;
        data += piece;
    }
    if (file.error() != QFileDevice::NoError || data.size() > MaxFileSize)
        return {Status::Unusable, nullptr};
    if (samePath && c.doc->data == data) {
        c.stamp = *stamp;
        return {Status::Ok, c.doc};
    }
    auto doc = std::make_shared<Document>();
    doc->data = std::move(data);
    parse(*doc);
    c.path = fileName;
    c.stamp = *stamp;
    c.doc = doc;
    return {Status::Ok, doc};
}

std::function<bool(WriteStep)>& writeStepHook()
{
    static std::function<bool(WriteStep)> hook;
    return hook;
}

bool stepPasses(WriteStep step)
{
    return !writeStepHook() || writeStepHook()(step);
}

bool writeAll(int fd, const QByteArray& data)
{
    // Pieces, so that a stop in the middle of the text can be tried out.
    constexpr qsizetype Piece = 16 * 1024;
    for (qsizetype done = 0; done < data.size();) {
        const ssize_t n =
            ::write(fd, data.constData() + done, size_t(std::min(Piece, data.size() - done)));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
        if (!stepPasses(WriteStep::PartWritten))
            return false;
    }
    return true;
}

// A new, empty file beside the target; its name is hidden, so it never counts as a settings
// file. The mode follows the umask like any new file.
int createTemporary(const QByteArray& target, QByteArray& tempName)
{
    const qsizetype slash = target.lastIndexOf('/');
    const QByteArray dir = slash < 0 ? QByteArray(".") : target.first(slash + 1);
    const QByteArray base = target.sliced(slash + 1);
    for (int attempt = 0; attempt < 100; ++attempt) {
        tempName = (slash < 0 ? QByteArray() : dir) + '.' + base + '.' +
                   QByteArray::number(QRandomGenerator::global()->generate(), 36);
        const int fd = ::open(tempName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

void syncFolderOf(const QByteArray& target)
{
    const qsizetype slash = target.lastIndexOf('/');
    const QByteArray dir = slash < 0 ? QByteArray(".") : slash == 0 ? "/" : target.first(slash);
    const int fd = ::open(dir.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// Caller holds the cache mutex. Replaces the file as a whole: a temporary file in the same
// folder, flushed to disk, renamed over the old one. A link is followed and stays a link;
// mode and, where allowed, owner stay those of the old file. On failure the old file is
// left as it was.
bool replaceFile(const QString& fileName, const QByteArray& data)
{
    QByteArray target = QFile::encodeName(fileName);
    if (char* real = ::realpath(target.constData(), nullptr)) {
        target = real;
        std::free(real);
    }
    struct stat st {};
    const bool exists = ::stat(target.constData(), &st) == 0;
    if (exists && !S_ISREG(st.st_mode))
        return false;
    // A file without any write permission counts as read-only even for the superuser.
    if (exists && ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 ||
                   ::access(target.constData(), W_OK) != 0))
        return false;

    QByteArray tempName;
    int fd = createTemporary(target, tempName);
    if (fd < 0)
        return false;
    bool ok = stepPasses(WriteStep::TempCreated);
    if (ok && exists) {
        // Only the superuser may hand the file back to its owner; others keep it anyway.
        if (::fchown(fd, st.st_uid, st.st_gid) != 0 && errno != EPERM)
            ok = false;
        ok = ok && ::fchmod(fd, st.st_mode & 07777) == 0;
    }
    ok = ok && writeAll(fd, data);
    ok = ok && ::fsync(fd) == 0 && stepPasses(WriteStep::Synced);
    const bool closed = ::close(fd) == 0;
    ok = ok && closed && stepPasses(WriteStep::Closed);
    ok = ok && ::rename(tempName.constData(), target.constData()) == 0;
    if (!ok) {
        ::unlink(tempName.constData());
        return false;
    }
    stepPasses(WriteStep::Renamed); // too late to fail: the new text is in place
    syncFolderOf(target);
    return true;
}

// Caller holds the cache mutex.
bool store(const QString& fileName, const QByteArray& data)
{
    Cache& c = cache();
    c.doc.reset();
    if (!replaceFile(fileName, data))
        return false;
    Status status = Status::Ok;
    if (const std::optional<FileStamp> stamp = stampOf(fileName, status)) {
        auto doc = std::make_shared<Document>();
        doc->data = data;
        parse(*doc);
        c.path = fileName;
        c.stamp = *stamp;
        c.doc = doc;
    }
    return true;
}

// A value must stay on its own line.
QString oneLine(const QString& s)
{
    QString out = cString(s);
    out.replace(u'\r', u' ');
    out.replace(u'\n', u' ');
    return out;
}

QString readValue(const Document& doc, const Line& line)
{
    const QString value = trimmedText(
        doc.decode(QByteArrayView(doc.data).sliced(line.eq + 1, line.end - line.eq - 1)));
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
        value.back() == value.front())
        return value.sliced(1, value.size() - 2);
    return value;
}

bool isBlankLine(const Document& doc, const Line& line)
{
    return trimmed(doc.lineText(line)).isEmpty();
}

QByteArray withoutLines(const Document& doc, qsizetype first, qsizetype last)
{
    QByteArray out = doc.data;
    const qsizetype from = doc.lines[first].start;
    out.remove(from, doc.lines[last].next - from);
    return out;
}

} // namespace

void setWriteStepHook(std::function<bool(WriteStep)> hook)
{
    QMutexLocker lock(&cache().mutex);
    writeStepHook() = std::move(hook);
}

qsizetype GetString(const QString& section, const QString& key, const QString& defaultValue,
                    QChar* buffer, qsizetype size, const QString& fileName)
{
    if (size <= 0)
        return 0;
    QString value;
    bool found = false;
    {
        QMutexLocker lock(&cache().mutex);
        const Loaded loaded = load(fileName);
        if (loaded.doc) {
            const Document& doc = *loaded.doc;
            const qsizetype s = doc.sectionIndex.value(doc.lookupName(section), -1);
            if (s >= 0) {
                const qsizetype l = doc.sections[s].keys.value(doc.lookupName(key), -1);
                if (l >= 0) {
                    value = readValue(doc, doc.lines[l]);
                    found = true;
                }
            }
        }
    }
    if (!found) {
        value = DecodeAnsi(EncodeAnsi(cString(defaultValue)));
        while (value.endsWith(u' '))
            value.chop(1);
    }
    const qsizetype n = std::min(value.size(), size - 1);
    std::copy_n(value.constData(), n, buffer);
    buffer[n] = QChar(0);
    return n;
}

bool WriteString(const QString& section, const std::optional<QString>& key,
                 const std::optional<QString>& value, const QString& fileName)
{
    if (key && value)
        return WriteStrings(section, {{*key, *value}}, fileName);

    QMutexLocker lock(&cache().mutex);
    const Loaded loaded = load(fileName);
    if (loaded.status != Status::Ok)
        return loaded.status == Status::Missing; // nothing there to remove
    const Document& doc = *loaded.doc;
    const qsizetype s = doc.sectionIndex.value(doc.lookupName(section), -1);
    if (s < 0)
        return true;
    const Section& sec = doc.sections[s];
    if (!key)
        return store(fileName, withoutLines(doc, sec.header, sec.end - 1));
    const qsizetype l = sec.keys.value(doc.lookupName(*key), -1);
    return l < 0 || store(fileName, withoutLines(doc, l, l));
}

bool WriteStrings(const QString& section, const QList<std::pair<QString, QString>>& values,
                  const QString& fileName)
{
    QMutexLocker lock(&cache().mutex);
    const Loaded loaded = load(fileName);
    if (loaded.status == Status::Unusable)
        return false;
    static const Document noFile;
    const Document& doc = loaded.doc ? *loaded.doc : noFile;

    // One entry per key, where the key first appears, with the last value given for it.
    struct Entry {
        QString name;
        QString folded;
        QString value;
    };
    QList<Entry> entries;
    QHash<QString, qsizetype> byName;
    for (const auto& [k, v] : values) {
        const QString name = trimmedText(oneLine(k));
        const QString folded = doc.lookupName(name);
        if (const qsizetype i = byName.value(folded, -1); i >= 0) {
            entries[i].value = oneLine(v);
        } else {
            byName.insert(folded, entries.size());
            entries.append({name, folded, oneLine(v)});
        }
    }
    if (entries.isEmpty())
        return true;
    const auto newLine = [&doc](QByteArrayView name, const QString& value) {
        return name.toByteArray() + '=' + doc.encode(value) + doc.lineBreak;
    };

    QByteArray out;
    const qsizetype s = doc.sectionIndex.value(doc.lookupName(section), -1);
    if (s < 0) {
        out = doc.data;
        if (!out.isEmpty() && !out.endsWith('\n'))
            out += doc.lineBreak;
        out += '[' + doc.encode(trimmedText(oneLine(section))) + ']' + doc.lineBreak;
        for (const Entry& e : entries)
            out += newLine(doc.encode(e.name), e.value);
    } else {
        const Section& sec = doc.sections[s];
        QHash<qsizetype, qsizetype> replaceAt; // line index -> entry
        QByteArray appended;
        for (qsizetype i = 0; i < entries.size(); ++i) {
            if (const qsizetype l = sec.keys.value(entries[i].folded, -1); l >= 0)
                replaceAt.insert(l, i);
            else
                appended += newLine(doc.encode(entries[i].name), entries[i].value);
        }
        // New keys go behind the section's last line that is not blank.
        qsizetype insertAfter = sec.end - 1;
        while (insertAfter > sec.header && isBlankLine(doc, doc.lines[insertAfter]))
            --insertAfter;

        out.reserve(doc.data.size() + appended.size() + 64);
        const QByteArrayView data(doc.data);
        out += data.first(doc.lines.isEmpty() ? data.size() : doc.lines.front().start);
        for (qsizetype l = 0; l < doc.lines.size(); ++l) {
            const Line& line = doc.lines[l];
            if (const qsizetype i = replaceAt.value(l, -1); i >= 0) {
                out += newLine(trimmed(data.sliced(line.start, line.eq - line.start)),
                               entries[i].value);
            } else {
                out += data.sliced(line.start, line.next - line.start);
                if (l == insertAfter && !appended.isEmpty() && data[line.next - 1] != '\n')
                    out += doc.lineBreak; // the file's last line had no line break
            }
            if (l == insertAfter)
                out += appended;
        }
    }
    if (loaded.doc && out == doc.data)
        return true;
    return store(fileName, out);
}

} // namespace zf::profile
