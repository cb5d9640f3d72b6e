#pragma once

// The embedded SQLite contact book behind the automation interface: what a machine without
// a contact manager or a CardDAV account files its contacts into.

#include "act/automation.h"
#include "duplicates/directory.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace zf::act {

// The contact book's path: the explicit file if given (--contacts), else the environment
// variable ZETTELFISCHER_CONTACTS, else zettelfischer/kontakte.sqlite in the user's data folder.
QString contactBookPath(const QString& explicitFile = QString());

// The default book: zettelfischer/kontakte.sqlite in the user's data folder.
QString defaultContactBookPath();

// Told the id of the contact a transfer wrote, once it is stored.
using TransferWritten = std::function<void(qint64 contactId)>;

// The contact this program's edits overwrite, once it chose or filed one: shared by a book's
// objects and its directory, so that another program making another contact current does
// not redirect them.
struct ChosenContact {
    std::optional<qint64> id;
};

// The factory that creates the embedded SQLite contact book's objects for that path. With a
// chosen contact, an edit writes into that one (and fails when it is gone) and every transfer
// that wrote makes its contact the chosen one; without, an edit writes into the book's
// current contact.
std::shared_ptr<ObjectFactory> makeContactBookFactory(const QString& bookPath,
                                                      TransferWritten written = {},
                                                      std::shared_ptr<ChosenContact> chosen = {});

// The directory of the book at that path, choosing through chosen.
std::shared_ptr<dup::ContactDirectory>
makeContactBookDirectory(const QString& bookPath, std::shared_ptr<ChosenContact> chosen);

} // namespace zf::act
