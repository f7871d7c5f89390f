// services/prompter.h: the seam through which the library shows message and input boxes.
//
// Every user-facing box of the controls has a fixed title, text and style, and tests must
// check those without a window ever appearing. So nothing calls QMessageBox directly: it
// goes through a Prompter, which a test replaces by a scripted one. The message-box
// implementation is QtPrompter (services/widgets/qtprompter.h); this interface needs Qt Core
// only, so headless programs can use the code that asks.
#pragma once

#include <QString>

#include <optional>

namespace plx {

// Message-box flags and answers; the numeric values are fixed by the hosts' interface.
namespace MsgStyle {
constexpr int OKOnly = 0, OKCancel = 1, YesNo = 4, Critical = 16, Question = 32, Exclamation = 48,
              Information = 64, DefaultButton2 = 256;
}
enum class MsgAnswer : int { OK = 1, Cancel = 2, Yes = 6, No = 7 };

// Shows messages and asks questions on behalf of the controls.
class Prompter
{
public:
    virtual ~Prompter() = default;
    // Shows a modal box; `style` combines the MsgStyle flags. Returns the button chosen;
    // closing the box counts as Cancel (OK/Cancel) or No (Yes/No).
    virtual MsgAnswer msgBox(const QString &prompt, int style, const QString &title) = 0;
    // Asks for a line of text. std::nullopt when the user cancels.
    virtual std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                            const QString &defaultText) = 0;
};

} // namespace plx
