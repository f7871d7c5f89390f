// dialogs/listselect.h: the dialog in which a user picks items from a list and puts them in
// order: the columns a grid shows, the fields a printed list holds, the fields of a sort.
//
// Two lists side by side: the available items (every item not chosen, in the order the host
// gave them, narrowed by a filter box) and the chosen items, in the user's order. Items move
// across with the arrow buttons, a double click, Enter (available -> chosen) or Delete
// (chosen -> available); Ctrl+Up and Ctrl+Down, or the Up and Down buttons, move chosen
// items within their list. Several items can be selected and move together, keeping their
// order.
//
//     plx::ListSelectDialog pick(form);
//     pick.setWindowTitle(QStringLiteral("Columns"));
//     pick.setItems(allFields, shownFields);
//     if (pick.exec() == QDialog::Accepted)
//         shownFields = pick.chosenItems();
//
// Items are compared as whole texts; an item listed twice is kept once, and a chosen item
// that is not among the available ones is dropped.
#pragma once

#include <QDialog>
#include <QStringList>

class QAbstractButton;
class QLineEdit;
class QListWidget;

namespace plx {

class ListSelectDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ListSelectDialog(QWidget *parent = nullptr);

    // Every item, in the order the available list shows them, and the chosen ones in order.
    void setItems(const QStringList &all, const QStringList &chosen);
    QStringList chosenItems() const;
    // The items not chosen, in the host's order (the filter does not change this list).
    QStringList availableItems() const;

    // The filter: available items that contain the text (any case) stay visible.
    void setFilterText(const QString &text);

    // The buttons' actions. Choose and Unchoose move the selected items (the current one
    // when none is selected); ChooseAll moves every visible available item.
    void Choose();
    void ChooseAll();
    void Unchoose();
    void UnchooseAll();
    void MoveUp();
    void MoveDown();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build();
    void fillAvailable(const QStringList &items);
    void applyFilter();
    void moveChosen(int step);

    QStringList m_all; // every item, in the host's order
    QLineEdit *m_filter = nullptr;
    QListWidget *m_available = nullptr;
    QListWidget *m_chosen = nullptr;
};

} // namespace plx
