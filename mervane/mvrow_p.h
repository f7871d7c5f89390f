// mervane/mvrow_p.h: the state every row keeps through the edit life cycle, and the steps
// a concrete row (mvText, mvCheck) fills in: how it shows text, how a stored value reads
// and how typed text is stored.
#pragma once

#include "mervane/mvrow.h"
#include "mervane/rowpalette.h"

#include <QPointer>
#include <QVariant>

#include <optional>

namespace plx {

class mvRowPrivate
{
    Q_DECLARE_PUBLIC(mvRow)

public:
    mvRowPrivate() = default;
    virtual ~mvRowPrivate();
    mvRowPrivate(const mvRowPrivate &) = delete;
    mvRowPrivate &operator=(const mvRowPrivate &) = delete;

    // What the row shows, as text; showing only shows (nothing is checked or written).
    virtual QString currentText() const = 0;
    virtual void showText(const QString &text) = 0;
    // The text shown for a stored value of `field`.
    virtual QString displayOf(const QVariant &stored, const plx::FieldInfo &field) = 0;
    // The value to store for `text`, or std::nullopt and a reason when the field cannot
    // take it.
    virtual std::optional<QVariant> storedOf(const QString &text, const plx::FieldInfo &field,
                                             QString *reason) const = 0;
    // Repaints the background and read-only look after a flag changed.
    virtual void applyLook() = 0;
    // Lays the row's children out in the row's present pixel size.
    virtual void applyGeometryPixels() { }
    virtual void focusChanged(bool hasFocus) { Q_UNUSED(hasFocus) }
    // The colour flags of rows that have them (mvText).
    virtual bool backRed() const { return false; }
    virtual bool backWhite() const { return false; }
    virtual bool backLightGray() const { return false; }

    plx::RowShade shade() const;
    void showProblem(const QString &title, const QString &text, int style) const;
    // Makes a child report double clicks and focus for the row.
    void watch(QWidget *child) const;
    void applyGeometry();
    // The record source and field index the row writes to; nullptr / -1 when unbound.
    std::shared_ptr<plx::RecordSource> source() const;
    int boundField() const;
    // Puts `pending` into the table as Save describes; the failing step's status.
    plx::Status writePending(plx::RecordSource &rs, int index) const;
    QString writeFailure(const plx::Status &status) const;

    mvRow *q_ptr = nullptr;
    plx::Services *services = nullptr;
    QPointer<mvDataBinding> binding;
    bool locked = false;
    qint32 altGray = 0;
    bool editing = false;
    int leftTw = 0;
    int topTw = 0;
    int widthTw = 4800;
    qint16 heightTw = 360;

    QString loadedText; // what UpdateDBF showed: a value equal to it is not written
    // What EditUpdate last put into the record's edit buffer in this edit. A save that
    // fails leaves it there, so the record would save it: the row then writes what it
    // shows at every EditUpdate (typing the loaded value back included) and shows this
    // value when it refuses a later one.
    std::optional<QString> bufferedText;
    QString beforeEdit; // what CancelEdit shows again
    std::optional<QVariant> pending; // written by EditUpdate, not yet known to be saved
    QString problem; // why EditUpdate could not write, reported by Save
    mvRow::Rule rule; // the host's own, asked after the field's checks
};

} // namespace plx
