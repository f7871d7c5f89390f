// apps/plxform/hostform.h: the data-entry form plxform shows: a record navigator over a
// stack of text rows and a stack of check boxes, with menus, shortcuts and a status bar.
// It is a host like any other: it configures the controls, answers the navigator's
// filter events and validates saves as the parent form.
#pragma once

#include "apps/plxform/formdescription.h"
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "fields/mvvitext.h"
#include "navigator/mvplxrecs.h"
#include "services/env.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>

class QLabel;
class QMenu;

namespace plx {
class Database;
} // namespace plx

namespace plx::form {

struct DesignedForm;

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
    // Shows the form laid out in Designer (`designed`, taken over) on the table `form`
    // names, with what the designed navigator says of sorts, key and required fields.
    bool openDesignedForm(DesignedForm designed, const FormDescription &form, QStringList *warnings,
                          QString *error);
    // What is shown now, with the rows made from the table's fields (for --save-form).
    const FormDescription &form() const { return m_form; }

    mvPLXRecs *navigator() const { return m_nav; }
    mvName *textRows() const { return m_rows; }
    mvChecks *checkRows() const { return m_checks; }
    QList<QPointer<mvChkWithTxt>> pairs() const { return m_pairs; }
    // The value-item rows, one stack each, in the description's order.
    QList<QPointer<mvVIText>> valueRows() const { return m_valueRows; }
    QString statusText() const;
    // Why the table cannot be written ("" when it can), as its engine says.
    QString readOnlyReason() const { return m_readOnlyReason; }
    // Where the table's saved filters are kept.
    QString filterFile() const;
    // Shows the status of the record and table again (after a command run from outside).
    void refreshStatus() { updateStatus(); }

    // Moves to the record at 0-based `position` of the current order as the user's scroll
    // bar would (nothing while a record is edited or outside the records).
    void moveToPosition(qint32 position);
    // The Record menu's First, Last and Go to Record (which asks for a number).
    void goToFirst() { moveToPosition(0); }
    void goToLast();
    void askForRecordNumber();
    // The File menu's Code Page: asks which code page the DOS table's text is in,
    // remembers the answer for this table and shows the table in it.
    void askForCodePage();
    // The code page remembered for a DOS table file (0: none).
    int rememberedCodePage(const QString &tableFile) const;

    // The File menu's Print and Print Preview: the record as shown, each row's caption and
    // value on a line of its own (check boxes Yes or No), under a header naming the record,
    // printed by the text editor's printing.
    QString printHeader() const;
    QString printText() const;
    void printRecord();
    void previewRecord();
    // The same printout written to a PDF file; false when it could not be written.
    bool printRecordToPdf(const QString &path) const;
    // The File menu's Browse Columns: the user picks and orders the browse grid's columns
    // in the list dialog; kept as the grid's layout in the user's settings.
    void chooseBrowseColumns();

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
    bool openFoxProTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                         QString *error) const;
    bool openSqliteTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                         QString *error);
    bool openServerTable(FormDescription &form, mvPLXRecs &nav, std::shared_ptr<Database> &db,
                         QString *error);
    // The file the form's side files (its filters) are named after: the table file, the
    // SQLite database, or for a server's table a file in a work-directory folder of its own.
    QString sideFile(const FormDescription &form) const;
    // Makes `central` the form's contents and `nav` and the field controls the form's own.
    void placeWidgets(QWidget *central, mvPLXRecs *nav, mvName *rows,
                      const QList<mvVIText *> &valueRows, mvChecks *checks,
                      const QList<mvChkWithTxt *> &pairs);
    void configureNavigator(mvPLXRecs &nav, const FormDescription &form);
    void connectNavigator();
    void buildMenus();
    void buildFileMenu();
    void buildRecordMenu();
    QAction *addRecordAction(QMenu *menu, const QString &text, const QKeySequence &key,
                             const std::function<void()> &run);
    void mirrorToolbar();
    void toolbarClicked(QAction *button);
    void editStarted();
    void keepMadeIDReadOnly();
    void focusFirstEditableRow();
    void showTitle();
    void rememberCodePage(const QString &tableFile, int codePage);
    bool askToEndEdit();
    void updateStatus();
    void showRecord();
    void filterChosen(const QString &filter);
    void editFilters();
    void recordDeleted();
    void rememberRecent(const QString &path);
    void fillRecentMenu();
    QString userSettings() const;
    // The form's caption of each field it shows, by upper-case field name.
    QHash<QString, QString> captionsByField() const;

    Services *m_services;
    FormDescription m_form;
    std::shared_ptr<Database> m_db;
    QPointer<mvPLXRecs> m_nav;
    QPointer<mvName> m_rows;
    QPointer<mvChecks> m_checks;
    QList<QPointer<mvChkWithTxt>> m_pairs;
    QList<QPointer<mvVIText>> m_valueRows;
    QLabel *m_statusTable = nullptr;
    QLabel *m_statusPosition = nullptr;
    QLabel *m_statusUser = nullptr;
    QLabel *m_statusState = nullptr;
    QLabel *m_statusReadOnly = nullptr;
    QMenu *m_recentMenu = nullptr;
    QAction *m_codePageAction = nullptr;
    QList<QAction *> m_recordActions; // mirror the toolbar's buttons
    QList<QAction *> m_shortcutActions; // win over a text field's own keys
    QString m_readOnlyReason;
    qint16 m_madeIDRow = -1; // the row of an ID the navigator makes: never typed in
    bool m_editing = false;
};

// The operating system's name for the user running plxform.
QString systemUserName();

} // namespace plx::form
