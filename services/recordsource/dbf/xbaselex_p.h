// services/recordsource/dbf/xbaselex_p.h: the words of an index expression.
//
// Names (letters, digits, _), numbers (digits with a point), texts in "", '' or [], the
// dotted words .T. .F. .Y. .N. .AND. .OR. .NOT., and symbols; the synonyms FoxPro accepts
// come out as one spelling: <> and != as #, ! as .NOT.
#pragma once

#include <QByteArray>
#include <QString>

namespace plx::xbase {

struct Token
{
    enum class Kind { End, Name, Number, Text, Symbol };
    Kind kind = Kind::End;
    QByteArray text; // names and symbols upper case; a text literal without its quotes
};

class Lexer
{
public:
    explicit Lexer(QByteArray text) : m_text(std::move(text)) { }

    // The next word; an End token at the end of the text, and also, with the reason in
    // `problem`, at a word that cannot be read.
    Token next(QString *problem);

private:
    Token dotted(QString *problem);
    Token symbol();

    QByteArray m_text;
    qsizetype m_pos = 0;
};

} // namespace plx::xbase
