// dialogs/texteditor.cpp: the editor's parts, its count, find and replace, and OK.
#include "dialogs/texteditor.h"

#include "services/prompter.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QVBoxLayout>

namespace plx {

namespace {

QTextDocument::FindFlags flagsFor(bool matchCase)
{
    return matchCase ? QTextDocument::FindCaseSensitively : QTextDocument::FindFlags();
}

QPushButton *button(const QString &text, const char *name)
{
    auto *b = new QPushButton(text);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    return b;
}

} // namespace

TextEditorDialog::TextEditorDialog(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmTextEdit"));
    setWindowTitle(QStringLiteral("Text"));
    m_edit = new QPlainTextEdit;
    m_edit->setObjectName(QStringLiteral("txtText"));
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("lblCount"));
    m_wrap = new QCheckBox(QStringLiteral("&Word wrap"));
    m_wrap->setObjectName(QStringLiteral("chkWrap"));
    m_wrap->setChecked(true);
    auto *print = button(QStringLiteral("&Print..."), "cmdPrint");
    auto *preview = button(QStringLiteral("Pre&view..."), "cmdPreview");
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_wrap);
    bottom->addWidget(m_count, 1);
    bottom->addWidget(print);
    bottom->addWidget(preview);
    bottom->addWidget(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildFindBar());
    layout->addWidget(m_edit, 1);
    layout->addLayout(bottom);

    connect(m_wrap, &QCheckBox::toggled, this, &TextEditorDialog::setWordWrap);
    connect(m_edit, &QPlainTextEdit::textChanged, this, &TextEditorDialog::updateCount);
    connect(print, &QPushButton::clicked, this, &TextEditorDialog::printWithDialog);
    connect(preview, &QPushButton::clicked, this, &TextEditorDialog::printPreview);
    connect(buttons, &QDialogButtonBox::accepted, this, &TextEditorDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TextEditorDialog::reject);
    setWordWrap(true);
    updateCount();
    resize(640, 480);
}

QWidget *TextEditorDialog::buildFindBar()
{
    auto *bar = new QWidget;
    m_find = new QLineEdit;
    m_find->setObjectName(QStringLiteral("txtFind"));
    m_find->setPlaceholderText(QStringLiteral("Find"));
    m_replace = new QLineEdit;
    m_replace->setObjectName(QStringLiteral("txtReplace"));
    m_replace->setPlaceholderText(QStringLiteral("Replace with"));
    m_matchCase = new QCheckBox(QStringLiteral("Match &case"));
    auto *next = button(QStringLiteral("&Find Next"), "cmdFindNext");
    auto *replace = button(QStringLiteral("&Replace"), "cmdReplace");
    auto *replaceAllButton = button(QStringLiteral("Replace &All"), "cmdReplaceAll");
    m_replaceParts = new QWidget;
    auto *replaceRow = new QHBoxLayout(m_replaceParts);
    replaceRow->setContentsMargins(0, 0, 0, 0);
    replaceRow->addWidget(m_replace, 1);
    replaceRow->addWidget(replace);
    replaceRow->addWidget(replaceAllButton);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_find, 1);
    row->addWidget(next);
    row->addWidget(m_matchCase);
    row->addWidget(m_replaceParts, 2);

    connect(m_find, &QLineEdit::returnPressed, next, &QPushButton::click);
    connect(next, &QPushButton::clicked, this,
            [this] { (void)findNext(m_find->text(), m_matchCase->isChecked()); });
    connect(replace, &QPushButton::clicked, this,
            [this] { replaceNext(m_find->text(), m_replace->text(), m_matchCase->isChecked()); });
    connect(replaceAllButton, &QPushButton::clicked, this, [this] {
        const int n = replaceAll(m_find->text(), m_replace->text(), m_matchCase->isChecked());
        m_count->setText(countText() + QStringLiteral(" (%1 replaced)").arg(n));
    });
    return bar;
}

QString TextEditorDialog::text() const
{
    return m_edit->toPlainText();
}

void TextEditorDialog::setText(const QString &text)
{
    m_edit->setPlainText(text);
}

void TextEditorDialog::setMaxLength(int maxLength)
{
    m_maxLength = qMax(0, maxLength);
    updateCount();
}

bool TextEditorDialog::isReadOnly() const
{
    return m_edit->isReadOnly();
}

void TextEditorDialog::setReadOnly(bool readOnly)
{
    m_edit->setReadOnly(readOnly);
    m_replaceParts->setVisible(!readOnly);
}

bool TextEditorDialog::wordWrap() const
{
    return m_edit->lineWrapMode() == QPlainTextEdit::WidgetWidth;
}

void TextEditorDialog::setWordWrap(bool wrap)
{
    m_edit->setLineWrapMode(wrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    m_wrap->setChecked(wrap);
}

QString TextEditorDialog::countText() const
{
    // The document's character count includes the paragraph separator after the last block.
    const int count = m_edit->document()->characterCount() - 1;
    if (m_maxLength <= 0)
        return QStringLiteral("%L1 characters").arg(count);
    return QStringLiteral("%L1 of %L2 characters").arg(count).arg(m_maxLength);
}

void TextEditorDialog::updateCount()
{
    m_count->setText(countText());
    const bool over = m_maxLength > 0 && m_edit->document()->characterCount() - 1 > m_maxLength;
    m_count->setStyleSheet(over ? QStringLiteral("color: #c00000; font-weight: bold") : QString());
}

bool TextEditorDialog::findNext(const QString &what, bool matchCase)
{
    if (what.isEmpty())
        return false;
    if (m_edit->find(what, flagsFor(matchCase)))
        return true;
    const QTextCursor found = m_edit->document()->find(what, 0, flagsFor(matchCase));
    if (!found.isNull()) {
        m_edit->setTextCursor(found);
        return true;
    }
    (void)prompterOf(m_services)
        .msgBox(QStringLiteral("\"%1\" was not found.").arg(what), MsgStyle::Information,
                QStringLiteral("Find"));
    return false;
}

void TextEditorDialog::replaceNext(const QString &what, const QString &with, bool matchCase)
{
    if (isReadOnly() || what.isEmpty())
        return;
    QTextCursor cursor = m_edit->textCursor();
    const Qt::CaseSensitivity cs = matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (cursor.hasSelection() && cursor.selectedText().compare(what, cs) == 0)
        cursor.insertText(with);
    (void)findNext(what, matchCase);
}

int TextEditorDialog::replaceAll(const QString &what, const QString &with, bool matchCase)
{
    if (isReadOnly() || what.isEmpty())
        return 0;
    QTextDocument *doc = m_edit->document();
    QTextCursor edit(doc);
    edit.beginEditBlock(); // one undo step
    int count = 0;
    QTextCursor found = doc->find(what, 0, flagsFor(matchCase));
    while (!found.isNull()) {
        found.insertText(with);
        ++count;
        found = doc->find(what, found.position(), flagsFor(matchCase));
    }
    edit.endEditBlock();
    return count;
}

void TextEditorDialog::accept()
{
    const qsizetype length = text().size();
    if (m_maxLength > 0 && length > m_maxLength) {
        (void)prompterOf(m_services)
            .msgBox(QStringLiteral("The text has %1 characters; this field holds at most %2."
                                   "\r\n\r\nShorten the text before you save it.")
                        .arg(length)
                        .arg(m_maxLength),
                    MsgStyle::Exclamation, QStringLiteral("Text Too Long"));
        return;
    }
    QDialog::accept();
}

} // namespace plx
