// navigator/mvplxrecs_watch.cpp: reading the records again when others changed them.
//
// The record source says whether another user wrote to its table (TableChanges); asking
// costs no read of the table, so it is asked on a timer. The records are read again only
// when the navigator is at rest: never inside a command, a find, an edit or a box, where a
// new record source under the user's feet would lose what they are doing; a change seen
// then is read at the first tick after it.
#include "navigator/mvplxrecs_p.h"
#include "services/recordsource/recordsource.h"
#include "services/recordsource/tablechanges.h"

#include <QApplication>
#include <QTimer>

namespace plx {

qint32 mvPLXRecs::lWatchMS() const
{
    return d_ptr->watchMs;
}

void mvPLXRecs::setLWatchMS(qint32 ms)
{
    d_ptr->trapped("setLWatchMS", [&] {
        d_ptr->watchMs = qMax(0, ms);
        d_ptr->watchChanges();
    });
}

void mvPLXRecsPrivate::watchChanges()
{
    Q_Q(mvPLXRecs);
    const bool canTell = dynamic_cast<TableChanges *>(rs.get()) != nullptr;
    if (!canTell || watchMs <= 0) {
        if (changeWatch)
            changeWatch->stop();
        return;
    }
    if (!changeWatch) {
        changeWatch = new QTimer(q);
        QObject::connect(changeWatch, &QTimer::timeout, q,
                         [this] { trapped("lWatchMS", [&] { changeWatchTick(); }); });
    }
    changeWatch->start(watchMs);
}

void mvPLXRecsPrivate::changeWatchTick()
{
    Q_Q(mvPLXRecs);
    auto *changes = dynamic_cast<TableChanges *>(rs.get());
    if (!changes || !q->isEnabled())
        return;
    const bool busy = commands.isRunning() || commands.mode() != RecordCommands::Mode::None
        || rs->editMode() != EditMode::None || findSession.isRunning()
        || QApplication::activeModalWidget() || QApplication::activePopupWidget();
    if (busy || !changes->changedElsewhere())
        return;
    const QString oldID = currentIDText();
    if (!requery(oldID, true))
        return;
    bInitiator = true;
    sEventInfo = QStringLiteral("ChangedByOthers");
    Q_EMIT q->IDChange(currentIDText());
}

} // namespace plx
