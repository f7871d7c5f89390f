// dialogs/frmgrideditbare_find.cpp: the Find button: one column searched for a text.
#include "dialogs/frmgrideditbare.h"

#include "dialogs/recordsourcetablemodel.h"
#include "services/env.h"

#include <QItemSelectionModel>
#include <QPushButton>
#include <QTableView>

namespace plx {

int FrmGridEditBare::selectedColumn(int *count) const
{
    const QItemSelectionModel *selection = m_grid->selectionModel();
    int column = -1;
    *count = 0;
    if (m_model->rowCount() < 1)
        return column;
    for (int c = 0; c < m_model->columnCount(); ++c) {
        if (selection->isColumnSelected(c, QModelIndex())) {
            ++*count;
            column = c;
        }
    }
    return column;
}

void FrmGridEditBare::findClicked()
{
    Prompter &prompter = prompterOf(m_setup.services);
    int selected = 0;
    const int column = selectedColumn(&selected);
    if (selected == 0) {
        prompter.msgBox(QStringLiteral("Click the header of the column you want to search, "
                                       "then use the Find button."),
                        MsgStyle::Information, QStringLiteral("No Column Selected"));
    } else if (selected > 1) {
        prompter.msgBox(QStringLiteral("Multiple columns are selected.")
                            + QStringLiteral("\r\n\r\n")
                            + QStringLiteral("Click the header of ONE column you want to search."),
                        MsgStyle::Information, QStringLiteral("Select One Column"));
    } else {
        runColumnFind(column);
    }
    m_find->setFocus(Qt::OtherFocusReason);
}

void FrmGridEditBare::runColumnFind(int column)
{
    Prompter &prompter = prompterOf(m_setup.services);
    const QString caption = m_model->headerData(column, Qt::Horizontal).toString();
    const std::optional<QString> answer =
        prompter.inputBox(ColumnFind::prompt(caption), QStringLiteral("Find"), QString());
    if (!answer || answer->isEmpty()) {
        prompter.msgBox(QStringLiteral("No search specified"), MsgStyle::Information,
                        QStringLiteral("Cancelled"));
        return;
    }
    const QString text = answer->toUpper();
    const QString field = m_cursor.fields().at(column).name;
    const bool continuing = m_columnFind.continues(field, text);
    const qint32 before = m_cursor.position();
    const std::optional<qint32> found =
        m_cursor.find(ColumnFind::criterion(field, text), continuing);
    if (found) {
        m_columnFind.found(field, text);
        goToRow(*found, column);
        return;
    }
    prompter.msgBox(ColumnFind::notFoundText(text, caption, continuing), MsgStyle::Information,
                    QStringLiteral("Not Found"));
    m_columnFind.restart();
    m_cursor.setPosition(before);
    if (before >= 0)
        goToRow(before, column);
}

void FrmGridEditBare::goToRow(qint32 row, int column)
{
    const QModelIndex index = m_model->index(row, column);
    // The column stays selected, so Find can go on to the next record at once.
    m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    m_grid->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

} // namespace plx
