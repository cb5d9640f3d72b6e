#pragma once

// The embedded SQLite contact book behind the automation interface: what a machine without
// a contact manager or a CardDAV account files its contacts into.

#include "act/automation.h"

#include <QString>

#include <functional>
#include <memory>

namespace zf::act {

// The contact book's path: the explicit file if given (--contacts), else the environment
// variable ZETTELFISCHER_CONTACTS, else zettelfischer/kontakte.sqlite in the user's data folder.
QString contactBookPath(const QString& explicitFile = QString());

// The default book: zettelfischer/kontakte.sqlite in the user's data folder.
QString defaultContactBookPath();

// Told the id of the contact a transfer wrote, once it is stored.
using TransferWritten = std::function<void(qint64 contactId)>;

// The factory that creates the embedded SQLite contact book's objects for that path.
std::shared_ptr<ObjectFactory> makeContactBookFactory(const QString& bookPath,
                                                      TransferWritten written = {});

} // namespace zf::act
