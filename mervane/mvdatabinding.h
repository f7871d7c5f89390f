// mervane/mvdatabinding.h: the data-binding object of a row control.
//
// Each row (mvText, mvCheck) reads and writes one field of a record source through its
// binding object. The record source is shared: the navigator, or row 0 of a stack that
// opened a FoxPro table file itself, owns it and hands the same one to every row, and a
// row never keeps a source that was replaced (it simply holds the newest shared_ptr).
//
// A binding can also open a FoxPro 2.6 table file itself: set DBFPathFileName, DBFTableName
// (and Filter), then Connect() opens the file's directory with the connect string
// "FoxPro 2.6;" and the table as "SELECT * from TABLE [WHERE Filter]". The table's code page
// is read from the file header, so rows can refuse characters the table cannot store
// before a write fails.
#pragma once

#include "services/recordsource/database.h"

#include <QObject>
#include <QString>

#include <memory>

namespace plx {

class mvDataBinding : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString sFieldName READ sFieldName WRITE setSFieldName)
    Q_PROPERTY(QString DBFPathFileName READ DBFPathFileName WRITE setDBFPathFileName)
    Q_PROPERTY(QString DBFFileName READ DBFFileName WRITE setDBFFileName)
    Q_PROPERTY(QString DBFTableName READ DBFTableName WRITE setDBFTableName)
    Q_PROPERTY(qint16 DBFType READ DBFType WRITE setDBFType)
    Q_PROPERTY(QString Filter READ Filter WRITE setFilter)
    Q_PROPERTY(int CodePage READ CodePage WRITE setCodePage)

public:
    explicit mvDataBinding(QObject *parent = nullptr);
    ~mvDataBinding() override;

    // The record source the row reads and writes; nullptr when unbound. Setting the same
    // source again does nothing; another one replaces the current one (closing it when this
    // binding opened it and nobody else holds it) and looks the field up again.
    std::shared_ptr<plx::RecordSource> RecordSet() const { return m_rs; }
    void setRecordSet(std::shared_ptr<plx::RecordSource> source);

    // The bound field's name, matched without regard to case and surrounding blanks when the
    // field is looked up; a name the source lacks shows as an empty row (no error here).
    QString sFieldName() const { return m_fieldName; }
    void setSFieldName(const QString &name);

    // The table file Connect() opens. Setting it also reads CodePage from the file's header
    // (Windows-1252 for an unmarked table, 0 when the file is missing); it opens nothing.
    QString DBFPathFileName() const { return m_path; }
    void setDBFPathFileName(const QString &path);
    // Kept for hosts that read them back; Connect() does not use them.
    QString DBFFileName() const { return m_fileName; }
    void setDBFFileName(const QString &name) { m_fileName = name; }
    // The table Connect() selects from; blank: the file name without its extension.
    QString DBFTableName() const { return m_tableName; }
    void setDBFTableName(const QString &name) { m_tableName = name; }
    // 1 (the default) for a FoxPro table file; stored only.
    qint16 DBFType() const { return m_type; }
    void setDBFType(qint16 type) { m_type = type; }
    // A Jet WHERE text (without "WHERE") Connect() appends; blank: every record. Changing it
    // affects the next Connect() only.
    QString Filter() const { return m_filter; }
    void setFilter(const QString &filter) { m_filter = filter; }

    // The code page the bound table stores text in; 0 when unknown or when the back end
    // stores any character (SQLite). Read from the table file by setDBFPathFileName();
    // a host binding a FoxPro source of its own may set it.
    int CodePage() const { return m_codePage; }
    void setCodePage(int codePage) { m_codePage = codePage; }

    // Opens the table file named by DBFPathFileName/DBFTableName/Filter and makes it this
    // binding's record source. "" on success, otherwise why it failed ("no table file is
    // set", or the engine's message for a missing folder, unknown table or bad filter); on
    // failure the former source stays. Shows no box.
    Q_INVOKABLE QString Connect();
    // Drops this binding's record source (closing it when this binding opened it itself and
    // nobody else shares it). Harmless when unbound; the destructor calls it.
    Q_INVOKABLE void Disconnect();

    // The bound field: its index and description in the current record source; -1 and a
    // default description when the source has no such field or there is no source.
    int fieldIndex() const;
    const plx::FieldInfo &fieldInfo() const;

private:
    void resolveField() const;

    std::shared_ptr<plx::RecordSource> m_rs;
    std::shared_ptr<plx::Database> m_ownDb; // set when Connect() opened the table itself
    bool m_ownsSource = false;
    QString m_fieldName;
    QString m_path;
    QString m_fileName;
    QString m_tableName;
    QString m_filter;
    qint16 m_type = 1;
    int m_codePage = 0;

    // The field's place in m_rs, looked up once per source and name: showing a record
    // must not search the field list for every row again.
    mutable const plx::RecordSource *m_resolvedFor = nullptr;
    mutable int m_index = -1;
    mutable plx::FieldInfo m_info;
};

} // namespace plx
