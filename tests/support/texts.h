// tests/support/texts.h: a list of texts written as literals, to compare with what a query
// or a sort returned.
#pragma once

#include <QStringList>

#include <initializer_list>

namespace plx::test {

inline QStringList texts(std::initializer_list<const char *> utf8)
{
    QStringList out;
    for (const char *item : utf8)
        out << QString::fromUtf8(item);
    return out;
}

inline QStringList texts(std::initializer_list<const char16_t *> utf16)
{
    QStringList out;
    for (const char16_t *item : utf16)
        out << QString::fromUtf16(item);
    return out;
}

} // namespace plx::test
