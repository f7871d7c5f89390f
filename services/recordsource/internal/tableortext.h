// services/recordsource/internal/tableortext.h: what a text given to OpenRecordset names.
//
// The controls hand an engine either a SELECT or a table's name, bare or in brackets,
// whatever the name holds ("my people", "ORDER", "91"). Every engine that takes both tells
// them apart the same way.
#pragma once

#include <QRegularExpression>
#include <QString>

namespace plx {

// A text starting with the word SELECT is a statement; anything else names a table.
inline bool isSelectStatement(const QString &text)
{
    static const QRegularExpression select(QStringLiteral("^SELECT\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    return select.match(text).hasMatch();
}

// A table's name without the brackets around it.
inline QString unbracketedName(QString name)
{
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']')))
        name = name.mid(1, name.size() - 2);
    return name;
}

} // namespace plx
