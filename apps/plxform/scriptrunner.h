// apps/plxform/scriptrunner.h: drives an open form from a text file of commands, the way a
// user would with the mouse and keyboard, for batch data entry and for tests.
//
//   find TEXT          types TEXT in the find box and presses Enter
//   click BUTTON       presses a toolbar button by caption (New, Edit, Save, ...)
//   set FIELD VALUE    types VALUE into the row bound to FIELD
//   next | back        steps one record
//   print id           prints the current record's ID (as character codes) on stdout
//   print ready        prints "ready" on stdout (a sign for whoever waits)
//   wait SECONDS       lets the form run for that long
//   repeat N ... end   runs the lines between N times
// Every box the form shows is answered with its first button and written to stderr as
// "box: TITLE: TEXT" (line breaks as " | ").
#pragma once

#include "services/prompter.h"

#include <QStringList>

namespace plx::form {

class HostForm;

// Answers every box as a scripted user does, and tells stderr what it said.
class ScriptPrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;
};

// Runs `lines` on `form`; false with `error` (naming the line) for a line it cannot read.
bool runScript(HostForm &form, const QStringList &lines, QString *error);

} // namespace plx::form
