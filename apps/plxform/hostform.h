// apps/plxform/hostform.h: the data-entry form plxform shows: a record navigator over a
// stack of text rows and a stack of check boxes, with menus, shortcuts and a status bar.
// It is a host like any other: it configures the controls, answers the navigator's
// filter events and validates saves as the parent form.
#pragma once

#include "apps/plxform/formdescription.h"
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "navigator/mvplxrecs.h"
#include "services/env.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class QLabel;
class QMenu;

namespace plx {
class Database;
} // namespace plx

namespace plx::form {

class HostForm : public QMainWindow
{
    Q_OBJECT

public:
    explicit HostForm(Services *services, QWidget *parent = nullptr);
    ~HostForm() override;

    // Shows `form`. Problems that still let the form open (unknown field names, the
    // navigator's configuration lines) come back in `warnings`; false with `error` when
    // the table cannot be opened (the form is then left as it was).
    bool openForm(const FormDescription &form, QStringList *warnings, QString *error);
    // What is shown now, with the rows made from the table's fields (for --save-form).
    const FormDescription &form() const { return m_form; }

    mvPLXRecs *navigator() const { return m_nav; }
    mvName *textRows() const { return m_rows; }
    mvChecks *checkRows() const { return m_checks; }
    QList<QPointer<mvChkWithTxt>> pairs() const { return m_pairs; }
    QString statusText() const;
    // Where the table's saved filters are kept.
    QString filterFile() const;

    // Called by the navigator before it saves: a record without its required fields is
    // refused, and the user is told which.
    Q_INVOKABLE bool OKtoSave(qint16 level);

Q_SIGNALS:
    // A file chosen in the File menu; main() opens it (a table or a form description).
    void openRequested(const QString &path);
    void saveFormRequested(const QString &path);

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // openForm() in steps: the table (false with `error` when it cannot be opened), the
    // navigator's settings from the form, and the navigator's events.
    bool openTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                   QString *error);
    void configureNavigator(mvPLXRecs &nav, const FormDescription &form);
    void connectNavigator();
    void buildMenus();
    void mirrorToolbar();
    void updateStatus();
    void showRecord();
    void filterChosen(const QString &filter);
    void editFilters();
    void recordDeleted();
    void rememberRecent(const QString &path);
    void fillRecentMenu();
    QString userSettings() const;

    Services *m_services;
    FormDescription m_form;
    std::shared_ptr<Database> m_db;
    QPointer<mvPLXRecs> m_nav;
    QPointer<mvName> m_rows;
    QPointer<mvChecks> m_checks;
    QList<QPointer<mvChkWithTxt>> m_pairs;
    QLabel *m_statusTable = nullptr;
    QLabel *m_statusPosition = nullptr;
    QLabel *m_statusUser = nullptr;
    QLabel *m_statusState = nullptr;
    QMenu *m_recentMenu = nullptr;
    QList<QAction *> m_recordActions; // mirror the toolbar's buttons
    bool m_editing = false;
};

// The operating system's name for the user running plxform.
QString systemUserName();

} // namespace plx::form
