// services/widgets/qtprompter.h: the message-box implementation of the prompter.
#pragma once

#include "services/prompter.h"

namespace plx {

// The production prompter: QMessageBox and QInputDialog, parented to the active window.
// GUI thread only.
class QtPrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override;
};

} // namespace plx
