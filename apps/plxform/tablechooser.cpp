// apps/plxform/tablechooser.cpp
#include "apps/plxform/tablechooser.h"

#include "apps/plxform/screenfit.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace plx::form {

TableChooser::TableChooser(const QString &database, const QStringList &tables, QWidget *parent)
    : QDialog(parent), m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("frmTableChooser"));
    setWindowTitle(tr("Choose a Table"));
    auto *label = new QLabel(tr("%1 holds %2 tables. Which one should plxform show?")
                                 .arg(QFileInfo(database).fileName())
                                 .arg(tables.size()),
                             this);
    label->setWordWrap(true);
    m_list->setObjectName(QStringLiteral("lstTables"));
    m_list->addItems(tables);
    m_list->setCurrentRow(0);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Open"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemActivated, this, &QDialog::accept);
    resize(360, 300);
    fitOnScreen(this);
}

QString TableChooser::chosen() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->text() : QString();
}

std::optional<QString> TableChooser::choose(const QString &database, const QStringList &tables,
                                            QWidget *parent)
{
    TableChooser chooser(database, tables, parent);
    if (chooser.exec() != QDialog::Accepted || chooser.chosen().isEmpty())
        return std::nullopt;
    return chooser.chosen();
}

} // namespace plx::form
