// navigator/mvplxrecs_buttons.cpp: the bottom toolbar's buttons, found by caption, their
// enabled states and tool tips, and pressing one by program.
#include "navigator/mvplxrecs.h"

#include "services/texthelpers.h"

#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QScrollBar>

#include "services/recordsource/recordsource.h"
#include <QToolBar>

namespace plx {

QAction *mvPLXRecs::findButton(const QString &sButton, bool report)
{
    // Hosts and the record commands name the buttons in capitals ("EDIT") while their
    // captions read "Edit": the caption is compared without regard to case.
    const QList<QAction *> actions = m_tbrBtm->actions();
    for (QAction *action : actions) {
        if (!action->isSeparator() && action->text().compare(sButton, Qt::CaseInsensitive) == 0)
            return action;
    }
    if (report)
        showBox(QStringLiteral("Button key not found: ") + sButton, MsgStyle::OKOnly,
                messageTitle());
    return nullptr;
}

bool mvPLXRecs::bButtonEnable(const QString &sButton)
{
    QAction *button = findButton(sButton, true);
    return button && button->isEnabled();
}

void mvPLXRecs::setBButtonEnable(const QString &sButton, bool enable)
{
    if (QAction *button = findButton(sButton, true))
        button->setEnabled(enable);
}

void mvPLXRecs::setSButtonTip(const QString &sButton, const QString &tip)
{
    if (QAction *button = findButton(sButton, true))
        button->setToolTip(tip);
}

void mvPLXRecs::ClickButton(const QString &sButton)
{
    QAction *button = findButton(sButton, true);
    if (!button)
        return;
    if (!button->isEnabled()) {
        showBox(QStringLiteral("Button not enabled: ") + sButton, MsgStyle::OKOnly, messageTitle());
        return;
    }
    toolbarClicked(button);
}

void mvPLXRecs::setNavigationEnabled(bool enabled)
{
    for (QWidget *control : std::initializer_list<QWidget *>{ m_cboSort, m_cboFilter, m_cmdFilter,
                                                              m_cboFind, m_cmdFind, m_cmdBrowse })
        control->setEnabled(enabled);
    // Stepping away from a record in edit would leave its changes behind (and the next
    // SAVE would write them into the record stepped to): Back, Next and the scroll bar
    // rest while a record is edited.
    m_cmdRecBack->setEnabled(enabled);
    m_cmdRecNext->setEnabled(enabled);
    m_hscroll->setEnabled(enabled && m_rs && m_rs->RecordCount() > 0);
}

void mvPLXRecs::setButtonsForEditing(bool editing)
{
    // Buttons 1-4 (New, Edit, Copy, Delete) start editing, 5-6 (Save, Cancel) end it.
    const QList<QAction *> actions = m_tbrBtm->actions();
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

void mvPLXRecs::applyReadOnly()
{
    // A source that refuses every write gets no command that would write: each says why
    // in its tool tip, and gets its own tip back when the source can be written again.
    const QString reason = m_rs ? m_rs->readOnlyReason() : QString();
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
            action->setEnabled(!bButtonEnable(QStringLiteral("SAVE")));
        }
    }
}

} // namespace plx
