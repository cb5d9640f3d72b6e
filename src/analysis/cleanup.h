#pragma once

#include <QString>
#include <QStringView>

namespace zf {

// Cut the wanted piece out of a line that may still carry a label or other words.
// None of them validates anything; a text without its marker comes back unchanged.
QString ExtractWebAddress(QStringView text);
QString ExtractEMailAddress(QStringView text);
QString CleanPhoneNumber(QStringView text);

} // namespace zf
