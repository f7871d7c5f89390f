// services/recordsource/foxpro/prefixscan_p.h: the find query's condition as byte tests.
//
// The navigator's find sends UCase([T.F]) LIKE 'TEXT*' (several joined with AND) on every
// keystroke. Decoding every record's text and upper-casing it costs far more than the scan
// itself, so each condition is compiled into a table that says, for each position of the
// prefix and each byte of the code page, whether the byte's upper-case character is the
// prefix's character there. A byte whose upper-case form is not one character (German sharp
// s becomes "SS") or that has no character makes the record undecided: that record alone goes
// to the general evaluator, which keeps every answer identical to it. In the General order
// Like ignores case, so the tables compare case-folded characters, as the evaluator does.
#pragma once

#include "services/recordsource/dbf/internal/dbftable.h"
#include "services/recordsource/jet/internal/ast.h"
#include "services/recordsource/textcompare.h"

#include <optional>
#include <vector>

namespace plx::foxpro {

enum class Verdict : quint8 { Reject, Accept, Undecided };

class PrefixScan
{
public:
    // The scan for `where` when it is one find condition on a character field or several
    // joined with AND, Like comparing as `collate` says; nothing for any other condition.
    static std::optional<PrefixScan> compile(const DbfTable &table, const jet::Node &where,
                                             TextCompare collate);

    // The verdict on one record's bytes (delete flag first).
    Verdict test(const char *record) const
    {
        Verdict result = Verdict::Accept;
        for (const Test &t : m_tests) {
            const Verdict v = t.test(record);
            if (v == Verdict::Reject)
                return v;
            if (v == Verdict::Undecided)
                result = v;
        }
        return result;
    }

private:
    struct Test
    {
        int offset = 0; // of the field in the record
        int fieldLength = 0;
        int prefixLength = 0;
        bool never = false; // the prefix is longer than the field
        bool blankLast = false; // the prefix ends in a blank, which a trimmed value lacks
        std::vector<Verdict> verdict; // prefixLength x 256

        Verdict test(const char *record) const
        {
            if (never)
                return Verdict::Reject;
            const auto *p = reinterpret_cast<const unsigned char *>(record + offset);
            const Verdict *row = verdict.data();
            for (int i = 0; i < prefixLength; ++i, row += 256) {
                const Verdict v = row[p[i]];
                if (v != Verdict::Accept)
                    return v;
            }
            if (blankLast) {
                // The value read has its trailing blanks removed: it holds the prefix only
                // when something other than blanks follows.
                for (int i = prefixLength; i < fieldLength; ++i) {
                    if (p[i] != ' ' && p[i] != '\0')
                        return Verdict::Accept;
                }
                return Verdict::Reject;
            }
            return Verdict::Accept;
        }
    };
    static std::optional<Test> compileOne(const DbfTable &table, const jet::Node &like,
                                          TextCompare collate);

    std::vector<Test> m_tests;
};

} // namespace plx::foxpro
