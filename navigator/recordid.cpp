// navigator/recordid.cpp
#include "navigator/recordid_p.h"

#include "services/cp1252.h"
#include "services/texthelpers.h"

namespace plx {

QString PLXIDIncrement(const QString &key, const std::function<void(const QString &)> &log)
{
    QString next = key;
    qint32 k = getLenTrim(key);
    while (k >= 1) {
        if (k < 4 && log)
            log(QStringLiteral("Error in PLXIDIncrement; k=") + QString::number(k));
        int code = cp1252::fromUnicode(next[k - 1], 0);
        bool carry = false;
        do {
            ++code;
            if (code > 255) {
                code -= 255;
                carry = true;
            }
        } while (code == 32);
        next[k - 1] = cp1252::toUnicode(static_cast<unsigned char>(code));
        if (!carry)
            break;
        --k;
    }
    return next;
}

} // namespace plx
