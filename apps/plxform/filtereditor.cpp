// apps/plxform/filtereditor.cpp
#include "apps/plxform/filtereditor.h"

#include "apps/plxform/screenfit.h"
#include "services/ini.h"
#include "services/recordsource/database.h"
#include "services/recordsource/querytext.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

namespace plx::form {

namespace {

// The engine counts positions (from 1) in the whole statement, of which the user wrote only
// the condition: "at position N" is told counting from the condition's first character.
QString inCondition(QString message, qsizetype conditionStart)
{
    static const QRegularExpression position(QStringLiteral("at position (\\d+)"));
    QRegularExpressionMatch m = position.match(message);
    if (!m.hasMatch())
        return message;
    const qsizetype at = m.captured(1).toLongLong() - conditionStart;
    if (at < 1)
        return message;
    return message.replace(m.capturedStart(), m.capturedLength(),
                           QStringLiteral("at position %1 of the condition").arg(at));
}

} // namespace

FilterEditor::FilterEditor(QString filterFile, std::shared_ptr<Database> db, QString table,
                           QWidget *parent)
    : QDialog(parent), m_file(std::move(filterFile)), m_db(std::move(db)),
      m_table(std::move(table)), m_list(new QListWidget(this)), m_name(new QLineEdit(this)),
      m_where(new QPlainTextEdit(this)), m_problem(new QLabel(this))
{
    setObjectName(QStringLiteral("frmFilterEditor"));
    setWindowTitle(tr("Filters"));
    m_list->setObjectName(QStringLiteral("lstFilters"));
    m_name->setObjectName(QStringLiteral("txtName"));
    m_where->setObjectName(QStringLiteral("txtWhere"));
    m_problem->setObjectName(QStringLiteral("lblProblem"));
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: palette(link)"));
    m_where->setPlaceholderText(tr("STATE = 'TX' And BEDS >= 100"));
    m_where->setTabChangesFocus(true);

    auto *form = new QFormLayout;
    form->addRow(tr("&Name"), m_name);
    form->addRow(tr("&Where"), m_where);
    auto *save = new QPushButton(tr("&Save Filter"), this);
    save->setObjectName(QStringLiteral("cmdSaveFilter"));
    auto *add = new QPushButton(tr("&New"), this);
    add->setObjectName(QStringLiteral("cmdNewFilter"));
    auto *remove = new QPushButton(tr("&Delete"), this);
    remove->setObjectName(QStringLiteral("cmdDeleteFilter"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch();
    buttons->addWidget(save);
    auto *close = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto *right = new QVBoxLayout;
    right->addLayout(form);
    right->addWidget(m_problem);
    right->addLayout(buttons);
    auto *top = new QHBoxLayout;
    top->addWidget(m_list, 1);
    top->addLayout(right, 2);
    auto *outer = new QVBoxLayout(this);
    outer->addLayout(top);
    outer->addWidget(close);
    resize(640, 320);
    fitOnScreen(this);

    connect(close, &QDialogButtonBox::rejected, this, &QDialog::accept);
    connect(m_list, &QListWidget::currentRowChanged, this, &FilterEditor::showSelected);
    connect(add, &QPushButton::clicked, this, [this] {
        m_list->setCurrentRow(-1);
        m_name->clear();
        m_where->clear();
        m_problem->clear();
        m_name->setFocus();
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        if (QListWidgetItem *item = m_list->currentItem())
            deleteFilter(item->text());
    });
    connect(save, &QPushButton::clicked, this, [this] {
        const QListWidgetItem *item = m_list->currentItem();
        saveFilter(item ? item->text() : QString(), m_name->text().trimmed(),
                   m_where->toPlainText().trimmed());
    });
    reload();
}

QStringList FilterEditor::filterNames() const
{
    QStringList names = getINISections(m_file);
    names.removeFirst(); // element 0 is a placeholder
    return names;
}

void FilterEditor::reload()
{
    m_list->clear();
    m_list->addItems(filterNames());
}

void FilterEditor::showSelected()
{
    const QListWidgetItem *item = m_list->currentItem();
    m_problem->clear();
    if (!item)
        return;
    QString where;
    readINI(item->text(), QStringLiteral("Where"), m_file, where, QString());
    m_name->setText(item->text());
    m_where->setPlainText(where);
}

QString FilterEditor::checkCondition(const QString &where) const
{
    if (!m_db)
        return tr("No table is open.");
    if (where.contains(QLatin1Char('\n')) || where.contains(QLatin1Char('\r')))
        return tr("A condition is one line.");
    // The condition's own text starts where the statement's prefix ends; a syntax error's
    // position is told from there.
    const QString statement = QueryText(m_table).selectWhere(QString());
    Result<std::unique_ptr<RecordSource>> tried = m_db->OpenRecordset(statement + where);
    return tried.isOk() ? QString() : inCondition(tried.status().message(), statement.size());
}

bool FilterEditor::saveFilter(const QString &oldName, const QString &name, const QString &where)
{
    if (name.isEmpty() || name.contains(QLatin1Char('[')) || name.contains(QLatin1Char(']'))) {
        m_problem->setText(tr("A filter needs a name without brackets."));
        return false;
    }
    if (where.isEmpty()) {
        m_problem->setText(tr("A filter needs a condition."));
        return false;
    }
    const QString problem = checkCondition(where);
    if (!problem.isEmpty()) {
        m_problem->setText(tr("This condition cannot run: %1").arg(problem));
        return false;
    }
    if (!oldName.isEmpty() && oldName != name)
        deleteFilter(oldName);
    if (!writeINI(name, QStringLiteral("Where"), m_file, where)) {
        m_problem->setText(tr("The filter file %1 cannot be written.").arg(m_file));
        return false;
    }
    m_problem->setText(tr("Saved."));
    reload();
    const QList<QListWidgetItem *> saved = m_list->findItems(name, Qt::MatchExactly);
    if (!saved.isEmpty())
        m_list->setCurrentItem(saved.first());
    return true;
}

bool FilterEditor::deleteFilter(const QString &name)
{
    // Through the settings writer, under its lock: another program saving a setting in the
    // same file meanwhile neither loses it nor sees the file half done.
    if (!deleteINISection(name, m_file)) {
        m_problem->setText(tr("The filter file %1 cannot be written.").arg(m_file));
        return false;
    }
    reload();
    return true;
}

} // namespace plx::form
