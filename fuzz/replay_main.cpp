// Runs a fuzz target's entry point over files and folders of inputs without libFuzzer, so the
// seed corpus and every input that once failed are replayed by the ordinary test suite (and
// its sanitizer build) with any compiler.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool replay(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return false;
    }
    const QByteArray bytes = f.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()),
                           size_t(bytes.size()));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FILE|FOLDER...\n", argv[0]);
        return 2;
    }
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        QStringList files{arg};
        if (QFileInfo(arg).isDir()) {
            files.clear();
            const QDir dir(arg);
            for (const QString& name : dir.entryList(QDir::Files, QDir::Name))
                files.append(dir.filePath(name));
        }
        for (const QString& file : files) {
            if (!replay(file))
                return 1;
            ++count;
        }
    }
    if (count == 0) {
        std::fprintf(stderr, "no inputs found\n");
        return 1;
    }
    std::printf("replayed %d inputs\n", count);
    return 0;
}
