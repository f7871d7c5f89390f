// navigator/mvplxrecs_buttons.cpp: the bottom toolbar's buttons, found by caption, their
// enabled states and tool tips, pressing one by program, and the controls that rest while
// a record is edited.
#include "navigator/mvplxrecs_p.h"

#include "services/recordsource/recordsource.h"
#include "services/texthelpers.h"

#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QScrollBar>
#include <QToolBar>

namespace plx {

QAction *mvPLXRecsPrivate::findButton(const QString &caption, bool report) const
{
    // Hosts and the record commands name the buttons in capitals ("EDIT") while their
    // captions read "Edit": the caption is compared without regard to case.
    const QList<QAction *> actions = tbrBtm->actions();
    for (QAction *action : actions) {
        if (!action->isSeparator() && action->text().compare(caption, Qt::CaseInsensitive) == 0)
            return action;
    }
    if (report)
        showBox(QStringLiteral("Button key not found: ") + caption, MsgStyle::OKOnly,
                messageTitle());
    return nullptr;
}

bool mvPLXRecsPrivate::buttonEnabled(const QString &caption) const
{
    QAction *button = findButton(caption, true);
    return button && button->isEnabled();
}

void mvPLXRecsPrivate::setButtonEnabled(const QString &caption, bool enable) const
{
    if (QAction *button = findButton(caption, true))
        button->setEnabled(enable);
}

bool mvPLXRecs::bButtonEnable(const QString &sButton)
{
    return d_ptr->trapped("bButtonEnable", [&] { return d_ptr->buttonEnabled(sButton); });
}

void mvPLXRecs::setBButtonEnable(const QString &sButton, bool enable)
{
    d_ptr->trapped("setBButtonEnable", [&] { d_ptr->setButtonEnabled(sButton, enable); });
}

void mvPLXRecs::setSButtonTip(const QString &sButton, const QString &tip)
{
    d_ptr->trapped("setSButtonTip", [&] {
        if (QAction *button = d_ptr->findButton(sButton, true))
            button->setToolTip(tip);
    });
}

void mvPLXRecs::ClickButton(const QString &sButton)
{
    d_ptr->trapped("ClickButton", [&] { d_ptr->clickButton(sButton); });
}

void mvPLXRecsPrivate::clickButton(const QString &caption)
{
    QAction *button = findButton(caption, true);
    if (!button)
        return;
    if (!button->isEnabled()) {
        showBox(QStringLiteral("Button not enabled: ") + caption, MsgStyle::OKOnly, messageTitle());
        return;
    }
    toolbarClicked(button);
}

void mvPLXRecs::setBRecDisplay(bool display)
{
    d_ptr->trapped("setBRecDisplay", [&] { d_ptr->setBRecDisplay(display); });
}

void mvPLXRecsPrivate::setBRecDisplay(bool display)
{
    bRecDisplay = display;
    const bool edit = !buttonEnabled(QStringLiteral("SAVE")) && display;
    setButtonEnabled(QStringLiteral("EDIT"), edit);
    setButtonEnabled(QStringLiteral("COPY"), edit);
    setButtonEnabled(QStringLiteral("DELETE"), edit);
    applyReadOnly();
}

void mvPLXRecsPrivate::setNavigationEnabled(bool enabled)
{
    for (QWidget *control : std::initializer_list<QWidget *>{ cboSort, cboFilter, cmdFilter,
                                                              cboFind, cmdFind, cmdBrowse })
        control->setEnabled(enabled);
    // Stepping away from a record in edit would leave its changes behind (and the next
    // SAVE would write them into the record stepped to): Back, Next and the scroll bar
    // rest while a record is edited.
    cmdRecBack->setEnabled(enabled);
    cmdRecNext->setEnabled(enabled);
    // Back to browsing, the bar stands at the record and reaches every record: the command
    // that ran meanwhile may have added, kept or removed records.
    if (enabled && rs)
        setScrollBar();
    else
        hscroll->setEnabled(false);
}

void mvPLXRecsPrivate::setButtonsForEditing(bool editing)
{
    // Buttons 1-4 (New, Edit, Copy, Delete) start editing, 5-6 (Save, Cancel) end it.
    const QList<QAction *> actions = tbrBtm->actions();
    int index = 0;
    for (QAction *action : actions) {
        if (action->isSeparator())
            continue;
        ++index;
        if (index <= 4)
            action->setEnabled(!editing);
        else if (index <= 6)
            action->setEnabled(editing);
    }
    setNavigationEnabled(!editing);
    applyReadOnly();
}

void mvPLXRecsPrivate::applyReadOnly()
{
    // A source that refuses every write gets no command that would write: each says why
    // in its tool tip, and gets its own tip back when the source can be written again.
    const QString reason = rs ? rs->readOnlyReason() : QString();
    for (const char *key : { "NEW", "EDIT", "COPY", "DELETE" }) {
        QAction *action = findButton(QString::fromLatin1(key), false);
        if (!action)
            continue;
        const QVariant ownTip = action->property("plxOwnTip");
        if (!reason.isEmpty()) {
            if (!ownTip.isValid())
                action->setProperty("plxOwnTip", action->toolTip());
            action->setEnabled(false);
            action->setToolTip(reason);
        } else if (ownTip.isValid()) {
            action->setToolTip(ownTip.toString());
            action->setProperty("plxOwnTip", QVariant());
            action->setEnabled(!buttonEnabled(QStringLiteral("SAVE")));
        }
    }
}

} // namespace plx
