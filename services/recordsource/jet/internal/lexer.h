// services/recordsource/jet/internal/lexer.h: splits Jet SQL text into tokens.
//
// Jet delimits text with '...' or "..." (the delimiter doubled inside), dates with #...#
// (month first), and names with [...] or `...`. Every token keeps its 1-based position so
// that errors can say where they are.
#pragma once

#include "services/recordsource/result.h"

#include <QDateTime>
#include <QString>

#include <vector>

namespace plx::jet {

enum class TokenKind {
    Name, // a bare word: keyword, function or field
    BracketName, // [..] or `..`: always a name
    Text, // a string literal, quotes removed
    Number,
    Date,
    Symbol, // operators and punctuation: & + - * / \ ^ = <> < > <= >= ( ) , . ! ;
    End,
};

struct Token
{
    TokenKind kind = TokenKind::End;
    QString text; // the name, the literal's value, or the symbol
    double number = 0;
    QDateTime date;
    int pos = 0; // 1-based

    bool isSymbol(QLatin1String s) const { return kind == TokenKind::Symbol && text == s; }
    bool isWord(QLatin1String w) const
    {
        return kind == TokenKind::Name && text.compare(w, Qt::CaseInsensitive) == 0;
    }
};

// Bounds an engine may set on the texts it runs, so that no text costs more than a user
// waits for. None by default. A text beyond a bound is refused before it is parsed, with
// NotSupported and a one-line message naming the bound: "the query is too long to run (more
// than 100,000 terms); shorten the condition".
struct ParseLimits
{
    qsizetype maxCharacters = 0; // of the whole text; 0: no bound
    // Terms: every name, keyword, constant and operator (a parenthesis or a comma is none),
    // so "A = 1 Or A = 2" has seven. 0: no bound.
    int maxTerms = 0;
};

// Syntax errors name the offending text and its position. A text beyond `limits` is refused
// as soon as the bound is crossed.
Result<std::vector<Token>> tokenize(const QString &text, const ParseLimits &limits = {});

// The terms among `tokens` (see ParseLimits).
int countTerms(const std::vector<Token> &tokens);
// OK when a text of `terms` terms is within `limits`' bound on terms; otherwise the error
// tokenize() gives for such a text.
Status checkTerms(int terms, const ParseLimits &limits);

// Reads the inside of a #...# literal: month first (m/d/yyyy, with an optional time, and
// "AM"/"PM"), ISO yyyy-mm-dd, or a time alone (on 12/30/1899). Invalid month-first dates
// whose month is above 12 are read day first, as Jet guesses. An invalid date gives an
// invalid QDateTime.
QDateTime parseJetDate(const QString &inside);

} // namespace plx::jet
