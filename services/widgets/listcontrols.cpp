// services/widgets/listcontrols.cpp: selecting an item of a combo or list box by its text.
#include "services/widgets/listcontrols.h"

#include "services/texthelpers.h"

#include <QComboBox>
#include <QListWidget>

namespace plx {

namespace {

bool itemMatches(const QString &item, const QString &wanted, bool ignoreCase)
{
    const QString a = trimSpaces(item);
    return ignoreCase ? a.toUpper() == wanted : a == wanted;
}

QString wantedText(const QString &text, bool ignoreCase)
{
    const QString t = trimSpaces(text);
    return ignoreCase ? t.toUpper() : t;
}

} // namespace

int setComboBox(QComboBox *combo, const QString &text, bool ignoreCase)
{
    if (!combo)
        return -1;
    const QString wanted = wantedText(text, ignoreCase);
    for (int i = 0; i < combo->count(); ++i) {
        if (itemMatches(combo->itemText(i), wanted, ignoreCase)) {
            combo->setCurrentIndex(i);
            return i;
        }
    }
    combo->setCurrentIndex(-1);
    return -1;
}

int setComboBox(QListWidget *list, const QString &text, bool ignoreCase)
{
    if (!list)
        return -1;
    const QString wanted = wantedText(text, ignoreCase);
    for (int i = 0; i < list->count(); ++i) {
        const QListWidgetItem *item = list->item(i);
        if (item && itemMatches(item->text(), wanted, ignoreCase)) {
            list->setCurrentRow(i);
            return i;
        }
    }
    list->setCurrentRow(-1);
    return -1;
}

} // namespace plx
