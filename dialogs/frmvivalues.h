// dialogs/frmvivalues.h: the value-list editor, in which the user keeps a list of allowed
// values and fills a data value from it.
//
// The list lives in a settings file (one value, entries joined by "|"; see
// dialogs/valuelist_p.h for the entry rules) and is saved after every Add and Delete, so list
// changes are kept whether the editor is cancelled or not. The data value is a comma-joined
// list of values: Insert (the button, a double click on an entry, or Enter in the list)
// appends the selected entry's value unless the result would be longer than MaxLen; Remove
// cuts it out again. Every box goes through the plx::Services given with setServices.
//
//     plx::frmVIValues editor(form);
//     editor.setServices(services);
//     editor.setSVINIFile(file); editor.setSVINISec(section); editor.setSVINIVar(key);
//     editor.setSValue(current); editor.setMaxLen(fieldSize);
//     editor.InitForm();                        // placement, then the list
//     editor.exec();
//     if (!editor.bCancel()) current = editor.sValue();
//
// Only the Cancel button sets bCancel; closing the editor in any other way keeps the edited
// data value. The editor's position and size are kept in section "CONFIG" of the defaults
// file under the keys "frmVIValues-X", "-Y", "-W", "-H".
#pragma once

#include "services/env.h"

#include <QDialog>
#include <QStringList>

#include <optional>

class QAbstractButton;
class QGroupBox;
class QLabel;
class QListWidget;

namespace plx {

class frmVIValues : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(QString sValue READ sValue WRITE setSValue)
    Q_PROPERTY(int MaxLen READ MaxLen WRITE setMaxLen)
    Q_PROPERTY(QString sVINIFile READ sVINIFile WRITE setSVINIFile)
    Q_PROPERTY(QString sVINISec READ sVINISec WRITE setSVINISec)
    Q_PROPERTY(QString sVINIVar READ sVINIVar WRITE setSVINIVar)
    Q_PROPERTY(bool bCancel READ bCancel)

public:
    explicit frmVIValues(QWidget *parent = nullptr);
    ~frmVIValues() override;

    // Where the boxes go; nullptr: the library-wide defaults.
    void setServices(Services *services) { m_services = services; }

    // The data value being edited; Label1 shows it.
    QString sValue() const { return m_value; }
    void setSValue(const QString &value);
    // The longest data value Insert may make.
    int MaxLen() const { return m_maxLen; }
    void setMaxLen(int maxLen) { m_maxLen = maxLen; }
    // The settings file, section and key of the list. Any of them blank: the list is neither
    // read nor written (a blank file is no file; it does not mean the defaults file).
    QString sVINIFile() const { return m_file; }
    void setSVINIFile(const QString &file) { m_file = file; }
    QString sVINISec() const { return m_section; }
    void setSVINISec(const QString &section) { m_section = section; }
    QString sVINIVar() const { return m_key; }
    void setSVINIVar(const QString &key) { m_key = key; }
    // True once Cancel was pressed.
    bool bCancel() const { return m_cancel; }

    // Restores the saved position and size, then loads the list.
    Q_INVOKABLE void InitForm();
    // The entries of List1, in order.
    QStringList entries() const;

    // The buttons' actions, as the user starts them.
    Q_INVOKABLE void Add();
    Q_INVOKABLE void Delete();
    Q_INVOKABLE void Insert();
    Q_INVOKABLE void Remove();
    Q_INVOKABLE void Cancel();

    // Saves the placement whichever way the editor closes.
    void done(int result) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildFrames();
    void saveList() const;
    // "Nothing Selected" with `text` when no entry is selected; else the selected entry.
    std::optional<QString> selectedEntry(const QString &nothingSelectedText) const;
    void inform(const QString &text, const QString &title) const;

    Services *m_services = nullptr;
    QString m_value;
    int m_maxLen = 0;
    QString m_file;
    QString m_section;
    QString m_key;
    bool m_cancel = false;

    QGroupBox *m_fraValList = nullptr;
    QGroupBox *m_fraVariable = nullptr;
    QGroupBox *m_fraList = nullptr;
    QAbstractButton *m_cmdAdd = nullptr;
    QAbstractButton *m_cmdDel = nullptr;
    QAbstractButton *m_cmdInsert = nullptr;
    QAbstractButton *m_cmdRemove = nullptr;
    QAbstractButton *m_cmdCancel = nullptr;
    QLabel *m_label1 = nullptr;
    QListWidget *m_list1 = nullptr;
};

} // namespace plx
