// fields/mvvitext.h: a stack of text rows (as mvName) whose values are picked from a list
// of allowed values the office keeps itself (payer codes, program types).
//
//     auto *programs = new mvVIText(form);
//     programs->setSCaption(0, "Programs");  programs->setSFieldName(0, "PROGRAMS");
//     programs->setSVINIFile(userIni);                 // where the list is kept
//     programs->setSVINISec("ValueItems");
//     programs->setSVINIVar("Programs");
//     programs->setRecordSet(rs);
//
// A double click on row i, or SelectVI(i), raises DblClick(i) and then, when the control is
// enabled and not locked, opens the value-list editor (plx::frmVIValues) on row i's value:
// the user keeps the list there (saved at once, whatever happens to the value) and inserts
// values into, or removes them from, the row's value, a comma-joined list such as "PT,OT".
// Unless the user cancels, the edited value is shown in the row, to be written by the edit
// life cycle like any typed value. The editor refuses a value longer than the bound
// field's defined size (no limit for a field without one, such as a memo).
//
// One list per control, shared by its rows. A row has no bAllowNull: an empty value is
// stored as empty text where the field has one.
#pragma once

#include "fields/textstack.h"

namespace plx {

class mvVITextPrivate;

class mvVIText : public TextStack
{
    Q_OBJECT
    Q_PROPERTY(QString sVINIFile READ sVINIFile WRITE setSVINIFile)
    Q_PROPERTY(QString sVINISec READ sVINISec WRITE setSVINISec)
    Q_PROPERTY(QString sVINIVar READ sVINIVar WRITE setSVINIVar)

public:
    explicit mvVIText(QWidget *parent = nullptr);
    ~mvVIText() override;

    // The settings file, section and key of the value list. Any of them blank: the editor
    // works on an empty list that is not kept (a blank file is not the defaults file).
    QString sVINIFile() const;
    void setSVINIFile(const QString &file);
    QString sVINISec() const;
    void setSVINISec(const QString &section);
    QString sVINIVar() const;
    void setSVINIVar(const QString &key);

    // What a double click on row Index does (see above); returns when the editor has
    // closed. A failure on the way is shown as "mvVIText Error " and the step it reached
    // ("set MaxLen" for a row without a record source or with a field the source lacks).
    Q_INVOKABLE void SelectVI(qint16 Index);

    // Row n's text without surrounding blanks. Outside 0..nUbound: a box
    // "mvVIText.sValue array error: n\r\nnUbound" and "".
    Q_INVOKABLE QString sValue(qint16 n) const;

private:
    Q_DECLARE_PRIVATE(mvVIText)
};

} // namespace plx
