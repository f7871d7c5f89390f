// dialogs/columnfind.h: the browse grid's search of one column.
//
// The user picks a column by its header and types a text; the grid goes to the first
// record whose value in that column contains it, without regard to case. Pressing Find
// again with the same column and text goes on to the next such record; any other column
// or text starts again from the top. A Null value is searched as a single blank, so a
// search for a blank finds the empty cells.
//
// The text goes into the criterion as the user typed it: a quote in it makes a criterion
// the engine refuses, which the grid reports as not found.
#pragma once

#include <QString>

namespace plx {

class ColumnFind
{
public:
    // InStr(Ucase$(IIF(IsNull(F), " ",F)), 'T')>0 for field `field` and the upper-cased
    // text `text`; a field name that is no plain identifier stands in brackets.
    static QString criterion(const QString &field, const QString &text);

    // The input box's prompt, in the words users know it by.
    static QString prompt(const QString &caption);
    // The "Not Found" text for `text` (upper-cased) in the column titled `caption`.
    static QString notFoundText(const QString &text, const QString &caption, bool continuing);

    // Whether a search of `field` for `text` goes on from the last record found.
    bool continues(const QString &field, const QString &text) const;
    // A search found a record: the next one for the same field and text goes on from it.
    void found(const QString &field, const QString &text);
    // The next search starts from the top.
    void restart();

private:
    QString m_field;
    QString m_text;
    bool m_any = false;
};

} // namespace plx
