// dialogs/frmgrideditbare.h: the browse grid, where the user looks across the records of a
// record source, finds a value in a column and picks a record.
//
// A modal dialog (objectName "frmGridEditBare", titled with the caller's caption) holding
// the grid "tdbGrid" and the column Find button "cmdFind". The grid reads the records as it
// paints them (RecordSourceTableModel), so it opens at once on any number of records, and it
// never moves the source's own current record (RecordCursor): it may be the navigator's.
//
// Columns: the layout value under `layoutKey` in section "CONFIG" of the settings file
// (dialogs/gridlayout.h) says which fields show, in what order, titled and sized how; a
// missing or unusable value shows every field. The column selected for Find is kept under
// layoutKey + " ColSel". Both are written back when the form closes, with its position and
// size (services/widgets/formplacement.h, key base "frmGridEditBare").
//
// The chosen record is the current row when the form closes: Enter or a double click on a
// row, "Go to record", or closing the window. Escape and Cancel choose nothing.
//
//     plx::FrmGridEditBare grid({ caption, records, iniFile, layoutKey, startRow, services },
//                               parentWidget);
//     grid.exec();
//     const QVariant id = grid.chosenValue(QStringLiteral("ID"));  // Null: nothing chosen
#pragma once

#include "dialogs/columnfind.h"
#include "dialogs/gridlayout.h"
#include "dialogs/recordcursor.h"

#include <QDialog>
#include <QHash>

#include <memory>

class QAbstractButton;
class QPushButton;
class QTableView;

namespace plx {

struct Services;
class RecordSourceTableModel;

class FrmGridEditBare : public QDialog
{
    Q_OBJECT

public:
    struct Setup
    {
        QString caption;
        std::shared_ptr<RecordSource> records;
        // The user's settings file in the library's path form; blank: the defaults file.
        QString settingsFile;
        QString layoutKey;
        // The row made current when the grid opens.
        qint32 startRow = -1;
        // With startRow -1: the first record matching this Jet criterion (blank: the first).
        QString startCriterion;
        // Where the boxes go (nullptr: the library's defaults).
        Services *services = nullptr;
    };

    explicit FrmGridEditBare(Setup setup, QWidget *parent = nullptr);
    ~FrmGridEditBare() override;

    // The key the selected column is kept under, beside the layout.
    static QString selectedColumnKey(const QString &layoutKey);

    // After the form closed: the row chosen (-1: none) and a field's value in it (Null
    // when none was chosen).
    qint32 chosenRow() const { return m_chosenRow; }
    QVariant chosenValue(const QString &field);

    QTableView *grid() const { return m_grid; }
    RecordSourceTableModel *model() const { return m_model; }
    // The layout the grid shows now, as it is written back.
    GridLayout currentLayout() const;

    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildChildren();
    void applyLayout(const GridLayout &layout);
    void showEveryField();
    void restoreSelectedColumn();
    void saveSettings();
    void startOn(qint32 row);
    int fittedWidth(int column) const;
    int firstVisibleColumn() const;
    void showHeaderMenu(const QPoint &at);
    void findClicked();
    int selectedColumn(int *count) const;
    void runColumnFind(int column);
    void goToRow(qint32 row, int column);

    Setup m_setup;
    QString m_settingsFile;
    RecordCursor m_cursor;
    RecordSourceTableModel *m_model = nullptr;
    QTableView *m_grid = nullptr;
    QPushButton *m_find = nullptr;
    ColumnFind m_columnFind;
    // The widths the layout gave, by column: written back as they were read unless the
    // user resized the column, so twips do not drift through pixel rounding.
    QHash<int, int> m_layoutTwips;
    qint32 m_chosenRow = -1;
    bool m_chooseNothing = false;
    bool m_closed = false;
};

} // namespace plx
