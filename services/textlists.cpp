// services/textlists.cpp: list-control and collection look-ups, dynamic-array growth.
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

bool keyInCollection(const QString &name, const QObjectList &collection)
{
    const QString wanted = trimSpaces(name).toUpper();
    for (const QObject *member : collection) {
        if (member && trimSpaces(member->objectName()).toUpper() == wanted)
            return true;
    }
    return false;
}

namespace {

template<typename List> qint32 growByOne(List &array, qint16 firstIndex)
{
    const qint32 newLast = arrayUBound(array, qint16(firstIndex - 1), 1) + 1;
    // Deliberate: the lower bound is 0, so a first element at index 1 leaves element 0
    // as an empty placeholder.
    while (array.size() < newLast + 1)
        array.append(typename List::value_type());
    return newLast;
}

} // namespace

qint32 incRedim(QStringList &array, qint16 firstIndex)
{
    return growByOne(array, firstIndex);
}

qint32 incRedim(QVariantList &array, qint16 firstIndex)
{
    return growByOne(array, firstIndex);
}

void addToArray(QStringList &array, const QString &value, qint16 firstIndex)
{
    const qint32 at = incRedim(array, firstIndex);
    array[at] = value;
}

void addToArray(QVariantList &array, const QVariant &value, qint16 firstIndex)
{
    const qint32 at = incRedim(array, firstIndex);
    array[at] = value;
}

} // namespace plx
