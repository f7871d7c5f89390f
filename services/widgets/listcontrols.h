// services/widgets/listcontrols.h: selecting an item of a combo or list box by its text, as
// the hosts find sort orders and filters by name.
#pragma once

#include <QString>

class QComboBox;
class QListWidget;

namespace plx {

// Selects the first item equal to `text` (both trimmed; upper-cased with ignoreCase) and
// returns its index; -1 (and nothing selected) when none matches or the control is null.
int setComboBox(QComboBox *combo, const QString &text, bool ignoreCase);
int setComboBox(QListWidget *list, const QString &text, bool ignoreCase);

} // namespace plx
