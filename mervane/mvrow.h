// mervane/mvrow.h: what the row controls mvText and mvCheck share.
//
// A row shows one field of the current record of its binding's record source and takes
// part in the edit life cycle its stack forwards:
//
//   UpdateDBF()   loads the field of the current record (or of the edit buffer) and shows
//                 it; this is also the "before" state CancelEdit returns to
//   Edit()        enters editing and remembers what is shown
//   bValidate()   refuses a changed value the field cannot take, with a reason
//   EditUpdate()  ends editing; a changed value goes into the record source's edit buffer
//   CancelEdit()  ends editing and shows again exactly what was shown before Edit
//   Save()        makes sure the value written by EditUpdate reaches the table
//
// Save exists because the back ends drop their edit buffer when Edit() is called on a
// record that is already in edit, and the navigator does exactly that before it stamps and
// updates the record. So a row keeps the value it wrote until it knows the value is in the
// table: Save commits the buffer while the record is still in edit (or, when the buffer is
// gone, edits the record itself), and the navigator's own Edit then starts from the saved
// values. Only values that changed are ever written.
#pragma once

#include "mervane/mvdatabinding.h"

#include "services/env.h"
#include "services/recordsource/status.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace plx {

class mvRowPrivate;

class mvRow : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString sCaption READ sCaption WRITE setSCaption)
    Q_PROPERTY(QString Text READ Text WRITE setText)
    Q_PROPERTY(QString Value READ Value WRITE setValue)
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked)
    Q_PROPERTY(qint32 lAltGrayColor READ lAltGrayColor WRITE setLAltGrayColor)
    Q_PROPERTY(qint16 iHeight READ iHeight WRITE setIHeight)

public:
    ~mvRow() override;

    // Where the row's boxes go; nullptr: the library-wide defaults.
    void setServices(plx::Services *services);

    // The text beside the value; also names the row in validation and save messages.
    virtual QString sCaption() const = 0;
    virtual void setSCaption(const QString &caption) = 0;

    // What the row shows. Value is the same text; both names exist because hosts use both.
    // Setting either only shows the text (nothing is validated or written, and a locked row
    // takes it too); a later EditUpdate writes it when it differs from what UpdateDBF loaded.
    QString Text() const;
    void setText(const QString &text);
    QString Value() const;
    void setValue(const QString &value);

    // A locked row keeps the focus and can be read, but the user cannot change its value;
    // it takes the form's Window colour unless a colour flag or the alternate grey is set.
    // Program writes (setText/setValue) still work.
    bool Locked() const;
    void setLocked(bool locked);
    // Non-zero: the row shows the alternate grey (every other row of a long stack).
    qint32 lAltGrayColor() const;
    void setLAltGrayColor(qint32 altGray);

    // Geometry in twips (1440 to the logical inch), kept in twips so that laying rows out
    // row by row never accumulates rounding. Negative heights and widths become 0; the row's
    // pixel geometry follows at once.
    qint16 iHeight() const;
    void setIHeight(qint16 twips);
    int leftTwips() const;
    int topTwips() const;
    int widthTwips() const;
    void setTwipsGeometry(int left, int top, int width);

    // The binding object, made on first use (so never nullptr; asking makes one);
    // releaseDataBinding() deletes it without closing anything itself (its destructor
    // disconnects), and hasDataBinding() asks without making one.
    Q_INVOKABLE mvDataBinding *DataBinding();
    bool hasDataBinding() const;
    void releaseDataBinding();

    // True between Edit() and EditUpdate()/CancelEdit().
    bool isEditing() const;

    // Shows the bound field of the current record (or of the edit buffer); no current record
    // or Null shows "". InvalidArgument without a record source (nothing changes),
    // UnknownField when the source lacks the field (the row then shows ""). With a source,
    // forgets a value EditUpdate wrote that Save has not saved yet.
    Q_INVOKABLE plx::Status UpdateDBF();
    // Remembers what is shown for CancelEdit; does not unlock the row.
    Q_INVOKABLE void Edit();
    // Ends editing. A value that differs from the loaded one and that the field takes is
    // written into the record source's edit buffer when there is one, else kept for Save;
    // a refused or unbound value is not written and Save reports why. Shows no box.
    Q_INVOKABLE void EditUpdate();
    // Ends editing, drops a value not yet saved and shows the text from before Edit (or from
    // the last UpdateDBF when Edit was not called).
    Q_INVOKABLE void CancelEdit();
    // True when the row accepts its value. A changed value that the field cannot take
    // gives false and a reason in words for the user ("is longer than 10 characters"),
    // which the stack puts behind the caption. A value the field takes is then put to the
    // host's rule (hostRefusal) while the row is unlocked; its reason is reported alike.
    // Not silent: the row also shows the reason in a box.
    Q_INVOKABLE bool bValidate(bool bSilent, QString *reason);

    // A host's own rule for the row ("is required", "must be a ZIP code"): given the shown
    // text it returns "" to accept, or the reason it refuses. An empty Rule removes it.
    // bValidate asks it only while the row is unlocked: a locked row shows the record as
    // stored, which the user cannot change there, so the navigator's question before it
    // unlocks the rows for an edit never refuses a record over a rule the user could not
    // yet satisfy.
    using Rule = std::function<QString(const QString &text)>;
    void setRule(Rule rule);
    // The reason the rule, then a slot connected to Validate, gives for the shown text;
    // "" when both accept (or there is neither). Asked whether or not the row is locked.
    QString hostRefusal();
    // "" when the row's value is in the table (or nothing was to be written), else why not;
    // a failure is also shown to the user ("Value Not Saved"), because the stack does not
    // report it. A record in Edit is updated here; one in AddNew only gets the value (its
    // owner appends it); with no edit under way the record is edited and updated only when
    // the table does not already hold the value. A failed update is cancelled.
    Q_INVOKABLE QString Save();

Q_SIGNALS:
    // A double click on any part of the row.
    void DblClick();
    // Asked after the rule accepted, for a host that connects (a form loaded by name, a
    // script) rather than sets a rule: a slot refuses by setting `sReason`. The reason
    // travels back through the reference, so only direct connections can refuse.
    void Validate(const QString &sValue, QString &sReason);

protected:
    // Takes `dd`, the state of the concrete row (mvText, mvCheck).
    mvRow(std::unique_ptr<mvRowPrivate> dd, QWidget *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

    const std::unique_ptr<mvRowPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(mvRow)
};

} // namespace plx
