// services/inisnapshot.h: a settings file read and parsed once, for readers of many values.
//
// readINI reads and parses the whole file for every value, as the profile functions do;
// that is right for the few settings a control reads, and ruinous for a file of thousands
// of sections (a form description of 100,000 rows took minutes). A snapshot reads the file
// once and answers every look-up from a hash:
//
//     if (const QString problem = plx::settingsFileSizeProblem(path); !problem.isEmpty())
//         ...                                        // over 16 MB: refuse before reading
//     const plx::IniSnapshot form = plx::IniSnapshot::parse(bytesOfTheFile);
//     for (const plx::IniSnapshot::Section &s : form.sections())
//         ... form.value(s.name, QStringLiteral("Caption")) ...
//
// Look-ups follow readINI's rules: section and key names compared case-insensitively, the
// first section of a name and the first key of a name in it win, blanks around the value
// and one pair of quotes around the whole of it removed; the same encodings (Windows-1252,
// UTF-8 with a byte-order mark). Unlike readINI a value is never cut: callers get it whole
// and decide what is too long (kMaxSettingsValueChars in services/ini.h).
//
// It is a snapshot: later changes to the file are not seen.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace plx {

class IniSnapshot
{
public:
    // One [section] line and the lines under it, in file order; a name may occur twice.
    struct Section
    {
        QString name; // as written, trimmed
        // The key of each line with "=", as written and trimmed; a line without "=" as a
        // whole. Blank lines and comments (";") are left out of this list.
        QStringList keys;
    };

    IniSnapshot() = default;
    // The snapshot of a file's raw contents (the caller reads the file, after checking
    // its size with settingsFileSizeProblem).
    static IniSnapshot parse(const QByteArray &contents);

    // The value of `key` in `section`; std::nullopt when there is none.
    std::optional<QString> find(const QString &section, const QString &key) const;
    // The value, or `def` when there is none.
    QString value(const QString &section, const QString &key, const QString &def = {}) const;

    // Every section header of the file, in order, duplicates included.
    const QList<Section> &sections() const { return m_sections; }

private:
    // A section and key name pair, compared as the profile reader compares names. The
    // hash is kept: most comparisons in a large table are then settled without reading
    // the names.
    struct Name
    {
        Name(QString sectionName, QString keyName);
        QString section;
        QString key;
        size_t hash;
        bool operator==(const Name &other) const;
        friend size_t qHash(const Name &name, size_t seed) { return name.hash ^ seed; }
    };

    QList<Section> m_sections;
    QHash<Name, QString> m_values; // the first value of each name
};

} // namespace plx
