// designer/collection.h: the plugin Qt Designer (and QUiLoader) loads: every control of the
// library, in the widget box's group "PLX Controls".
//
// Installed into Qt's designer plugin folder by cmake --install; for an install under
// another prefix, point QT_PLUGIN_PATH at <prefix>/<Qt's plugin folder> (the folder that
// holds designer/).
#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

namespace plx::designer {

class Collection : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit Collection(QObject *parent = nullptr);
    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return m_widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

} // namespace plx::designer
