// apps/plxform/tablechooser.h: the list a user picks a table from when a SQLite database
// holds several and none was named.
#pragma once

#include <QDialog>

#include <optional>

class QListWidget;

namespace plx::form {

class TableChooser : public QDialog
{
    Q_OBJECT

public:
    TableChooser(const QString &database, const QStringList &tables, QWidget *parent = nullptr);

    // The highlighted table ("" when none is).
    QString chosen() const;
    // Shows the list; the table picked (OK or a double click), std::nullopt on Cancel.
    static std::optional<QString> choose(const QString &database, const QStringList &tables,
                                         QWidget *parent = nullptr);

private:
    QListWidget *m_list;
};

} // namespace plx::form
