// apps/plxform/tests/sessionwalk_generator.h: the next step of a random session walk, chosen
// from the seed and from what the user is doing (browsing or editing), with the values a
// user types: good ones, and ones a row must refuse (letters in a number, 13/45/2020, numbers
// too wide for the field, text too long, characters the FoxPro code page cannot hold).
#pragma once

#include "apps/plxform/tests/sessionwalk_model.h"

#include <random>

namespace plx::walk {

class StepGenerator
{
public:
    StepGenerator(quint64 seed, bool typeTakenIDs);
    Step next(const WalkModel &model);

private:
    int below(int n) { return int(m_random() % quint64(n)); }
    MsgAnswer yesOrNo() { return below(2) == 0 ? MsgAnswer::Yes : MsgAnswer::No; }
    template<typename T> const T &pick(const QList<T> &list)
    {
        return list[below(int(list.size()))];
    }
    Step browsingStep(const WalkModel &model);
    Step editingStep(const WalkModel &model);
    Step typing(const WalkModel &model);
    QString typedID(const WalkModel &model);
    QString typedName(const QStringList &good, int limit);
    QString typedNumber(bool rate);
    QString typedDate();
    QString typedNotes();
    QString findText(const WalkModel &model);
    QString freshID(const WalkModel &model, const QString &prefix, int digits);

    std::mt19937_64 m_random;
    bool m_typeTakenIDs;
    int m_serial = 0;
};

} // namespace plx::walk
