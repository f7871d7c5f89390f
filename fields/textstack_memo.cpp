// fields/textstack_memo.cpp: a text stack opens the text editor on a row, for memos.
#include "fields/textstack.h"
#include "fields/textstack_p.h"

#include "dialogs/texteditor.h"

#include "services/recordsource/recordsource.h"

#include <QKeyEvent>

namespace plx {

namespace {

// The longest value row `r` may hold: the smaller of its MaxLength and its field's defined
// size, each counted only when set; 0 for no limit.
int lengthLimitOf(mvText *r)
{
    int limit = r->MaxLength();
    if (const auto source = r->DataBinding()->RecordSet()) {
        const int index = source->fieldIndex(r->DataBinding()->sFieldName());
        const int size = index < 0 ? 0 : source->fieldInfos().at(index).size;
        if (size > 0 && source->fieldInfos().at(index).type == plx::FieldType::Text)
            limit = limit > 0 ? qMin(limit, size) : size;
    }
    return limit;
}

} // namespace

void TextStack::EditText(qint16 n)
{
    Q_D(TextStack);
    mvText *r = d->textRow(n);
    if (!r)
        return;
    plx::TextEditorDialog editor(window());
    editor.setServices(d->services);
    editor.setWindowTitle(r->sCaption());
    editor.setPrintHeader(r->sCaption());
    editor.setText(r->Value());
    editor.setMaxLength(lengthLimitOf(r));
    editor.setReadOnly(r->Locked() || !isEnabled());
    if (editor.exec() == QDialog::Accepted && !editor.isReadOnly())
        r->setValue(editor.text());
}

void TextStack::keyPressEvent(QKeyEvent *event)
{
    // A row's editor leaves keys it has no use for to its row, and the row to the stack.
    if (event->key() == Qt::Key_F2 && event->modifiers() == Qt::ShiftModifier) {
        Q_D(TextStack);
        const QWidget *focus = focusWidget(); // the stack's part that has or last had the focus
        for (qint16 i = 0; i <= nUbound(); ++i) {
            mvText *r = d->textRow(i);
            if (r->isMultiLine() && focus && r->isAncestorOf(focus)) {
                EditText(i);
                event->accept();
                return;
            }
        }
    }
    RowStack::keyPressEvent(event);
}

} // namespace plx
