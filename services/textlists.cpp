// services/textlists.cpp: collection look-ups, dynamic-array growth.
#include "services/texthelpers.h"

namespace plx {

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
