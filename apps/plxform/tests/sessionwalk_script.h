// apps/plxform/tests/sessionwalk_script.h: one user step of a session walk, and the text
// form a walk is printed in and replayed from: one action a line, the answers the user
// gives to the Yes/No (and Yes/No/Cancel) boxes of that action on "ANSWER" lines after it.
//
//   # lines starting with # are comments
//   NEW
//   TYPE ID PLEW000123          the rest of the line is the text; \n \r \t \\ escaped
//   SAVE
//   CANCEL
//   ANSWER No
//   BACK | NEXT | SCROLL 17 | SORT City | FIND Oak | FILTER Texas and Ohio | REOPEN
//   EDIT | COPY | DELETE (ANSWER Yes, ANSWER Yes)
#pragma once

#include "services/prompter.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace plx::walk {

struct Step
{
    QString verb; // NEW COPY EDIT SAVE CANCEL DELETE TYPE BACK NEXT SCROLL SORT FIND FILTER REOPEN
    QString field; // TYPE: the field of the row typed into
    QString text; // TYPE: what is typed; SCROLL: the value; SORT, FILTER: the name; FIND: the text
    QList<MsgAnswer> answers; // to the Yes/No(/Cancel) boxes the step shows, in order

    bool operator==(const Step &other) const = default;
};

QString formatScript(const QList<Step> &steps, const QStringList &comments = {});
// False with `error` naming the line for a line that is no step.
bool parseScript(const QString &script, QList<Step> *steps, QString *error);

} // namespace plx::walk
