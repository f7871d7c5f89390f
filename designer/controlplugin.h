// designer/controlplugin.h: one control of the library as Qt Designer's widget box shows it.
//
// Every control is described by the same few facts (class, header, texts, icon, a default
// form entry and how to make one), so one plugin class serves them all; controls.cpp holds
// the descriptions.
#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>

namespace plx::designer {

struct ControlDescription
{
    QString className; // as written in .ui files, namespace included ("plx::mvName")
    QString includeFile; // the public header a form's generated code includes
    QString toolTip;
    QString whatsThis;
    QString iconPath; // a resource of designer.qrc
    // The control's entry in a new form: its default object name, size and properties.
    QString domXml;
    std::function<QWidget *(QWidget *parent)> create;
};

class ControlPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    ControlPlugin(ControlDescription description, QObject *parent);

    QString name() const override { return m_description.className; }
    QString group() const override;
    QString toolTip() const override { return m_description.toolTip; }
    QString whatsThis() const override { return m_description.whatsThis; }
    QString includeFile() const override { return m_description.includeFile; }
    QIcon icon() const override;
    bool isContainer() const override { return false; }
    QString domXml() const override { return m_description.domXml; }
    QWidget *createWidget(QWidget *parent) override { return m_description.create(parent); }
    bool isInitialized() const override { return m_initialized; }
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    ControlDescription m_description;
    bool m_initialized = false;
};

// The descriptions of every control the plugin offers, in widget-box order.
QList<ControlDescription> controlDescriptions();

} // namespace plx::designer
