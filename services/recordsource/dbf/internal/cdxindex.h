// services/recordsource/dbf/internal/cdxindex.h: a table's structural compound index kept up to
// date as the table is written, checked, rebuilt and searched.
//
// Opening compiles every tag's key and FOR expression against the table; a tag whose
// expression cannot be evaluated, or whose collation is not "MACHINE", makes the index
// impossible to maintain (NotSupported, naming the tag and its expression), and the table
// then stays read only.
//
// One write of the table is one update of the index:
//     auto before = index.keysOf(recno);      // under the record lock, before the write
//     index.beginUpdate();                    // index lock, update mark
//     ... write the record ...
//     index.applyChange(recno, *before, *index.keysOf(recno));
//     index.endUpdate();                      // counter raised, mark cleared, lock released
// Each tag's key is removed and inserted only when it changed. Deleted records keep their
// keys, as in FoxPro; a FOR clause decides whether a record has a key at all; a unique tag
// holds each key once, filed under the lowest record number that has it.
//
// An update cut short leaves its mark in the file header (see cdxpages_p.h): stale() says so,
// and reindex() rebuilds every tag from the table.
#pragma once

#include "services/recordsource/dbf/internal/cdxfile.h"
#include "services/recordsource/dbf/internal/xbaseexpression.h"

#include <QSet>

#include <optional>
#include <vector>

namespace plx {

// A tag to create: INDEX ON key TAG name [FOR filter] [UNIQUE] [DESCENDING].
struct CdxTagDefinition
{
    QString name; // at most 10 characters
    QByteArray key;
    QByteArray filter;
    int keyLength = 0; // the bytes of the key expression's value
    bool unique = false;
    bool descending = false;
};

class CdxIndex
{
public:
    ~CdxIndex();
    CdxIndex(const CdxIndex &) = delete;
    CdxIndex &operator=(const CdxIndex &) = delete;

    // `table` must outlive the index. NotSupported (the sentence names the tag and its
    // expression) when a tag cannot be maintained; Corrupt or IoError from the file.
    static Result<std::unique_ptr<CdxIndex>> open(const QString &path, const DbfTable &table,
                                                  bool writable);

    // Writes a new structural index at `path` with `tags` built from `table` (FoxPro 2.x
    // layout: compact, compound, MACHINE collation), as INDEX ON ... TAG does.
    static Result<std::unique_ptr<CdxIndex>> create(const QString &path, const DbfTable &table,
                                                    const QList<CdxTagDefinition> &tags);

    const QString &path() const { return m_file->path(); }
    const QList<CdxTag> &tags() const { return m_file->tags(); }

    // Each tag's key of record `recno` as it is now; nullopt where the FOR clause leaves
    // the record out.
    using Keys = QList<std::optional<QByteArray>>;
    Result<Keys> keysOf(quint32 recno) const;

    // Takes the index lock (waiting up to `timeoutMs`) and marks the update as begun.
    Status beginUpdate(int timeoutMs = 5000);
    Status applyChange(quint32 recno, const Keys &before, const Keys &after);
    // Raises the update counter and clears the mark when `completed`, syncs when `durable`,
    // and always releases the index lock.
    Status endUpdate(bool completed, bool durable);

    // Whether an update was cut short since the last complete one.
    Result<bool> stale() const;
    // Rewrites the whole file from the table: every tag rebuilt, the free list emptied.
    // Takes the index lock itself.
    Status reindex();
    // Rewrites the whole file with the tags it has and `tag` (built as create() builds
    // them), in place and under the index lock, raising the update counter so that other
    // objects on the file reload its tags. InvalidArgument for a name in use.
    Status addTag(const CdxTagDefinition &tag);
    // The first inconsistency between the index and the table, as a Corrupt Status naming
    // the tag; Ok when every tag holds exactly the keys the table gives.
    Status check() const;

    // The tag whose key expression is `expression` (letters in any case, blanks ignored);
    // -1 when none is.
    int tagWithExpression(const QByteArray &expression) const;
    // The record numbers tag `tag` files under `key` (key bytes, padded to the key length).
    Result<QList<quint32>> find(int tag, const QByteArray &key) const;
    // Every record number tag `tag` holds, in its key order.
    Result<std::vector<quint32>> recordsInOrder(int tag) const;
    // The key of a value in tag `tag` (its key length, as keyOf()).
    int keyLength(int tag) const { return tags()[tag].keyLength; }

private:
    CdxIndex() = default;
    struct Compiled;
    Status compileTags();
    Status reload();
    Status markBegun();
    Status removeKey(int tag, const QByteArray &key, quint32 recno);
    Status addKey(int tag, const QByteArray &key, quint32 recno);
    Result<std::optional<quint32>> firstRecordWith(int tag, const QByteArray &key,
                                                   quint32 except) const;
    Result<QByteArray> rebuiltFile() const;
    Status checkTag(int tag, QSet<quint32> *treePages) const;

    const DbfTable *m_table = nullptr;
    std::unique_ptr<CdxFile> m_file;
    NativeFileHandle m_fd{};
    bool m_writable = false;
    bool m_locked = false;
    quint32 m_counter = 0;
    std::vector<Compiled> m_compiled;
};

} // namespace plx
