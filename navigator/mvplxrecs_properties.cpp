// navigator/mvplxrecs_properties.cpp: the plain properties: stored, read back, and used by
// the record work in the other files. Copying a Qt value shares it, so none of these can
// fail.
#include "navigator/mvplxrecs_p.h"

namespace plx {

QString mvPLXRecs::sSort() const
{
    return d_ptr->sSort;
}

void mvPLXRecs::setSSort(const QString &sort)
{
    d_ptr->sSort = sort;
}

QString mvPLXRecs::sCBOSort() const
{
    return d_ptr->sCBOSort;
}

void mvPLXRecs::setSCBOSort(const QString &name)
{
    d_ptr->sCBOSort = name;
}

QString mvPLXRecs::sIDfield() const
{
    return d_ptr->sIDfield;
}

void mvPLXRecs::setSIDfield(const QString &field)
{
    d_ptr->sIDfield = field;
}

QString mvPLXRecs::sDescfield() const
{
    return d_ptr->sDescfield;
}

void mvPLXRecs::setSDescfield(const QString &field)
{
    d_ptr->sDescfield = field;
}

QString mvPLXRecs::sDesc() const
{
    return d_ptr->sDesc;
}

void mvPLXRecs::setSDesc(const QString &desc)
{
    d_ptr->sDesc = desc;
}

qint32 mvPLXRecs::lAltGrayColor() const
{
    return d_ptr->lAltGrayColor;
}

void mvPLXRecs::setLAltGrayColor(qint32 colour)
{
    d_ptr->lAltGrayColor = colour;
}

QString mvPLXRecs::sUser() const
{
    return d_ptr->sUser;
}

void mvPLXRecs::setSUser(const QString &user)
{
    d_ptr->sUser = user;
}

QString mvPLXRecs::sUserINIFile() const
{
    return d_ptr->sUserINIFile;
}

void mvPLXRecs::setSUserINIFile(const QString &file)
{
    d_ptr->sUserINIFile = file;
}

QString mvPLXRecs::sSQLWhere() const
{
    return d_ptr->sSQLWhere;
}

void mvPLXRecs::setSSQLWhere(const QString &where)
{
    d_ptr->sSQLWhere = where;
}

QString mvPLXRecs::sSQLJOIN() const
{
    return d_ptr->sSQLJOIN;
}

void mvPLXRecs::setSSQLJOIN(const QString &join)
{
    d_ptr->sSQLJOIN = join;
}

qint16 mvPLXRecs::MyLevel() const
{
    return d_ptr->myLevel;
}

void mvPLXRecs::setMyLevel(qint16 level)
{
    d_ptr->myLevel = level;
}

QString mvPLXRecs::sParentID() const
{
    return d_ptr->sParentID;
}

void mvPLXRecs::setSParentID(const QString &id)
{
    d_ptr->sParentID = id;
}

bool mvPLXRecs::bGenerateIDs() const
{
    return d_ptr->bGenerateIDs;
}

void mvPLXRecs::setBGenerateIDs(bool generate)
{
    d_ptr->bGenerateIDs = generate;
}

bool mvPLXRecs::bInitiator() const
{
    return d_ptr->bInitiator;
}

void mvPLXRecs::setBInitiator(bool initiator)
{
    d_ptr->bInitiator = initiator;
}

QString mvPLXRecs::sDBFPathFileName() const
{
    return d_ptr->sDBFPathFileName;
}

QStringList mvPLXRecs::cArrayID() const
{
    return d_ptr->findSession.foundIDs();
}

bool mvPLXRecs::EnableFind() const
{
    return d_ptr->enableFind;
}

bool mvPLXRecs::EnableSort() const
{
    return d_ptr->enableSort;
}

bool mvPLXRecs::EnableFilter() const
{
    return d_ptr->enableFilter;
}

bool mvPLXRecs::EnableBrowse() const
{
    return d_ptr->enableBrowse;
}

QString mvPLXRecs::sEventInfo() const
{
    return d_ptr->sEventInfo;
}

bool mvPLXRecs::bRecDisplay() const
{
    return d_ptr->bRecDisplay;
}

std::shared_ptr<Database> mvPLXRecs::database() const
{
    return d_ptr->db;
}

QString mvPLXRecs::tableName() const
{
    return d_ptr->table;
}

std::shared_ptr<RecordSource> mvPLXRecs::rs() const
{
    return d_ptr->rs;
}

QObject *mvPLXRecs::fParent() const
{
    return d_ptr->fParent;
}

bool mvPLXRecs::Enabled() const
{
    return isEnabled();
}

void mvPLXRecs::setFParent(QObject *parent)
{
    d_ptr->fParent = parent;
}

} // namespace plx
