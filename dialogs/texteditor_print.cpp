// dialogs/texteditor_print.cpp: the editor's printout: the header above the text, on a
// printer, in the preview, or in a PDF file.
#include "dialogs/texteditor.h"

#include <QFileInfo>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QTextCursor>
#include <QTextDocument>

#include <memory>

namespace plx {

namespace {

// The document that is printed: the header in bold, a blank line, then the text as plain
// text in the editor's font. QTextDocument::print adds the page numbers.
std::unique_ptr<QTextDocument> printout(const QString &header, const QString &text,
                                        const QFont &font)
{
    auto doc = std::make_unique<QTextDocument>();
    doc->setDefaultFont(font);
    QTextCursor cursor(doc.get());
    if (!header.isEmpty()) {
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        bold.setFontPointSize(font.pointSizeF() + 2);
        cursor.insertText(header, bold);
        cursor.insertBlock();
        cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
    }
    cursor.insertText(text, QTextCharFormat());
    return doc;
}

} // namespace

void TextEditorDialog::print(QPrinter *printer) const
{
    printout(m_printHeader, text(), m_edit->font())->print(printer);
}

bool TextEditorDialog::printToPdf(const QString &path) const
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setDocName(m_printHeader);
    print(&printer);
    return QFileInfo(path).size() > 0;
}

void TextEditorDialog::printWithDialog()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(m_printHeader);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted)
        print(&printer);
}

void TextEditorDialog::printPreview()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(m_printHeader);
    QPrintPreviewDialog preview(&printer, this);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *target) { print(target); });
    preview.exec();
}

} // namespace plx
