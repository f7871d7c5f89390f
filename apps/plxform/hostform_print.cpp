// apps/plxform/hostform_print.cpp: the File menu's Print and Print Preview: the record as
// the form shows it, as text, printed by the text editor's printing so that a record and a
// memo come out of the printer alike.
#include "apps/plxform/hostform.h"

#include "dialogs/texteditor.h"

#include <memory>

namespace plx::form {

namespace {

// "Caption: value"; a value of several lines (a memo) goes on below, indented, so the
// caption still stands out at the left.
QString printedLine(const QString &caption, const QString &value)
{
    QStringList lines = value.trimmed().split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = line.trimmed();
    QString text = caption + QLatin1Char(':');
    if (!lines.first().isEmpty())
        text += QLatin1Char(' ') + lines.first();
    for (qsizetype i = 1; i < lines.size(); ++i)
        text += QStringLiteral("\n    ") + lines[i];
    return text;
}

QString yesNo(bool checked)
{
    return checked ? QStringLiteral("Yes") : QStringLiteral("No");
}

// The editor is never shown: it lends the form its printing (dialog, preview, PDF).
std::unique_ptr<TextEditorDialog> recordPrinter(QWidget *parent, Services *services,
                                                const QString &header, const QString &text)
{
    auto editor = std::make_unique<TextEditorDialog>(parent);
    editor->setServices(services);
    editor->setPrintHeader(header);
    editor->setText(text);
    editor->setReadOnly(true);
    return editor;
}

} // namespace

QString HostForm::printHeader() const
{
    QString header = m_form.desc;
    if (m_nav)
        header += QLatin1Char(' ') + m_nav->sCurrentID().trimmed();
    for (qint16 n = 0; m_rows && n <= m_rows->nUbound(); ++n)
        if (m_rows->sFieldName(n).compare(m_form.descField, Qt::CaseInsensitive) == 0
            && !m_rows->sValue(n).isEmpty())
            header += QStringLiteral(" - ") + m_rows->sValue(n);
    return header;
}

QString HostForm::printText() const
{
    QStringList lines;
    for (qint16 n = 0; m_rows && n <= m_rows->nUbound(); ++n)
        lines << printedLine(m_rows->sCaption(n), m_rows->textRow(n)->Value());
    for (const QPointer<mvVIText> &valueRow : m_valueRows)
        if (valueRow)
            lines << printedLine(valueRow->sCaption(0), valueRow->textRow(0)->Value());
    for (qint16 n = 0; m_checks && !m_checks->isHidden() && n <= m_checks->nUbound(); ++n)
        lines << printedLine(m_checks->checkRow(n)->sCaption(),
                             yesNo(m_checks->checkRow(n)->Checked()));
    for (const QPointer<mvChkWithTxt> &pair : m_pairs) {
        if (!pair)
            continue;
        lines << printedLine(pair->sCaptionChk(), yesNo(pair->checkBox()->Checked()));
        for (qint16 n = 0; n <= pair->nUbound(); ++n)
            lines << printedLine(pair->sCaptionTxt(n), pair->sValueTxt(n));
    }
    return lines.join(QLatin1Char('\n'));
}

void HostForm::printRecord()
{
    recordPrinter(this, m_services, printHeader(), printText())->printWithDialog();
}

void HostForm::previewRecord()
{
    recordPrinter(this, m_services, printHeader(), printText())->printPreview();
}

bool HostForm::printRecordToPdf(const QString &path) const
{
    return recordPrinter(nullptr, m_services, printHeader(), printText())->printToPdf(path);
}

} // namespace plx::form
