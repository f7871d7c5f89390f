// dialogs/frmvivalues_actions.cpp: what the editor's buttons do.
#include "dialogs/frmvivalues.h"

#include "dialogs/valuelist_p.h"

#include "services/texthelpers.h"

#include <QLabel>
#include <QListWidget>

namespace plx {

namespace {

const QString kTwoLines = QStringLiteral("\r\n\r\n");

} // namespace

void frmVIValues::inform(const QString &text, const QString &title) const
{
    (void)prompterOf(m_services).msgBox(text, MsgStyle::Information, title);
}

std::optional<QString> frmVIValues::selectedEntry(const QString &nothingSelectedText) const
{
    const int row = m_list1->currentRow();
    if (row >= 0 && row < m_list1->count())
        return m_list1->item(row)->text();
    if (!nothingSelectedText.isEmpty())
        inform(nothingSelectedText, QStringLiteral("Nothing Selected"));
    return std::nullopt;
}

void frmVIValues::Add()
{
    Prompter &prompter = prompterOf(m_services);
    const std::optional<QString> value = prompter.inputBox(
        QStringLiteral("Item to add to Value List:"), QStringLiteral("Value List"), QString());
    if (!value || getLenTrim(*value) < 1)
        return;
    const std::optional<QString> description = prompter.inputBox(
        QStringLiteral("Description for this item:"), QStringLiteral("Description"), QString());
    const QString entry = valuelist::makeEntry(trimSpaces(*value), description.value_or(QString()));
    if (entries().contains(entry)) {
        inform(QStringLiteral("This value is already in the list:") + kTwoLines + entry + kTwoLines
                   + QStringLiteral("You cannot have duplicate values in the list."),
               QStringLiteral("Duplicate Value"));
        return;
    }
    m_list1->addItem(entry);
    saveList();
}

void frmVIValues::Delete()
{
    const std::optional<QString> entry = selectedEntry(QString());
    if (!entry)
        return;
    const MsgAnswer answer =
        prompterOf(m_services)
            .msgBox(QStringLiteral("Are you sure you want to DELETE this value from the list?")
                        + kTwoLines + *entry,
                    MsgStyle::YesNo | MsgStyle::DefaultButton2,
                    QStringLiteral("Delete From List?"));
    if (answer != MsgAnswer::Yes)
        return;
    delete m_list1->takeItem(m_list1->currentRow());
    saveList();
}

void frmVIValues::Insert()
{
    const std::optional<QString> entry = selectedEntry(
        QStringLiteral("You must first select the item on the list you want to insert."));
    if (!entry)
        return;
    const std::optional<QString> next =
        valuelist::inserted(m_value, valuelist::entryValue(*entry), m_maxLen);
    if (!next) {
        inform(
            QStringLiteral("The data where you want to insert this value has a maximum length of ")
                + QString::number(m_maxLen) + kTwoLines
                + QStringLiteral("There is not enough room to add the selected value.") + kTwoLines
                + QStringLiteral("Use the 'Remove' button to remove one or more values from "
                                 "the data so you can insert this one."),
            QStringLiteral("Insufficient Data Length"));
        return;
    }
    setSValue(*next);
}

void frmVIValues::Remove()
{
    const std::optional<QString> entry = selectedEntry(
        QStringLiteral("You must first select the item on the list you want to remove."));
    if (!entry)
        return;
    const QString value = valuelist::entryValue(*entry);
    if (!m_value.contains(value)) {
        inform(QStringLiteral("The selected value (") + value
                   + QStringLiteral(") is not found in the current data value."),
               QStringLiteral("Nothing To Do"));
        return;
    }
    setSValue(valuelist::removed(m_value, value));
}

void frmVIValues::Cancel()
{
    m_cancel = true;
    reject();
}

} // namespace plx
