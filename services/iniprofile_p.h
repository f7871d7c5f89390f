// services/iniprofile_p.h: the in-memory form of one settings file, line by line.
//
// Each line keeps its raw bytes (terminator included), so that a rewrite reproduces every
// line it did not change byte for byte, whatever its line end or encoding oddities.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

namespace plx {

class IniProfile
{
public:
    // Splits raw file contents. A UTF-8 byte-order mark makes the file UTF-8; otherwise it
    // is Windows-1252.
    static IniProfile parse(const QByteArray &contents);

    // The first matching key of the first matching section, already trimmed and unquoted;
    // false when there is none.
    bool find(const QString &section, const QString &key, QString *value) const;
    // Replaces the first matching key line, or adds the key at the end of the section, or
    // appends the section.
    void set(const QString &section, const QString &key, const QString &value);
    // Removes every section of that name, each from its header up to the next header;
    // false when there was none.
    bool removeSection(const QString &section);
    QByteArray serialize() const;

    // Decoded lines without their terminators.
    const QList<QString> &lines() const { return m_text; }

    // The grammar, shared with IniSnapshot so that both read a file alike.
    // The whole text of a file: UTF-8 after a byte-order mark, else Windows-1252.
    static QString decode(const QByteArray &contents);
    // True for a header line ("[name]", or "[name" without its bracket), with `name` its
    // name, blanks trimmed (possibly empty).
    static bool isHeader(QStringView line, QStringView *name);
    // Splits "key = value" at the first "=" and trims both; false for a line without "=".
    static bool keyLine(QStringView line, QStringView *key, QStringView *value);
    // A trimmed value without one pair of matching quotes around the whole of it.
    static QStringView unquoted(QStringView value);

private:
    QByteArray encodeLine(const QString &text) const;
    qsizetype findSection(const QString &section) const; // header index or -1
    qsizetype sectionEnd(qsizetype header) const; // index of the next header or size

    bool m_utf8Bom = false;
    QList<QByteArray> m_raw;
    QList<QString> m_text;
};

} // namespace plx
