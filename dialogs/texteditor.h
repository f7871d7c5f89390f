// dialogs/texteditor.h: a modal editor for a memo or any long text, with printing.
//
// Word wrap (on by default), find and replace, undo and redo, a read-only mode for looking
// at and printing a text that may not be changed, and the number of characters against the
// field's maximum. OK refuses a text longer than the maximum with a box ("Text Too Long"),
// so a text is never cut without the user knowing; Cancel and closing the window keep
// nothing. Printing goes through Qt's print support: the print dialog, a preview, or a PDF
// file; every page carries the print header naming what is printed, above the text.
//
//     plx::TextEditorDialog editor(form);
//     editor.setServices(services);
//     editor.setWindowTitle(QStringLiteral("Notes"));
//     editor.setPrintHeader(QStringLiteral("Notes of SMITH, JOHN"));
//     editor.setText(notes);
//     editor.setMaxLength(fieldSize);            // 0: no maximum
//     if (editor.exec() == QDialog::Accepted)
//         notes = editor.text();
#pragma once

#include "services/env.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPrinter;
class QWidget;

namespace plx {

class TextEditorDialog : public QDialog
{
    Q_OBJECT

public:
    explicit TextEditorDialog(QWidget *parent = nullptr);

    // Where the boxes go; nullptr: the library-wide defaults.
    void setServices(Services *services) { m_services = services; }

    QString text() const;
    // Starts a new undo history. A text longer than the maximum is shown whole (and counted
    // in red); only OK refuses it.
    void setText(const QString &text);
    // 0: no maximum.
    int maxLength() const { return m_maxLength; }
    void setMaxLength(int maxLength);
    bool isReadOnly() const;
    void setReadOnly(bool readOnly);
    bool wordWrap() const;
    void setWordWrap(bool wrap);
    // The line printed above the text on every page.
    QString printHeader() const { return m_printHeader; }
    void setPrintHeader(const QString &header) { m_printHeader = header; }

    // The count line: "12 characters" or "12 of 250 characters".
    QString countText() const;

    // Finds `what` after the cursor, wrapping round to the start once; selects it and
    // returns true. Not found: an information box "Find" and false.
    bool findNext(const QString &what, bool matchCase = false);
    // Replaces the selection when it is `what`, then finds the next one.
    void replaceNext(const QString &what, const QString &with, bool matchCase = false);
    // Replaces every occurrence in one undo step; returns how many.
    int replaceAll(const QString &what, const QString &with, bool matchCase = false);

    // Prints the header and the text on `printer` (any QPrinter, a PDF one included).
    void print(QPrinter *printer) const;
    // Writes the printout to a PDF file; false when the file could not be written.
    bool printToPdf(const QString &path) const;
    // The print dialog and the print preview, for the user.
    void printWithDialog();
    void printPreview();

    // OK: accepts unless the text is longer than the maximum (then the box and stays open).
    void accept() override;

private:
    QWidget *buildFindBar();
    void updateCount();

    Services *m_services = nullptr;
    int m_maxLength = 0;
    QString m_printHeader;
    QPlainTextEdit *m_edit = nullptr;
    QLineEdit *m_find = nullptr;
    QLineEdit *m_replace = nullptr;
    QCheckBox *m_matchCase = nullptr;
    QCheckBox *m_wrap = nullptr;
    QLabel *m_count = nullptr;
    QWidget *m_replaceParts = nullptr;
};

} // namespace plx
