// navigator/filterlist.h: the saved-filter file of a table and loading its filter names.
//
// Each section of "HBFiltersPLX.INI" beside a table file is one saved filter; the section
// name is what the user sees. The keys inside belong to the host, which keeps each
// filter's WHERE text there.
#pragma once

#include <QString>

class QComboBox;

namespace plx {

// Fills `list` with the section names of the filter file in `directory`, in file order,
// after clearing it. A missing file leaves the list empty; a null `list` does nothing.
void PLXLoadFilterINI(QComboBox *list, const QString &directory);

// The filter file beside the table (or database) file `tablePath`: its folder joined with
// "HBFiltersPLX.INI". The file need not exist.
QString filterFilePath(const QString &tablePath);

} // namespace plx
