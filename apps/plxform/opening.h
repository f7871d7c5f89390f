// apps/plxform/opening.h: from what the user named (a table file, a SQLite database, a
// form description, or nothing: the sample) to the description of the form to show, and
// how a table that cannot be opened is told.
#pragma once

#include "apps/plxform/formdescription.h"
#include "services/env.h"

#include <functional>
#include <optional>

namespace plx::form {

struct OpenRequest
{
    QString target; // a .DBF, a form description (.ini) or a SQLite file; "" with sqlite
    QString sqlite; // --sqlite FILE
    QString postgres; // --postgres CONNINFO
    QString table; // --table T (SQLite, PostgreSQL)
    std::optional<int> codePage; // --codepage N: wins over the form description's
    std::optional<QString> collate; // --collate general|machine
};

// Asks which table of `database` to show; std::nullopt when the user declines.
using TableChooserFn =
    std::function<std::optional<QString>(const QString &database, const QStringList &tables)>;

// The form `request` asks for: the sample when it names nothing. A SQLite or PostgreSQL
// database with several tables and no table named asks `chooseTable`. NotFound for a file that is not
// there (a SQLite database is never made by asking for it) or a table the database lacks.
Result<FormDescription> describeRequest(const OpenRequest &request,
                                        const TableChooserFn &chooseTable, QStringList *warnings);

// The same for one path (the File menu's Open).
Result<FormDescription> describePath(const QString &path, const TableChooserFn &chooseTable,
                                     QStringList *warnings);

// The message of a request the user called off in the table chooser: nothing to tell.
bool wasDeclined(const Status &status);

// Tells the user that the form could not be opened and why: a line on stderr and a
// critical box titled kOpenFailureTitle through the prompter of `services`.
void reportOpenFailure(Services *services, const QString &reason);
inline const QString kOpenFailureTitle = QStringLiteral("Cannot Open Table");

} // namespace plx::form
