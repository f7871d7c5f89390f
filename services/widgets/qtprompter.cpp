// services/widgets/qtprompter.cpp: the QMessageBox / QInputDialog implementation of the
// prompter, which becomes the library's own prompter in every program that links it.
#include "services/widgets/qtprompter.h"

#include "services/internal/libraryprompter.h"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>

namespace plx {

namespace {

QMessageBox::Icon iconFor(int style)
{
    switch (style & 0x70) {
    case MsgStyle::Critical: return QMessageBox::Critical;
    case MsgStyle::Question: return QMessageBox::Question;
    case MsgStyle::Exclamation: return QMessageBox::Warning;
    case MsgStyle::Information: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

// The buttons of the style's low bits, in the order the hosts number them (first, second).
QList<QMessageBox::StandardButton> buttonsFor(int style)
{
    switch (style & 0x7) {
    case MsgStyle::OKCancel: return { QMessageBox::Ok, QMessageBox::Cancel };
    case 3: // Yes/No/Cancel
        return { QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel };
    case MsgStyle::YesNo: return { QMessageBox::Yes, QMessageBox::No };
    default: return { QMessageBox::Ok };
    }
}

MsgAnswer answerFor(int button, int style)
{
    switch (button) {
    case QMessageBox::Ok: return MsgAnswer::OK;
    case QMessageBox::Yes: return MsgAnswer::Yes;
    case QMessageBox::No: return MsgAnswer::No;
    case QMessageBox::Cancel: return MsgAnswer::Cancel;
    default:
        // The window was closed without a button: the safe answer of the button set.
        return (style & 0x7) == MsgStyle::YesNo ? MsgAnswer::No
            : (style & 0x7) == MsgStyle::OKOnly ? MsgAnswer::OK
                                                : MsgAnswer::Cancel;
    }
}

} // namespace

MsgAnswer QtPrompter::msgBox(const QString &prompt, int style, const QString &title)
{
    QMessageBox box(iconFor(style), title, prompt, QMessageBox::NoButton,
                    QApplication::activeWindow());
    const QList<QMessageBox::StandardButton> buttons = buttonsFor(style);
    for (QMessageBox::StandardButton b : buttons)
        box.addButton(b);
    const int defaultIndex = (style & 0x300) >> 8; // 0 first, 1 second, 2 third
    box.setDefaultButton(buttons.value(defaultIndex, buttons.first()));
    return answerFor(box.exec(), style);
}

std::optional<QString> QtPrompter::inputBox(const QString &prompt, const QString &title,
                                            const QString &defaultText)
{
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(), title, prompt,
                                               QLineEdit::Normal, defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

namespace {

bool installQtPrompter()
{
    static QtPrompter prompter;
    setLibraryPrompter(&prompter);
    return true;
}

} // namespace

} // namespace plx

// Linking this library makes message boxes the default way of asking: a program without
// it (a command-line tool on the record sources) gets the unattended answers instead.
extern "C" const bool plx_widget_prompter = plx::installQtPrompter();
