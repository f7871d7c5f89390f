// apps/plxform/filtereditor.h: adds, renames, changes and deletes the saved filters of a
// table. Each filter is a section of the filter file whose "Where" key holds the condition
// (the text after WHERE); a condition is tried on the table before it is kept, so a
// filter that cannot run is never saved.
#pragma once

#include <QDialog>

#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;

namespace plx {
class Database;
}

namespace plx::form {

class FilterEditor : public QDialog
{
    Q_OBJECT

public:
    FilterEditor(QString filterFile, std::shared_ptr<Database> db, QString table,
                 QWidget *parent = nullptr);

    // "" when `where` runs on the table; otherwise the engine's words, with the position.
    QString checkCondition(const QString &where) const;
    // Saves the filter named `name` with `where` after checking it; false (and the reason
    // shown in the dialog) when it cannot run. `oldName` renames an existing filter.
    bool saveFilter(const QString &oldName, const QString &name, const QString &where);
    bool deleteFilter(const QString &name);
    QStringList filterNames() const;

private:
    void reload();
    void showSelected();

    QString m_file;
    std::shared_ptr<Database> m_db;
    QString m_table;
    QListWidget *m_list;
    QLineEdit *m_name;
    QPlainTextEdit *m_where;
    QLabel *m_problem;
};

} // namespace plx::form
