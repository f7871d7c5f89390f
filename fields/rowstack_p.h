// fields/rowstack_p.h: the rows of a stack and what the stack keeps for all of them; the
// concrete stack (mvName, mvChecks) makes its rows and hears their double clicks.
#pragma once

#include "fields/fieldcontrol_p.h"
#include "fields/rowstack.h"

#include <QList>

#include <exception>

namespace plx {

class RowStackPrivate : public FieldControlPrivate
{
    Q_DECLARE_PUBLIC(RowStack)

public:
    // Makes row `index` (a child of the stack), with the start values of a new row.
    virtual mvRow *createRow(qint16 index) = 0;
    // Row `index` reported a double click.
    virtual void rowDoubleClicked(qint16 index) { Q_UNUSED(index) }

    bool inRange(qint16 n) const { return n >= 0 && n < rows.size(); }
    // Row n (nullptr outside 0..nUbound).
    mvRow *rowAt(qint16 n) const { return inRange(n) ? rows.at(n) : nullptr; }
    // Adds a row below the last one, placed, shown, wired and in the Tab order.
    void addRow();
    void layoutWidths();
    // Makes the stack as high as its rows need, in and out of layouts.
    void fitHeight();
    // Asks every row's binding object to disconnect and releases it.
    void disconnectRows();
    // Calls `fn(row, index)` on every row in order; what one row throws is swallowed, so
    // the others still get their turn.
    template<typename Fn> void forEachRow(Fn fn);

    RowStack *q_ptr = nullptr;
    QList<mvRow *> rows;
    qint16 vspacing = 60;
    int fittedHeight = 0; // pixels: the height the rows need
    mutable qint16 dbfType = 0; // 0 reads as 1 and is stored so
    QString filter;
    qint32 backColor = -1; // -1: the palette's own
    qint32 altGray = 0;

protected:
    void setPartsEnabled(bool enabled) override;
};

template<typename Fn> void RowStackPrivate::forEachRow(Fn fn)
{
    for (qsizetype i = 0; i < rows.size(); ++i) {
        try {
            fn(rows.at(i), qint16(i));
        } catch (const std::exception &) {
            // One row's failure is its own; the others still get their turn.
        } catch (...) {
        }
    }
}

} // namespace plx
