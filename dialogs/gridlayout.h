// dialogs/gridlayout.h: the column layout a browse grid keeps in the user's settings file.
//
// One settings value holds a grid's columns, left to right: entries joined by "|", each
// entry's items joined by ",":
//
//     NAME,Facility,2400|CITY,City,1500|ID,ID,1200
//
// Item 1 is the field name, item 2 the column title (blank: the field name), item 3 the
// width in twips (blank, 0 or no number: a width fitted to the field). Columns not listed
// are hidden. Entries whose field name is blank (a trailing "|" makes one) are skipped, and
// so is a field listed a second time; items past the third are ignored, so a value written
// by a later version still reads. A damaged value is read as far as it makes sense and
// never fails.
//
// A value type with no widget in it; the grid form turns twips into pixels.
#pragma once

#include <QList>
#include <QString>

namespace plx {

struct GridColumnEntry
{
    QString field;
    QString title;
    int widthTwips = 0; // 0: fit the width to the field

    bool operator==(const GridColumnEntry &) const = default;
};

class GridLayout
{
public:
    GridLayout() = default;
    explicit GridLayout(QList<GridColumnEntry> columns) : m_columns(std::move(columns)) { }

    static GridLayout parse(const QString &value);
    // The value parse() reads back as these columns. A "," or "|" in a title would split
    // the value where it must not, so each is written as a blank.
    QString toString() const;

    const QList<GridColumnEntry> &columns() const { return m_columns; }
    bool isEmpty() const { return m_columns.isEmpty(); }

private:
    QList<GridColumnEntry> m_columns;
};

} // namespace plx
