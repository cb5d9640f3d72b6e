// Any settings file content: loading must finish, and a save and reload keeps the list.

#include "settings/clsini.h"
#include "settings/settings.h"

#include <QFile>
#include <QTemporaryDir>

#include "require.h"

#include <cstddef>
#include <cstdint>

using namespace Qt::StringLiterals;
using namespace zf;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(u"zettelfischer.ini"_s);
    {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        f.write(reinterpret_cast<const char*>(data), qint64(size));
    }

    SharedState state;
    FieldRows rows;
    rows.FillDefaultFieldLists();
    LoadSettings(path, state, rows);
    require(state.ExtraDefinitionsLoaded == !state.ExtraDefinitions.isEmpty());

    clsINI ini;
    ini.setFileName(path);
    const QString value = ini.ReadData(u"Config"_s, u"StandardLand5PLZ"_s, u"x"_s);
    require(value.size() <= 8191);

    // Writing the cache and loading it again must give the same list when the cache is on.
    if (ini.ReadData(u"Config"_s, u"CacheFelder"_s, u"0"_s) == u"1"_s) {
        SaveFieldCache(path, rows);
        SharedState again;
        FieldRows reloaded;
        reloaded.FillDefaultFieldLists();
        LoadSettings(path, again, reloaded);
        require(reloaded.fields().count() == rows.fields().count() || rows.fields().count() == 0);
    }
    return 0;
}
