#include "lookup.h"

using namespace Qt::StringLiterals;

namespace zf::dup {

QString reasonName(Reason reason)
{
    switch (reason) {
    case Reason::EMail:
        return u"email"_s;
    case Reason::Name:
        return u"name"_s;
    case Reason::Mobile:
        return u"mobile"_s;
    }
    return {};
}

} // namespace zf::dup
