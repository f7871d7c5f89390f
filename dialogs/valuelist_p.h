// dialogs/valuelist_p.h: the rules of a value list and of the data value filled from it,
// apart from the editor that shows them.
//
// A value list is kept as one settings value, its entries joined by "|" in list order:
//
//     PT1 {Physical therapy}|OT|SP {Speech}
//
// An entry is a bare value or a value, one blank and a description in braces; its value is
// the text before the first "{", trimmed. A data value is the values inserted so far joined
// by "," with no blanks ("PT1,OT").
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace plx::valuelist {

// The value of an entry: the text before its first "{", without surrounding blanks.
QString entryValue(const QString &entry);
// "value {description}" with the description trimmed, or the value alone when the
// description is blank.
QString makeEntry(const QString &value, const QString &description);

// The data value with `value` appended after a "," (or alone when the data value is blank),
// trimmed; std::nullopt when that is longer than `maxLen`. A value already present is
// appended again.
std::optional<QString> inserted(const QString &data, const QString &value, qint64 maxLen);
// The data value with every "value," then every ",value" then every remaining "value" cut
// out: plain, case-sensitive substring matching, so a value inside a longer one is cut too.
QString removed(const QString &data, const QString &value);

// Where a list is kept: file, section and key. A coordinate that is blank means the list is
// neither read nor written.
struct Location
{
    QString file;
    QString section;
    QString key;
    bool isComplete() const;
};

// The entries stored at `where`, in order; fields that are blank after trimming are
// skipped. The value is read whole, however long (the settings readers cut long values,
// and a list cut short would be saved back cut at the next change). A missing file or key,
// or an incomplete location, gives no entries.
QStringList load(const Location &where);
// Writes the entries joined by "|"; nothing for an incomplete location. False when the file
// could not be written.
bool save(const Location &where, const QStringList &entries);

} // namespace plx::valuelist
