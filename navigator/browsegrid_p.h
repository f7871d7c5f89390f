// navigator/browsegrid_p.h: the navigator's two browses: every record, and the records the
// find box found.
//
// Both open the grid form (dialogs/frmgrideditbare.h) modally over a record source, with a
// caption and the key its column layout is kept under in the user's settings file, and
// give back the ID of the record the user chose ("" for none); the navigator then moves
// onto it. The browse of every record shows the navigator's own records without moving
// them; the search results are the find's own query.
#pragma once

#include <QString>

#include <memory>

class QWidget;

namespace plx {

class RecordSource;
struct Services;

class BrowseGrid
{
public:
    static QString wholeTableCaption(const QString &desc);
    static QString searchCaption(const QString &findText);
    static QString wholeTableLayoutKey(const QString &desc);
    static QString searchLayoutKey(const QString &desc);

    // The texts of the search-results browse's boxes.
    static QString nothingToBrowseText();
    static QString noResultsText(const QString &sortField, const QString &findText);

    struct Request
    {
        QString caption;
        QString layoutKey;
        std::shared_ptr<RecordSource> records;
        QString settingsFile;
        QString idField;
        // The row current when the grid opens: `startRow`, or with -1 the first record
        // matching `startCriterion`.
        qint32 startRow = -1;
        QString startCriterion;
        Services *services = nullptr;
        QWidget *parent = nullptr;
    };
    // Shows the grid until the user closes it; the chosen record's ID, "" for none.
    static QString browse(const Request &request);
};

} // namespace plx
